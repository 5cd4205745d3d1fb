#include "outlook/panes/modal_dialog.h"

#include "outlook/panes/pane_windows.h"

namespace beacon::standin {

std::unique_ptr<ModalDialog> ModalDialog::Open(HWND owner, const std::wstring& title) {
    std::unique_ptr<ModalDialog> dialog(new ModalDialog(owner));

    dialog->disabledOwner_ = EnableWindow(owner, FALSE) == FALSE;
    dialog->window_ = CreateBareDialog(owner, WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER, 180, 60,
                                       Procedure, reinterpret_cast<LPARAM>(dialog.get()));
    if (dialog->window_ == nullptr) {
        const DWORD error = GetLastError();
        if (dialog->disabledOwner_) EnableWindow(owner, TRUE);
        SetLastError(error);
        ThrowLastError();
    }
    SetWindowTextW(dialog->window_, title.c_str());
    const HWND text = CreatePaneWindow(dialog->window_, L"Static", L"Choose OK to go on.", 0);
    SetWindowPos(text, nullptr, 16, 16, 240, 20, SWP_NOZORDER);
    const HWND button = CreatePaneWindow(dialog->window_, L"Button", L"OK", BS_DEFPUSHBUTTON | WS_TABSTOP);
    SetWindowLongPtrW(button, GWLP_ID, IDOK);
    SetWindowPos(button, nullptr, 16, 48, 80, 24, SWP_NOZORDER);
    ShowWindow(dialog->window_, SW_SHOW);
    SetFocus(button);
    return dialog;
}

ModalDialog::~ModalDialog() { Close(); }

void ModalDialog::Close() {
    if (window_ == nullptr) return;
    // Enable the owner first: a disabled window cannot be activated, and another program would be.
    if (disabledOwner_) EnableWindow(owner_, TRUE);
    DestroyWindow(window_);
}

INT_PTR CALLBACK ModalDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        return FALSE;
    }
    auto* self = reinterpret_cast<ModalDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr) return FALSE;
    switch (message) {
        case WM_COMMAND:
            if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
            self->Close();
            return TRUE;
        case WM_NCDESTROY:
            self->window_ = nullptr;
            SetWindowLongPtrW(window, DWLP_USER, 0);
            return FALSE;
        default: return FALSE;
    }
}

}  // namespace beacon::standin
