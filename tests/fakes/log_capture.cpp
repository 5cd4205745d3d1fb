#include "tests/fakes/log_capture.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "com/text.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon::test {
namespace {

std::wstring TemporaryFile() {
    wchar_t folder[MAX_PATH];
    wchar_t path[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"log", 0, path);
    return path;
}

}  // namespace

LogCapture::LogCapture() : paths_{TemporaryFile(), TemporaryFile()} {
    gLoggingRead = true;
    gLogging = true;
    gLogPath1 = paths_[0];
    gLogPath2 = paths_[1];
}

LogCapture::~LogCapture() {
    gLogging = false;
    gLogPath1.clear();
    gLogPath2.clear();
    for (const std::wstring& path : paths_) DeleteFileW(path.c_str());
}

std::vector<std::wstring> LogCapture::Lines(int level) const {
    std::ifstream file(com::ToAnsi(paths_[level - 1]), std::ios::binary);
    std::vector<std::wstring> lines;
    for (std::string line; std::getline(file, line);) {
        const size_t text = line.find('\t', line.find('\t') + 1) + 1;
        lines.push_back(com::FromAnsi(line.substr(text, line.size() - text - 1)));
    }
    return lines;
}

bool LogCapture::Has(const std::wstring& line, int level) const {
    const std::vector<std::wstring> lines = Lines(level);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

void LogCapture::Clear() {
    for (const std::wstring& path : paths_) std::ofstream(com::ToAnsi(path), std::ios::trunc);
}

}  // namespace beacon::test
