#include "addin/message_hook.h"

#include <windows.h>

#include "com/module.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/numbers.h"

namespace beacon {
namespace {

HHOOK ghHook = nullptr;
bool gbHookInstalled = false;

void LogHook(const wchar_t* routine) {
    GoOnAfterError([&] {
        const std::wstring hook = HexText(static_cast<std::uint32_t>(HandleToULong(ghHook)));
        LogMsg2(routine, L" TID=", static_cast<long>(GetCurrentThreadId()), L" ghHook = ", hook);
    });
}

bool IsUserInput(UINT message) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_MOUSEWHEEL:
        case WM_KEYDOWN: return true;
        default: return false;
    }
}

// Runs for every message that the thread retrieves, so it must stay short.
LRESULT CALLBACK GetMsgProc(int code, WPARAM wParam, LPARAM lParam) {
    const MSG message = *reinterpret_cast<const MSG*>(lParam);
    if (IsUserInput(message.message)) globals::gUserInterrupt = true;
    return ghHook != nullptr ? CallNextHookEx(ghHook, code, wParam, lParam) : 0;
}

}  // namespace

void SetUpWindowsHook() {
    if (gbHookInstalled) return;
    ghHook = SetWindowsHookExA(WH_GETMESSAGE, &GetMsgProc, nullptr, GetCurrentThreadId());
    LogHook(L"SetUpWindowsHook()");
    gbHookInstalled = true;
    com::LockModule(true);
}

void RemoveWindowsHook() {
    if (!gbHookInstalled) return;
    LogHook(L"RemoveWindowsHook()");
    UnhookWindowsHookEx(ghHook);
    gbHookInstalled = false;
    ghHook = nullptr;
    com::LockModule(false);
}

}  // namespace beacon
