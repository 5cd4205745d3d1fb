#pragma once

#include <windows.h>

/// Windows of other programs, which may have stopped taking messages.
namespace beacon {

/// How long such a window has to answer, in ms. The user waits for it, so it is short.
inline constexpr UINT kForeignWindowTimeout = 1000;

/// Whether a window takes messages at all; waits no longer than that. Lets calls in that other threads send.
inline bool TakesMessages(HWND window) noexcept {
    DWORD_PTR answer = 0;
    return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, kForeignWindowTimeout, &answer) != 0;
}

}  // namespace beacon
