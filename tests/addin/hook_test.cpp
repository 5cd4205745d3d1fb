#include <gtest/gtest.h>

#include <vector>

#include "addin/message_hook.h"
#include "com/module.h"
#include "support/globals.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/log_capture.h"

namespace beacon::test {
namespace {

struct Message {
    UINT id;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const Message&) const = default;
};

std::vector<Message> received;

LRESULT CALLBACK Record(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message >= WM_KEYFIRST) received.push_back({message, wParam, lParam});
    return DefWindowProcW(window, message, wParam, lParam);
}

class MessageHook : public testing::Test {
protected:
    void SetUp() override {
        com::SetModuleInstance(GetModuleHandleW(nullptr));
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &Record;
        windowClass.hInstance = com::ModuleInstance();
        windowClass.lpszClassName = L"recorder";
        RegisterClassW(&windowClass);
        window_ = CreateWindowW(L"recorder", L"", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, windowClass.hInstance,
                                nullptr);
        Pump(0);
    }

    void TearDown() override {
        RemoveWindowsHook();
        DestroyWindow(window_);
        UnregisterClassW(L"recorder", com::ModuleInstance());
        EXPECT_EQ(com::LiveThings(), live_);
    }

    /// Whether a message that comes through the queue counts as the user's; it must arrive as it was sent.
    bool Interrupts(UINT message) {
        globals::gUserInterrupt = false;
        received.clear();
        const Message sent{message, 0x1234, 0x00560078};
        PostMessageW(window_, sent.id, sent.wParam, sent.lParam);
        Pump(0);
        EXPECT_EQ(std::count(received.begin(), received.end(), sent), 1) << std::hex << message;
        return globals::gUserInterrupt;
    }

    const long live_ = com::LiveThings();
    HWND window_ = nullptr;
};

TEST_F(MessageHook, RaisesTheFlagForTheUsersInputOnly) {
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

TEST_F(MessageHook, IsInstalledOnceAndKeepsTheCodeLoaded) {
    const LogCapture log;
    RemoveWindowsHook();
    EXPECT_TRUE(log.Lines().empty());
    SetUpWindowsHook();
    EXPECT_EQ(com::LiveThings(), live_ + 1);
    SetUpWindowsHook();
    EXPECT_EQ(com::LiveThings(), live_ + 1);
    RemoveWindowsHook();
    RemoveWindowsHook();
    EXPECT_EQ(com::LiveThings(), live_);

    const std::vector<std::wstring> lines = log.Lines();
    ASSERT_EQ(lines.size(), 2u);
    const std::wstring head = L"SetUpWindowsHook() TID=" + std::to_wstring(GetCurrentThreadId()) + L" ghHook = ";
    ASSERT_TRUE(lines[0].starts_with(head)) << com::ToAnsi(lines[0]);
    const std::wstring handle = lines[0].substr(head.size());
    EXPECT_FALSE(handle.empty());
    EXPECT_NE(handle, L"0");
    EXPECT_EQ(handle.find_first_not_of(L"0123456789ABCDEF"), std::wstring::npos);
    EXPECT_EQ(lines[1], L"RemoveWindowsHook() TID=" + std::to_wstring(GetCurrentThreadId()) + L" ghHook = " + handle);
}

}  // namespace
}  // namespace beacon::test
