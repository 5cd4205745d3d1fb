#include "tests/fakes/log_capture.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "com/text.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon::test {

void StartLikeANewProcess() {
    gLogging = gLoggingRead = gUseObjectModel = gUseObjectModelRead = false;
    gLogPath1.clear();
    gLogPath2.clear();
}

LogCapture::LogCapture() {
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    root_ = temporary + (L"BeaconLog" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(root_ + L"\\Corvantis\\Beacon\\logs");
    wchar_t appData[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"AppData", appData, MAX_PATH);
    appData_ = appData;
    SetEnvironmentVariableW(L"AppData", root_.c_str());
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", 1);
    StartLikeANewProcess();
    ReadLoggingSetting();
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging");
}

LogCapture::~LogCapture() {
    StartLikeANewProcess();
    SetEnvironmentVariableW(L"AppData", appData_.c_str());
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::wstring LogCapture::PathOf(int level) const {
    return root_ + L"\\Corvantis\\Beacon\\logs\\OlkLog" + std::to_wstring(level) + L".txt";
}

LogLines LogCapture::Lines(int level) const {
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

bool LogCapture::Has(const std::wstring& line, int level) const { return std::ranges::count(Lines(level), line) > 0; }

void LogCapture::Clear() {
    for (const int level : {1, 2}) {
        const std::filesystem::path path(PathOf(level));
        if (std::filesystem::exists(path)) std::ofstream(path, std::ios::trunc);
    }
}

}  // namespace beacon::test
