#include "addin/message_hook.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/pump.h"

namespace beacon::test {
namespace {

using Message = std::tuple<UINT, WPARAM, LPARAM>;

std::vector<Message> received;

LRESULT CALLBACK Record(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message >= WM_KEYFIRST) received.emplace_back(message, wParam, lParam);
    return DefWindowProcW(window, message, wParam, lParam);
}

int heardByOther = 0;

LRESULT CALLBACK OtherHook(int code, WPARAM wParam, LPARAM lParam) {
    ++heardByOther;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

class MessageHook : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Record));
        Pump(0);
    }

    void TearDown() override {
        RemoveWindowsHook();
        AdapterTest::TearDown();
    }

    /// Posts a message, which must arrive unchanged. True when it counts as user input.
    bool Interrupts(UINT message) {
        globals::gUserInterrupt = false;
        received.clear();
        PostMessageW(window_, message, 0x1234, 0x00560078);
        Pump(0);
        EXPECT_THAT(received, Contains(Message(message, 0x1234, 0x00560078)).Times(1));
        return globals::gUserInterrupt;
    }
};

TEST_F(MessageHook, RaisesTheFlagForUserInputOnly) {
    const UINT input[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN, WM_MOUSEWHEEL, WM_KEYDOWN};
    const UINT other[] = {WM_MOUSEMOVE, WM_LBUTTONUP,  WM_RBUTTONUP,   WM_MBUTTONUP, WM_LBUTTONDBLCLK, WM_KEYUP,
                          WM_CHAR,      WM_SYSKEYDOWN, WM_XBUTTONDOWN, WM_USER,      WM_COMMAND};
    for (const UINT message : input) EXPECT_FALSE(Interrupts(message)) << "before the installation";
    for (int round = 0; round < 2; ++round) {
        SetUpWindowsHook();
        for (const UINT message : input) EXPECT_TRUE(Interrupts(message)) << std::hex << message;
        for (const UINT message : other) EXPECT_FALSE(Interrupts(message)) << std::hex << message;
        globals::gUserInterrupt = true;
        PostMessageW(window_, WM_MOUSEMOVE, 0, 0);
        Pump(0);
        EXPECT_TRUE(globals::gUserInterrupt) << "only its readers clear the flag";
        RemoveWindowsHook();
        for (const UINT message : input) EXPECT_FALSE(Interrupts(message)) << "after the removal";
    }
}

// Other add-ins have hooks too. Windows calls the newest one first, and only that one can call the next.
TEST_F(MessageHook, PassesEveryMessageToEarlierHooks) {
    const HHOOK other = SetWindowsHookExW(WH_GETMESSAGE, &OtherHook, nullptr, GetCurrentThreadId());
    SetUpWindowsHook();
    for (const UINT message : {UINT{WM_KEYDOWN}, UINT{WM_MOUSEMOVE}}) {
        heardByOther = 0;
        Interrupts(message);
        EXPECT_GT(heardByOther, 0) << std::hex << message;
    }
    UnhookWindowsHookEx(other);
}

TEST_F(MessageHook, IsInstalledOnceAndKeepsTheCodeLoaded) {
    const long live = com::LiveThings();
    RemoveWindowsHook();
    EXPECT_TRUE(log_.Lines().empty());
    SetUpWindowsHook();
    EXPECT_EQ(com::LiveThings(), live + 1);
    SetUpWindowsHook();
    EXPECT_EQ(com::LiveThings(), live + 1);
    RemoveWindowsHook();
    RemoveWindowsHook();
    EXPECT_EQ(com::LiveThings(), live);

    const LogLines lines = log_.Lines();
    ASSERT_EQ(lines.size(), 2u);
    const std::wstring head = L"WindowsHook() TID=" + std::to_wstring(GetCurrentThreadId()) + L" ghHook = ";
    ASSERT_TRUE(lines[0].starts_with(L"SetUp" + head)) << com::ToAnsi(lines[0]);
    const std::wstring handle = lines[0].substr(5 + head.size());
    EXPECT_GT(wcstoul(handle.c_str(), nullptr, 16), 0u);
    EXPECT_EQ(handle.find_first_not_of(L"0123456789ABCDEF"), std::wstring::npos);
    EXPECT_EQ(lines[1], L"Remove" + head + handle);
}

}  // namespace
}  // namespace beacon::test
