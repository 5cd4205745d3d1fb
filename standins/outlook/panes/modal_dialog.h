#pragma once

#include <windows.h>

#include <memory>
#include <string>

namespace beacon::standin {

/// A dialog with an OK button over its owner, which is disabled while it is open. The message loop of the calling
/// thread runs it. The user may close it; it is destroyed with its owner.
class ModalDialog {
public:
    /// Throws com::Error.
    static std::unique_ptr<ModalDialog> Open(HWND owner, const std::wstring& title);
    ~ModalDialog();
    ModalDialog(const ModalDialog&) = delete;
    ModalDialog& operator=(const ModalDialog&) = delete;

    /// A no-op if it is closed.
    void Close();

    bool IsOpen() const { return window_ != nullptr; }

    /// Null if closed.
    HWND Window() const { return window_; }

private:
    explicit ModalDialog(HWND owner) : owner_(owner) {}

    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const HWND owner_;
    HWND window_ = nullptr;
    bool disabledOwner_ = false;
};

}  // namespace beacon::standin
