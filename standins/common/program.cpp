#include "common/program.h"

#include <windows.h>

#include <shellapi.h>

namespace beacon::standin {

std::vector<std::wstring> Arguments() {
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::wstring> arguments(values + 1, values + count);
    LocalFree(values);
    return arguments;
}

void PumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace beacon::standin
