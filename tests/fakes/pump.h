#pragma once

#include <windows.h>

namespace beacon::test {

/// Dispatches messages, and with them incoming COM calls, until done() is true or the time is over. Returns the last
/// value of done().
template <class Done>
bool Pump(DWORD milliseconds, Done&& done) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (done()) return true;
        if (GetTickCount64() >= end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
}

inline void Pump(DWORD milliseconds) {
    Pump(milliseconds, [] { return false; });
}

}  // namespace beacon::test
