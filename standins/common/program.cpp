#include "common/program.h"

#include <shellapi.h>

#include "com/error.h"

namespace beacon::standin {

std::vector<std::wstring> Arguments() {
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::wstring> arguments(values + 1, values + count);
    LocalFree(values);
    return arguments;
}

std::wstring ProgramPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring ProgramFolder() {
    const std::wstring path = ProgramPath();
    return path.substr(0, path.find_last_of(L'\\'));
}

void Fail(const std::wstring& text) { throw com::Error(5, text, L"stand-in"); }

void PumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void WaitAndPump(HANDLE event, DWORD milliseconds) {
    MsgWaitForMultipleObjectsEx(event == nullptr ? 0 : 1, &event, milliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    PumpMessages();
}

}  // namespace beacon::standin
