#include <functional>
#include <string>

#include "support/registry.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/pump.h"

namespace beacon::test {
namespace {

constexpr UINT kPosted = WM_APP + 1;

/// A visible window whose messages wait in this thread's queue.
class PendingInput : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        visible_ =
            CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 90, 90, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(visible_, nullptr);
        SetWindowLongPtrW(visible_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        onPosted = [&] { ++posted_; };
        isInvalidForGood = false;
        Drain();
    }

    void TearDown() override {
        DestroyWindow(visible_);
        AdapterTest::TearDown();
    }

    void Drain() {
        UpdateWindow(visible_);
        Pump(0);
        paints = 0;
        typed.clear();
        ASSERT_EQ(HasPendingInput(), 0u);
    }

    void Post() { PostMessageW(visible_, kPosted, 0, 0); }

    void Invalidate() { InvalidateRect(visible_, nullptr, FALSE); }

    static void Write() {
        SetOfUser(L"Text", L"x");
        EXPECT_EQ(modGetString(HKEY_CURRENT_USER, kUserAdapterKey, L"Text"), L"x");
    }

    HWND visible_ = nullptr;
    int posted_ = 0;
    static inline int paints = 0;
    static inline std::wstring typed;
    static inline std::function<void()> onPosted;
    static inline bool isInvalidForGood = false;  // a faulty window never validates: Windows asks it again and again

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_PAINT && ++paints > 0 && isInvalidForGood) return 0;
        if (message == WM_CHAR) typed += static_cast<wchar_t>(wParam);
        if (message == kPosted) onPosted();
        return DefWindowProcW(window, message, wParam, lParam);
    }
};

TEST_F(PendingInput, OnlyInputAndPaintingLetMessagesRun) {
    Post();
    EXPECT_EQ(HasPendingInput(), 0u);
    Write();
    EXPECT_EQ(posted_, 0) << "without input nothing is dispatched";

    Invalidate();
    EXPECT_NE(HasPendingInput(), 0u);
    SetRegDword(HKEY_CURRENT_USER, kUserAdapterKey, L"Number", 1);
    EXPECT_EQ(posted_ + paints, 0) << "a number is written without yielding";
    Write();
    EXPECT_EQ(posted_, 1);
    EXPECT_EQ(paints, 1);
    EXPECT_EQ(HasPendingInput(), 0u);
}

TEST_F(PendingInput, KeysArriveAsCharacters) {
    SetForegroundWindow(visible_);
    SetFocus(visible_);
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

TEST_F(PendingInput, TheWriterIsReentrant) {
    onPosted = [&] {
        if (++posted_ > 1) return;
        Invalidate();
        Post();
        Write();
    };
    Post();
    Invalidate();
    Write();
    EXPECT_EQ(posted_, 2);
}

TEST_F(PendingInput, TheEndOfTheProgramIsLeftToTheHost) {
    Post();
    Invalidate();
    PostQuitMessage(47);
    Write();
    EXPECT_EQ(posted_, 1) << "what was posted before comes first";
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) DispatchMessageW(&message);
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, 47u);
}

TEST_F(PendingInput, MessagesWithoutEndDoNotBlockTheWriter) {
    isInvalidForGood = true;
    Invalidate();
    EXPECT_LT(Duration(Write), 5000u);
    EXPECT_GT(paints, 0);
    EXPECT_NE(HasPendingInput(), 0u) << "the window never had enough";
}

}  // namespace
}  // namespace beacon::test
