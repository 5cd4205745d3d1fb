#pragma once

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "com/text.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon::test {

using LogLines = std::vector<std::wstring>;

/// Forgets the log's files and what the add-in reads once per process.
inline void StartLikeANewProcess() {
    gLogging = gLoggingRead = gUseObjectModel = gUseObjectModelRead = false;
    gLogPath1.clear();
    gLogPath2.clear();
}

/// Switches the real log on and redirects it to a temporary folder. The destructor restores both.
class LogCapture {
public:
    LogCapture() {
        std::filesystem::create_directories(logs_);
        SetEnvironmentVariableW(L"AppData", root_.c_str());
        SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", 1);
        StartLikeANewProcess();
        ReadLoggingSetting();
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging");
    }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    ~LogCapture() {
        StartLikeANewProcess();
        SetEnvironmentVariableW(L"AppData", appData_.c_str());
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    /// The lines of this level so far, without date and time.
    LogLines Lines(int level = 2) const {
        std::ifstream file(std::filesystem::path(PathOf(level)), std::ios::binary);
        LogLines lines;
        for (std::string line; std::getline(file, line);) {
            const size_t date = line.find('\t');
            if (date == std::string::npos) continue;  // a line of the header
            const size_t text = line.find('\t', date + 1) + 1;
            lines.push_back(com::FromAnsi(line.substr(text, line.size() - text - 1)));
        }
        return lines;
    }

    bool Has(const std::wstring& line, int level = 2) const { return std::ranges::count(Lines(level), line) > 0; }

    void Clear() {
        for (const int level : {1, 2})
            if (std::filesystem::exists(PathOf(level))) std::filesystem::resize_file(PathOf(level), 0);
    }

    std::wstring PathOf(int level) const { return logs_ + L"\\OlkLog" + std::to_wstring(level) + L".txt"; }

    /// The temporary value of "AppData".
    const std::wstring& Root() const { return root_; }

private:
    const std::wstring appData_ = _wgetenv(L"AppData");
    const std::wstring root_ =
        std::filesystem::temp_directory_path() / (L"BeaconLog" + std::to_wstring(GetCurrentProcessId()));
    const std::wstring logs_ = root_ + L"\\Corvantis\\Beacon\\logs";
};

}  // namespace beacon::test
