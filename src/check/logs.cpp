#include "check/logs.h"

#include <windows.h>

#include "com/error.h"
#include "com/text.h"
#include "support/log.h"

namespace beacon::check {
namespace {

constexpr size_t kShown = 3;                    // lines of each file
constexpr DWORD kMostBytes = 16 * 1024 * 1024;  // of a file, from its end

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string EndOfFile(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    const DWORD size = std::min(GetFileSize(file, nullptr), kMostBytes);
    std::string bytes(size, '\0');
    DWORD read = 0;
    SetFilePointer(file, -static_cast<LONG>(size), nullptr, FILE_END);
    ReadFile(file, bytes.data(), size, &read, nullptr);
    CloseHandle(file);
    bytes.resize(read);
    return bytes;
}

}  // namespace

Logs LookAtLogs() {
    Logs logs;
    logs.on = LoggingIsOn();
    logs.folder = LogFolder();
    logs.exists = !logs.folder.empty() && IsFolder(logs.folder);
    if (!logs.exists) return logs;
    for (const wchar_t* name : kLogFiles) {
        const std::string text = EndOfFile(logs.folder + name);
        std::vector<std::wstring> lines;
        for (size_t at = 0; (at = text.find("\tException in ", at)) != std::string::npos; ++at) {
            const size_t begin = text.rfind('\n', at) + 1;
            const size_t end = std::min(text.find('\r', at), text.size());
            lines.push_back(name + (L": " + com::FromAnsi(std::string_view(text).substr(begin, end - begin))));
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
    if (!IsFolder(folder)) com::Check(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}

}  // namespace beacon::check
