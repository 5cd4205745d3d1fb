#pragma once

#include <windows.h>

#include <functional>

namespace beacon::test {

/// Dispatches messages, and with them incoming COM calls, until done() is true or the time is over. Returns the last
/// value of done().
inline bool Pump(
    DWORD milliseconds, const std::function<bool()>& done = [] { return false; }) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (done()) return true;
        if (GetTickCount64() >= end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
}

/// In milliseconds.
template <class Use>
ULONGLONG Duration(Use&& use) {
    const ULONGLONG start = GetTickCount64();
    use();
    return GetTickCount64() - start;
}

}  // namespace beacon::test
