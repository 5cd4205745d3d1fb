#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/registry.h"
#include "tests/fakes/pump.h"

namespace beacon::test {
namespace {

constexpr UINT kPosted = WM_APP + 1;
constexpr wchar_t kPendingInputKey[] = L"Software\\Corvantis\\Beacon\\PendingInputTest";

int paints = 0;
std::wstring typed;
std::function<void()> onPosted;

bool lazy = false;  // a faulty window never says that it has been painted: Windows asks it again and again

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PAINT && ++paints > 0 && lazy) return 0;
    if (message == WM_CHAR) typed += static_cast<wchar_t>(wParam);
    if (message == kPosted) onPosted();
    return DefWindowProcW(window, message, wParam, lParam);
}

/// A visible window whose messages wait in this thread's queue.
class PendingInput : public testing::Test {
protected:
    void SetUp() override {
        window_ =
            CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 90, 90, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(window_, nullptr);
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        onPosted = [&] { ++posted_; };
        Drain();
    }

    void TearDown() override {
        lazy = false;
        DestroyWindow(window_);
        Drain();
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
    }

    void Drain() {
        UpdateWindow(window_);
        Pump(0);
        paints = 0;
        typed.clear();
        ASSERT_EQ(HasPendingInput(), 0u);
    }

    void Write() {
        SetRegString(HKEY_CURRENT_USER, kPendingInputKey, L"Text", L"x");
        EXPECT_EQ(modGetString(HKEY_CURRENT_USER, kPendingInputKey, L"Text"), L"x");
    }

    HWND window_ = nullptr;
    int posted_ = 0;
};

TEST_F(PendingInput, OnlyInputAndPaintingLetMessagesRun) {
    PostMessageW(window_, kPosted, 0, 0);
    EXPECT_EQ(HasPendingInput(), 0u);
    Write();
    EXPECT_EQ(posted_, 0) << "without input nothing is dispatched";

    InvalidateRect(window_, nullptr, FALSE);
    EXPECT_NE(HasPendingInput(), 0u);
    SetRegDword(HKEY_CURRENT_USER, kPendingInputKey, L"Number", 1);
    EXPECT_EQ(posted_ + paints, 0) << "a number is written without yielding";
    Write();
    EXPECT_EQ(posted_, 1);
    EXPECT_EQ(paints, 1);
    EXPECT_EQ(HasPendingInput(), 0u);
}

TEST_F(PendingInput, KeysArriveAsCharacters) {
    SetForegroundWindow(window_);
    SetFocus(window_);
    Drain();
    INPUT keys[2]{};
    for (INPUT& key : keys) {
        key.type = INPUT_KEYBOARD;
        key.ki.wVk = 'A';
    }
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    ASSERT_EQ(SendInput(2, keys, sizeof keys[0]), 2u);
    EXPECT_NE(HasPendingInput(), 0u);
    Write();
    EXPECT_EQ(typed, L"a");
}

TEST_F(PendingInput, TheWriterMayBeEnteredAgain) {
    onPosted = [&] {
        if (++posted_ == 1) {
            InvalidateRect(window_, nullptr, FALSE);
            PostMessageW(window_, kPosted, 0, 0);
            Write();
        }
    };
    PostMessageW(window_, kPosted, 0, 0);
    InvalidateRect(window_, nullptr, FALSE);
    Write();
    EXPECT_EQ(posted_, 2);
}

TEST_F(PendingInput, TheEndOfTheProgramIsLeftToTheHost) {
    PostMessageW(window_, kPosted, 0, 0);
    InvalidateRect(window_, nullptr, FALSE);
    PostQuitMessage(47);
    Write();
    EXPECT_EQ(posted_, 1) << "what was posted before comes first";
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) DispatchMessageW(&message);
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, 47u);
}

TEST_F(PendingInput, MessagesWithoutEndDoNotHoldTheWriter) {
    lazy = true;
    InvalidateRect(window_, nullptr, FALSE);
    const ULONGLONG start = GetTickCount64();
    Write();
    EXPECT_LT(GetTickCount64() - start, 5000u);
    EXPECT_GT(paints, 0);
    EXPECT_NE(HasPendingInput(), 0u) << "the window never had enough";
}

}  // namespace
}  // namespace beacon::test
