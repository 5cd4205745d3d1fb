#include "check/logs.h"

#include <windows.h>

#include "check/server.h"
#include "com/error.h"
#include "com/handle.h"
#include "com/text.h"
#include "support/log.h"

namespace beacon::check {
namespace {

constexpr size_t kShown = 3;                    // lines of each file
constexpr DWORD kMostBytes = 16 * 1024 * 1024;  // read from the end of a file

com::UniqueHandle Open(const std::wstring& path, DWORD access) {
    return com::OwnFile(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr));
}

std::string EndOfFile(const std::wstring& path) {
    const com::UniqueHandle file = Open(path, GENERIC_READ);
    if (!file) return {};
    const DWORD size = std::min(GetFileSize(file.get(), nullptr), kMostBytes);
    std::string bytes(size, '\0');
    DWORD read = 0;
    SetFilePointer(file.get(), -static_cast<LONG>(size), nullptr, FILE_END);
    ReadFile(file.get(), bytes.data(), size, &read, nullptr);
    bytes.resize(read);
    return bytes;
}

bool IsUnwritable(const std::wstring& path) {
    return !Open(path, GENERIC_WRITE) && GetLastError() != ERROR_FILE_NOT_FOUND;
}

/// A line of the log itself. A logged text may have any lines in it.
bool ReportsException(std::string_view line) {
    constexpr std::string_view stamp = "00-00-0000\t00:00:00\t";
    if (!line.substr(std::min(stamp.size(), line.size())).starts_with("Exception in ")) return false;
    for (size_t i = 0; i < stamp.size(); ++i) {
        const bool isDigit = line[i] >= '0' && line[i] <= '9';
        if (stamp[i] == '0' ? !isDigit : line[i] != stamp[i]) return false;
    }
    return true;
}

}  // namespace

Logs ReadLogs() {
    Logs logs;
    logs.on = LoggingIsOn();
    logs.folder = LogFolder();
    if (logs.folder.empty()) return logs;
    const std::wstring path = logs.folder.substr(0, logs.folder.size() - 1);
    if (FileExists(path)) logs.blockedBy = path;
    logs.exists = logs.blockedBy.empty() && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (!logs.exists) return logs;
    for (const wchar_t* name : kLogFiles) {
        if (IsUnwritable(logs.folder + name)) logs.unwritable.push_back(logs.folder + name);
        const std::string text = EndOfFile(logs.folder + name);
        std::vector<std::wstring> lines;
        for (size_t begin = 0; begin < text.size();) {
            const size_t end = std::min(text.find("\r\n", begin), text.size());
            const auto line = std::string_view(text).substr(begin, end - begin);
            if (ReportsException(line)) lines.push_back(name + (L": " + com::FromAnsi(line)));
            begin = end + 2;
        }
        logs.exceptionCount += lines.size();
        const size_t first = lines.size() - std::min(lines.size(), kShown);
        logs.exceptions.insert(logs.exceptions.end(), lines.begin() + static_cast<std::ptrdiff_t>(first), lines.end());
    }
    return logs;
}

void MakeLogFolder() {
    const std::wstring folder = LogFolder();
    if (folder.empty()) com::Check(HRESULT_FROM_WIN32(ERROR_ENVVAR_NOT_FOUND));
    for (size_t end = folder.find(L'\\'); (end = folder.find(L'\\', end + 1)) != std::wstring::npos;)
        CreateDirectoryW(folder.substr(0, end).c_str(), nullptr);
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        com::Check(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}

}  // namespace beacon::check
