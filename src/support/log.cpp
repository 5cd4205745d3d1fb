#include "support/log.h"

#include <windows.h>

#include <comdef.h>

#include "com/error.h"
#include "com/handle.h"
#include "com/text.h"
#include "support/numbers.h"
#include "support/settings.h"

namespace beacon {
namespace {

/// Creates or opens the file. Raises an error when it cannot.
com::UniqueHandle OpenFile(const std::wstring& path, DWORD access, DWORD disposition) {
    com::UniqueHandle file = com::OwnFile(CreateFileA(com::ToAnsi(path).c_str(), access,
                                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                      disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    return file;
}

void Append(const std::wstring& path, DWORD disposition, const std::wstring& text) {
    const com::UniqueHandle file = OpenFile(path, FILE_APPEND_DATA, disposition);
    const std::string bytes = com::ToAnsi(text);
    DWORD written = 0;
    WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::wstring Header() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    DATE date = 0;
    SystemTimeToVariantTime(&now, &date);
    _bstr_t general;
    VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, general.GetAddress());
    return HexText(GetCurrentThreadId()) + (L": " + com::ToText(general.GetBSTR())) + L"\r\n\r\n";
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
    OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS);  // empties it
    Append(path, OPEN_EXISTING, Header());
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
        Append(path, OPEN_ALWAYS, stamp + text + L"\r\n");
    } catch (...) {
        // The line is lost; logging must not disturb Outlook.
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
        // Out of memory: the line is lost.
    }
    return true;
}

}  // namespace beacon
