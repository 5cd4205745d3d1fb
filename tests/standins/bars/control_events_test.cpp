#include <ocidl.h>

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
                              std::to_wstring(arguments.Count()) + L" " + control.GetText(box ? L"Text" : L"Caption"));
            if (cancel) arguments.SetBool(1, true);
        };
    }

    void Click(const wchar_t* caption) {
        window_.host->Click(caption);
        PumpMessages();
    }

    std::vector<std::wstring> events_;
};

TEST_F(ControlEvents, APostedClickRaisesClick) {
    const com::Object button = BarWindow::AddControl(bar_, 1, L"&Look");
    BarWindow::AddControl(bar_, 1, L"Other");
    com::EventSubscription sink;
    ASSERT_TRUE(sink.Advise(button.Get(), kButtonEvents, Note(L"a")));
    Click(L"Look");
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 &Look"));
    Click(L"Other");
    button.Put(L"Enabled", false);
    Click(L"Mine/Look");
    EXPECT_EQ(events_.size(), 1u) << "neither another button nor a disabled one";
    EXPECT_NE(NumberOf([&] { button.Call(L"Execute"); }), 0);
    button.Put(L"Enabled", true);
    button.Call(L"Execute");
    EXPECT_EQ(events_.size(), 2u);

    // Released elsewhere: no click.
    const RECT place = *window_.host->PlaceOf(L"Look");
    const HWND toolBar = ChildWindowFromPoint(window_.host->Window(), {place.left + 3, place.top + 3});
    PostMessageW(toolBar, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(place.left + 3, 5));
    PostMessageW(toolBar, WM_LBUTTONUP, 0, MAKELPARAM(place.right + 3, 5));
    PumpMessages();
    EXPECT_EQ(events_.size(), 2u);
    EXPECT_FALSE(com::EventSubscription().Advise(button.Get(), kComboBoxEvents, Note(L"x")));
}

TEST_F(ControlEvents, EveryObjectWithSinksRaisesAndEndsWithItsReference) {
    com::Object first = BarWindow::AddControl(bar_, 1, L"Look");
    com::Object second = BarWindow::Control(bar_, 1);
    com::EventSubscription sinkOfFirst;
    com::EventSubscription sinkOfSecond;
    ASSERT_TRUE(sinkOfFirst.Advise(first.Get(), kButtonEvents, Note(L"a", true)));
    ASSERT_TRUE(sinkOfSecond.Advise(second.Get(), kButtonEvents, Note(L"b")));
    Click(L"Look");
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 Look", L"b 1/2 Look"));

    events_.clear();
    first.Reset();  // the subscription still holds the connection point
    Click(L"Look");
    EXPECT_THAT(events_, ElementsAre(L"b 1/2 Look"));
    second.Reset();
    Click(L"Look");
    EXPECT_EQ(events_.size(), 1u);
}

/// A sink that sees the arguments as they are passed.
class PlainSink final : public IDispatch {
public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = id == IID_IUnknown || id == IID_IDispatch ? this : nullptr;
        return *object == nullptr ? E_NOINTERFACE : S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return 2; }

    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }

    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*, UINT*) override {
        const VARIANT& cancel = parameters->rgvarg[0];
        seen.push_back(cancel.vt == (VT_BOOL | VT_BYREF) ? *cancel.pboolVal : 99);
        return E_FAIL;  // of no interest to the source
    }

    std::vector<int> seen;
};

TEST_F(ControlEvents, CancelDefaultIsOneValueForAllSinks) {
    const com::Object button = BarWindow::AddControl(bar_, 1, L"Look");
    std::vector<std::wstring> lines;
    window_.host->SetListener([&](const std::wstring& line) { lines.push_back(line); });
    com::ComPtr<IConnectionPointContainer> container;
    com::ComPtr<IConnectionPoint> point;
    ASSERT_EQ(button.Get()->QueryInterface(IID_PPV_ARGS(&container)), S_OK);
    ASSERT_EQ(container->FindConnectionPoint(kButtonEvents, &point), S_OK);
    PlainSink before;
    PlainSink after;
    DWORD cookies[2];
    ASSERT_EQ(point->Advise(&before, &cookies[0]), S_OK);
    com::EventSubscription sink;
    ASSERT_TRUE(sink.Advise(button.Get(), kButtonEvents, Note(L"a", true)));
    ASSERT_EQ(point->Advise(&after, &cookies[1]), S_OK);
    Click(L"Look");
    EXPECT_THAT(before.seen, ElementsAre(VARIANT_FALSE));
    EXPECT_THAT(after.seen, ElementsAre(VARIANT_TRUE));
    sink.Unadvise();
    Click(L"Look");
    EXPECT_THAT(lines, ElementsAre(L"Click \"Look\" sinks=3 cancelled", L"Click \"Look\" sinks=2"));
    point->Unadvise(cookies[0]);
    point->Unadvise(cookies[1]);
}

TEST_F(ControlEvents, AHandlerMayDeleteItsBarOrEndTheWindow) {
    com::Object button = BarWindow::AddControl(bar_, 1, L"Delete me");
    com::EventSubscription sink;
    int calls = 0;
    ASSERT_TRUE(sink.Advise(button.Get(), kButtonEvents, [&](DISPID, const com::EventArguments&) {
        ++calls;
        bar_.Call(L"Delete");
        button.Reset();
    }));
    Click(L"Delete me");
    EXPECT_EQ(calls, 1);

    bar_ = window_.AddBar(L"Mine");
    button = BarWindow::AddControl(bar_, 1, L"Close");
    ASSERT_TRUE(sink.Advise(button.Get(), kButtonEvents, [&](DISPID, const com::EventArguments&) {
        ++calls;
        window_.host.reset();
    }));
    Click(L"Close");
    EXPECT_EQ(calls, 2);
    EXPECT_NE(NumberOf([&] { button.GetText(L"Caption"); }), 0);
}

class ComboBox : public ControlEvents {
protected:
    ComboBox() {
        box_.Put(L"Width", FromLong(150));
        for (const wchar_t* item : {L"alpha", L"gamma"}) box_.Call(L"AddItem", {FromText(item)});
        box_.Call(L"AddItem", {FromText(L"beta"), FromLong(2)});
        sink_.Advise(box_.Get(), kComboBoxEvents, Note(L"box"));
    }

    com::Object box_ = BarWindow::AddControl(bar_, 4, L"Context");
    com::EventSubscription sink_;
};

TEST_F(ComboBox, KeepsAListFromOne) {
    EXPECT_THAT(window_.host->ComboBox(L"Context").items, ElementsAre(L"alpha", L"beta", L"gamma"));
    EXPECT_EQ(box_.GetLong(L"ListCount"), 3);
    EXPECT_EQ(box_.GetText(L"List", {FromLong(2)}), L"beta");
    box_.Put(L"ListIndex", FromLong(3));
    EXPECT_EQ(box_.GetText(L"Text"), L"gamma");
    box_.Call(L"AddItem", {FromText(L"top"), FromLong(1)});
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 4) << "the selection stays with its item";
    box_.Call(L"RemoveItem", {FromLong(2)});
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 3);
    for (const long bad : {0L, 4L}) {
        EXPECT_EQ(NumberOf([&] { box_.GetText(L"List", {FromLong(bad)}); }), com::kSubscriptOutOfRange);
        EXPECT_EQ(NumberOf([&] { box_.Call(L"RemoveItem", {FromLong(bad)}); }), com::kSubscriptOutOfRange);
    }
    EXPECT_EQ(NumberOf([&] { box_.Put(L"ListIndex", FromLong(4)); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { box_.Call(L"AddItem", {FromText(L"x"), FromLong(5)}); }), com::kSubscriptOutOfRange);
    box_.Put(L"ListIndex", FromLong(0));
    EXPECT_EQ(box_.GetText(L"Text"), L"");
    box_.Put(L"Text", FromText(L"typed"));
    box_.Call(L"Clear");
    EXPECT_EQ(box_.GetLong(L"ListCount"), 0);
    EXPECT_EQ(box_.GetText(L"Text"), L"");
    EXPECT_TRUE(events_.empty()) << "only the user's changes are events";
}

TEST_F(ComboBox, TypingRaisesChange) {
    box_.Put(L"Text", FromText(L"old text"));
    window_.host->Type(L"Context", L"n\x20acw");
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 n\x20acw"));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 0);
    window_.host->Type(L"Context", L"beta");
    window_.host->Type(L"Context", L"");
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 n\x20acw", L"box 1/1 beta", L"box 1/1 "));
}

TEST_F(ComboBox, WhatIsNotEnteredIsForgotten) {
    box_.Put(L"Text", FromText(L"old text"));
    const HWND before =
        CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 200, 90, 20, window_.top, nullptr, nullptr, nullptr);
    SetFocus(before);
    window_.host->Click(L"Context");
    PumpMessages();
    const HWND edit = GetFocus();
    ASSERT_EQ(GetAncestor(GetParent(GetParent(edit)), GA_PARENT), window_.host->Window());
    SendMessageW(edit, WM_CHAR, L'x', 1);
    // What the add-in does meanwhile leaves the user's text and place alone.
    box_.Call(L"AddItem", {FromText(L"new"), FromLong(1)});
    box_.Put(L"Caption", FromText(L"Named anew"));
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

    window_.host->Type(L"Named anew", L"entered");
    PumpMessages();
    EXPECT_EQ(GetFocus(), before) << "the focus goes back";
    window_.host->Click(L"Named anew");
    PumpMessages();
    bar_.Call(L"Delete");
    PumpMessages();
    EXPECT_EQ(GetFocus(), before) << "also when the box goes";
}

TEST_F(ComboBox, ChoosingRaisesChange) {
    window_.host->Choose(L"Context", L"gamma");
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 gamma"));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 3);
    EXPECT_EQ(NumberOf([&] { window_.host->Choose(L"Context", L"delta"); }), 5);

    // The list is another one by the time the choice arrives.
    window_.host->Choose(L"Context", L"alpha");
    box_.Call(L"AddItem", {FromText(L"new"), FromLong(1)});
    PumpMessages();
    EXPECT_EQ(box_.GetText(L"Text"), L"alpha");
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 2);
    box_.Call(L"RemoveItem", {FromLong(1)});
    EXPECT_EQ(events_.size(), 2u);

    // With the keys, from the selected item on.
    window_.host->Click(L"Context");
    PumpMessages();
    const HWND edit = GetFocus();
    SendMessageW(GetParent(edit), CB_SHOWDROPDOWN, TRUE, 0);
    for (const WPARAM key : {VK_DOWN, VK_DOWN, VK_UP, VK_RETURN}) PostMessageW(edit, WM_KEYDOWN, key, 1);
    PumpMessages();
    EXPECT_EQ(box_.GetText(L"Text"), L"beta");
    EXPECT_EQ(events_.back(), L"box 1/1 beta");
    EXPECT_EQ(events_.size(), 3u);

    // By the mouse, on the list's third line.
    window_.host->Click(L"Context");
    PumpMessages();
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    ASSERT_TRUE(GetComboBoxInfo(GetParent(GetFocus()), &info));
    SendMessageW(info.hwndCombo, CB_SHOWDROPDOWN, TRUE, 0);
    const auto height = static_cast<WORD>(SendMessageW(info.hwndList, LB_GETITEMHEIGHT, 0, 0));
    const LPARAM third = MAKELPARAM(10, 5 * height / 2);
    PostMessageW(info.hwndList, WM_LBUTTONDOWN, MK_LBUTTON, third);
    PostMessageW(info.hwndList, WM_LBUTTONUP, 0, third);
    PumpMessages();
    EXPECT_EQ(box_.GetText(L"Text"), L"gamma");
    EXPECT_EQ(events_.size(), 4u);
}

}  // namespace
}  // namespace beacon::standin::test
