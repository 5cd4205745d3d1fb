#pragma once

#include <windows.h>

namespace beacon::test {

/// Dispatches this thread's messages until done() holds, but for no longer than this.
template <class Done>
void Pump(DWORD milliseconds, Done&& done) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        const ULONGLONG now = GetTickCount64();
        if (done() || now >= end) return;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    }
}

/// Waits for the next tick of the system's clock, after which every setting is as fresh as the registry.
inline void WaitForTick() {
    for (const DWORD now = GetTickCount(); GetTickCount() == now;) Sleep(1);
}

inline void Pump(DWORD milliseconds) {
    Pump(milliseconds, [] { return false; });
}

}  // namespace beacon::test
