#include "toolbar/template_copy.h"

#include <windows.h>

#include "com/error.h"
#include "support/error_styles.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon {
namespace {

/// Raises a file error by its number in the log.
[[noreturn]] void RaiseFileError(DWORD code) {
    switch (code) {
        case ERROR_FILE_NOT_FOUND: throw com::Error(53, L"File not found");
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION: throw com::Error(70, L"Permission denied");
        case ERROR_PATH_NOT_FOUND: throw com::Error(76, L"Path not found");
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_NOT_READY:
        case ERROR_BAD_NETPATH: throw com::Error(52, L"Bad file name or number");
        default: throw com::Error(75, L"Path/File access error");
    }
}

bool IsOrdinary(const WIN32_FIND_DATAW& found) {
    constexpr DWORD kNotListed = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY;
    return (found.dwFileAttributes & kNotListed) == 0;
}

}  // namespace

bool FileExists(const std::wstring& path) {
    bool exists = false;
    LogOnError(L"Exception in FileExists: ", [&] {
        if (path.empty() || path.back() == L'\\') return;
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW(path.c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) {
            const DWORD code = GetLastError();
            if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) return;
            RaiseFileError(code);
        }
        do {
            exists = IsOrdinary(found);
        } while (!exists && FindNextFileW(search, &found));
        FindClose(search);
    });
    return exists;
}

void CopyFreshTemplateToAppData(const std::wstring& sDOTFilename) {
    LogOnError(L"Exception in CopyTemplateToAppDataIfNotThere: ", [&] {
        LogMsg2(L"CopyFreshTemplateToAppData called");
        std::wstring source;
        if (GetRegValue(HKEY_LOCAL_MACHINE, kMachineKey, setting::kProgramDirectory, source)) {
            source += L"word-toolbar-container.dot";
            LogMsg2(L"CopyFreshTemplateToAppData: Original DOT file is ", source);
            if (FileExists(source)) {
                if (!CopyFileW(source.c_str(), sDOTFilename.c_str(), FALSE)) RaiseFileError(GetLastError());
                if (FileExists(sDOTFilename)) {
                    LogMsg2(L"CopyFreshTemplateToAppData: Successful copy of ", source, L" to ", sDOTFilename);
                    return;
                }
            }
        }
        throw com::Error(0, L"");
    });
}

}  // namespace beacon
