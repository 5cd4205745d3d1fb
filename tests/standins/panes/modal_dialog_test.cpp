#include "outlook/panes/modal_dialog.h"

#include <gtest/gtest.h>

#include "tests/standins/panes/walking.h"

namespace beacon::test {
namespace {

using standin::ModalDialog;

bool HasDialog(HWND owner) {
    for (HWND dialog = nullptr;;) {
        dialog = FindWindowExA(nullptr, dialog, "#32770", nullptr);
        if (dialog == nullptr) return false;
        if (GetParent(dialog) == owner) return true;
    }
}

void RunMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

TEST(ModalDialogTest, StandsOverItsOwnerOnly) {
    const TopWindow owner;
    const TopWindow other;
    EXPECT_FALSE(HasDialog(owner));
    const auto dialog = ModalDialog::Open(owner, L"Reminder");
    EXPECT_TRUE(HasDialog(owner));
    EXPECT_FALSE(HasDialog(other));
    EXPECT_FALSE(IsWindowEnabled(owner));
    EXPECT_TRUE(IsWindowEnabled(other));
    EXPECT_EQ(WindowText(dialog->Window()), L"Reminder");
    dialog->Close();
    EXPECT_FALSE(HasDialog(owner));
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_FALSE(dialog->IsOpen());
    dialog->Close();
}

TEST(ModalDialogTest, UserClosesIt) {
    const TopWindow owner;
    for (const bool byButton : {true, false}) {
        const auto dialog = ModalDialog::Open(owner, L"Reminder");
        if (byButton)
            SendMessageW(GetDlgItem(dialog->Window(), IDOK), BM_CLICK, 0, 0);
        else
            PostMessageW(dialog->Window(), WM_CLOSE, 0, 0);
        RunMessages();
        EXPECT_FALSE(dialog->IsOpen());
        EXPECT_TRUE(IsWindowEnabled(owner));
    }
}

TEST(ModalDialogTest, InnerDialogLeavesTheOwnerToTheOuter) {
    const TopWindow owner;
    const auto outer = ModalDialog::Open(owner, L"Outer");
    auto inner = ModalDialog::Open(owner, L"Inner");
    inner.reset();
    EXPECT_FALSE(IsWindowEnabled(owner));
    EXPECT_TRUE(outer->IsOpen());
}

TEST(ModalDialogTest, GoesWithItsOwner) {
    const TopWindow owner;
    const auto dialog = ModalDialog::Open(owner, L"Reminder");
    DestroyWindow(owner);
    EXPECT_FALSE(dialog->IsOpen());
}

}  // namespace
}  // namespace beacon::test
