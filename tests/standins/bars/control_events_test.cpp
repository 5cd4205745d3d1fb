#include "outlook/bars/control_objects.h"
#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

using testing::ElementsAre;

class ControlEvents : public CommandBars {
protected:
    com::EventHandler Note(const wchar_t* who, bool cancel = false) {
        return [this, who, cancel](DISPID member, const com::EventArguments& arguments) {
            const com::Object control = arguments.ObjectAt(0);
            const bool box = control.GetLong(L"Type") == 4;
            events_.push_back(who + std::wstring(L" ") + std::to_wstring(member) + L"/" +
                              std::to_wstring(arguments.Count()) + L" " +
                              (box ? control.GetText(L"Text") : control.GetText(L"Caption")));
            if (cancel) arguments.SetBool(1, true);
        };
    }

    void Click(const wchar_t* caption) {
        window_.host->Click(caption);
        PumpMessages();
    }

    std::vector<std::wstring> events_;
};

TEST_F(ControlEvents, OnlyAClickOnAnEnabledButtonRaisesClick) {
    const com::Object button = BarWindow::AddControl(bar_, 1, L"&Look");
    com::EventSubscription sink;
    sink.Advise(button.Get(), kCommandBarButtonEvents, Note(L"a"));
    button.Put(L"Enabled", false);
    Click(L"Mine/Look");
    EXPECT_TRUE(events_.empty());
    button.Put(L"Enabled", true);
    Click(L"Mine/Look");
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 &Look"));
}

TEST_F(ControlEvents, EveryObjectWithSinksRaisesAndEndsWithItsReference) {
    com::Object first = BarWindow::AddControl(bar_, 1, L"Look");
    com::Object second = BarWindow::Control(bar_, 1);
    com::EventSubscription sinks[2];
    sinks[0].Advise(first.Get(), kCommandBarButtonEvents, Note(L"a", true));
    sinks[1].Advise(second.Get(), kCommandBarButtonEvents, Note(L"b"));
    std::vector<std::wstring> lines;
    window_.host->SetListener([&](const std::wstring& line) { lines.push_back(line); });
    Click(L"Look");
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 Look", L"b 1/2 Look"));
    first.Reset();  // the subscription still holds the connection point
    Click(L"Look");
    second.Reset();
    Click(L"Look");
    EXPECT_THAT(lines,
                ElementsAre(L"Click \"Look\" sinks=2 cancelled", L"Click \"Look\" sinks=1", L"Click \"Look\" sinks=0"));
    EXPECT_EQ(events_.size(), 3u);
}

class ComboBox : public ControlEvents {
protected:
    ComboBox() {
        for (const wchar_t* item : {L"alpha", L"beta"}) box_.Call(L"AddItem", {FromText(item)});
        sink_.Advise(box_.Get(), kCommandBarComboBoxEvents, Note(L"box"));
    }

    com::Object box_ = BarWindow::AddControl(bar_, 4, L"Context");
    com::EventSubscription sink_;
};

TEST_F(ComboBox, WhatIsTypedIsEnteredByTheReturnKeyAndElseForgotten) {
    box_.Put(L"Text", FromText(L"old text"));
    const HWND before =
        CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 200, 90, 20, window_.top, nullptr, nullptr, nullptr);
    SetFocus(before);
    Click(L"Context");
    const HWND edit = GetFocus();
    ASSERT_TRUE(IsChild(window_.host->Window(), edit));
    SendMessageW(edit, WM_CHAR, L'x', 1);
    // What the add-in does meanwhile leaves the user's text and place alone.
    box_.Call(L"AddItem", {FromText(L"new"), FromLong(1)});
    PumpMessages();
    SendMessageW(edit, WM_CHAR, L'y', 1);
    wchar_t shown[32];
    GetWindowTextW(edit, shown, 32);
    EXPECT_THAT(std::wstring(shown), testing::HasSubstr(L"xy"));
    SetFocus(before);
    PumpMessages();
    GetWindowTextW(edit, shown, 32);
    EXPECT_STREQ(shown, L"old text");
    EXPECT_TRUE(events_.empty());

    for (const wchar_t* text : {L"n\x20acw", L"beta", L""}) window_.host->Type(L"Context", text);
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 n\x20acw", L"box 1/1 beta", L"box 1/1 "));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 0);
    EXPECT_EQ(GetFocus(), before) << "the focus goes back";
}

TEST_F(ComboBox, ChoosingRaisesChange) {
    EXPECT_EQ(RaisedBy([&] { window_.host->Choose(L"Context", L"delta"); }).number, 5);
    window_.host->Choose(L"Context", L"alpha");
    box_.Call(L"AddItem", {FromText(L"new"), FromLong(1)});  // before the choice arrives
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 alpha"));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 2);
}

}  // namespace
}  // namespace beacon::standin::test
