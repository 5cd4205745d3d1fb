#include "support/log.h"

#include <windows.h>

#include <oleauto.h>

#include "com/error.h"
#include "com/text.h"
#include "support/numbers.h"
#include "support/settings.h"

namespace beacon {
namespace {

class File {
public:
    File(const std::wstring& path, DWORD disposition)
        : handle_(CreateFileA(com::ToAnsi(path).c_str(), FILE_APPEND_DATA,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, disposition,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    }

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    ~File() { CloseHandle(handle_); }

    void Write(const std::wstring& text) {
        const std::string bytes = com::ToAnsi(text);
        DWORD written = 0;
        WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }

private:
    HANDLE handle_;
};

void CreateEmpty(const std::wstring& path) {
    const HANDLE handle = CreateFileA(com::ToAnsi(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    CloseHandle(handle);
}

std::wstring Header() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    DATE date = 0;
    SystemTimeToVariantTime(&now, &date);
    BSTR general = nullptr;
    VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, &general);
    const std::wstring line = HexText(GetCurrentThreadId()) + (L": " + com::ToText(general)) + L"\r\n";
    SysFreeString(general);
    return line + L"\r\n";
}

}  // namespace

std::wstring LogFolder() {
    char buffer[256];
    const DWORD length = GetEnvironmentVariableA("AppData", buffer, sizeof buffer);
    if (length == 0 || length >= sizeof buffer) return {};
    return com::FromAnsi({buffer, length}) + L"\\Corvantis\\Beacon\\logs\\";
}

std::wstring GetLogFilePath(int level) {
    std::wstring& cached = level == 1 ? gLogPath1 : gLogPath2;
    if (!cached.empty()) return cached;
    const std::wstring folder = LogFolder();
    if (folder.empty()) return {};
    const std::wstring path = folder + kLogFiles[level == 1 ? 0 : 1];
    CreateEmpty(path);
    File(path, OPEN_EXISTING).Write(Header());
    return cached = path;
}

bool LoggingIsOn() {
    ReadLoggingSetting();
    return gLogging;
}

bool WriteLogLine(const std::wstring& text, int level) noexcept {
    try {
        if (!LoggingIsOn()) return true;
        const std::wstring path = GetLogFilePath(level);
        if (path.empty()) return true;
        SYSTEMTIME now;
        GetLocalTime(&now);
        wchar_t stamp[32];
        wsprintfW(stamp, L"%02d-%02d-%04d\t%02d:%02d:%02d\t", now.wMonth, now.wDay, now.wYear, now.wHour, now.wMinute,
                  now.wSecond);
        File(path, OPEN_ALWAYS).Write(stamp + text + L"\r\n");
    } catch (...) {
        // A missing folder or a locked file loses the line; logging must never disturb Outlook.
    }
    return true;
}

bool WriteLogPieces(std::initializer_list<LogPiece> pieces, int level) noexcept {
    try {
        std::wstring line;
        for (const LogPiece& piece : pieces)
            if (piece.number)
                line += DecimalText(*piece.number);
            else
                line += piece.text;
        WriteLogLine(line, level);
    } catch (...) {
        // There is no memory for it.
    }
    return true;
}

}  // namespace beacon
