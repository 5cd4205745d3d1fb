#pragma once

#include <windows.h>

#include <memory>
#include <string>

namespace beacon::standin {

/// A dialog box over one of Outlook's windows: a top-level window of class "#32770" that the window owns, with a
/// sentence and an OK button. The owner is disabled while it is open. It is run by the message loop of the thread that
/// opened it; the user may close it, and it goes with its owner.
class ModalDialog {
public:
    /// Throws com::Error.
    static std::unique_ptr<ModalDialog> Open(HWND owner, const std::wstring& title);
    ~ModalDialog();
    ModalDialog(const ModalDialog&) = delete;
    ModalDialog& operator=(const ModalDialog&) = delete;

    /// Does nothing when it is closed already.
    void Close();

    bool IsOpen() const { return window_ != nullptr; }

    /// Null when closed.
    HWND Window() const { return window_; }

private:
    explicit ModalDialog(HWND owner) : owner_(owner) {}

    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const HWND owner_;
    HWND window_ = nullptr;
    bool disabledOwner_ = false;
};

}  // namespace beacon::standin
