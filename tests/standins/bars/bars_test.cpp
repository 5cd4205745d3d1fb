#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "com/event_sink.h"
#include "com/object.h"
#include "common/program.h"
#include "outlook/bars/command_bars_host.h"
#include "outlook/bars/control_objects.h"
#include "tests/fakes/raised_by.h"

namespace beacon::standin {
namespace {

using beacon::test::RaisedBy;
using com::Missing;
using testing::ElementsAre;

constexpr long kButton = 1;
constexpr long kComboBox = 4;

/// A top-level window with command bars, used as an add-in uses it: by name.
class BarWindow {
public:
    explicit BarWindow(BarStore& store, WindowKind kind = WindowKind::Explorer)
        : top(CreateWindowExW(0, L"STATIC", L"Bars", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 800, 300, nullptr,
                              nullptr, GetModuleHandleW(nullptr), nullptr)),
          host(std::make_unique<CommandBarsHost>(top, kind, store)) {}

    ~BarWindow() {
        host.reset();
        DestroyWindow(top);
    }

    com::Object Bars() const { return com::Object(static_cast<IDispatch*>(host->CommandBars().get())); }

    com::Object AddBar(const wchar_t* name) const {
        const com::Object bar = Bars().CallObject(L"Add", {name, 1L});
        bar.Put(L"Visible", true);
        return bar;
    }

    static com::Object AddControl(const com::Object& bar, long type, const wchar_t* caption) {
        const com::Object control = bar.GetObject(L"Controls").CallObject(L"Add", {type});
        control.Put(L"Caption", caption);
        return control;
    }

    const HWND top;
    std::unique_ptr<CommandBarsHost> host;
};

class Permanence : public testing::Test {
protected:
    Permanence() { std::filesystem::remove(path_); }

    ~Permanence() override { std::filesystem::remove(path_); }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() / L"command-bars-test.json";
};

TEST_F(Permanence, ABarComesBackAfterARestartWithAllItHad) {
    std::wstring before;
    ButtonFace face;
    {
        BarStore store(path_.wstring());
        const BarWindow window(store, WindowKind::Inspector);
        const com::Object bar = window.AddBar(L"Mine \\ t\x20acsts");
        const com::Object box = BarWindow::AddControl(bar, kComboBox, L"Line\r\nbreak\tand tab");
        for (const wchar_t* item : {L"", L"one = 1"}) box.Call(L"AddItem", {item});
        box.Put(L"Text", L"typed");
        const com::Object button = BarWindow::AddControl(bar, kButton, L"Face");
        button.Put(L"Tag", L"marker 65540;0");
        ASSERT_TRUE(OpenClipboard(window.top));
        EmptyClipboard();
        SetClipboardData(CF_BITMAP, CreateBitmap(16, 16, 1, 1, std::array<WORD, 16>{0x1234}.data()));
        CloseClipboard();
        button.Call(L"PasteFace");
        face = window.host->Button(L"Face").face;
        bar.GetObject(L"Controls").CallObject(L"Add", {kButton, Missing(), Missing(), Missing(), true});
        EXPECT_EQ(BarWindow(store).Bars().GetLong(L"Count"), 2) << "explorers have their own bars";
        EXPECT_FALSE(std::filesystem::exists(path_)) << "changes are written from the message loop";
        PumpMessages();
        EXPECT_TRUE(std::filesystem::exists(path_));
        before = BarWindow(store, WindowKind::Inspector).host->Describe();  // a later window of this run
    }
    BarStore store(path_.wstring());
    const BarWindow window(store, WindowKind::Inspector);
    EXPECT_EQ(window.host->Describe(), before);
    EXPECT_THAT(before, testing::EndsWith(L" text=\"typed\" items=\"\",\"one = 1\"\n"
                                          L"  2 button \"Face\" tag=\"marker 65540;0\" face=16x16\n"))
        << "without the temporary control";
    EXPECT_FALSE(face.Empty());
    EXPECT_EQ(window.host->Button(L"Face").face, face);
}

TEST_F(Permanence, AFileThatCannotBeReadIsReportedAndNotOverwritten) {
    constexpr char kText[] = R"({"explorer": [{"name": "A", "controls": [{"face": {"width": 2, "height": 2,
                                 "pixels": [1, 2, 3]}}]}], "inspector": []})";
    std::ofstream(path_, std::ios::binary) << kText;
    std::wstring trouble;
    {
        BarStore store(path_.wstring(), [&](const std::wstring& line) { trouble = line; });
        const BarWindow window(store);
        EXPECT_EQ(window.Bars().GetLong(L"Count"), 2);
        window.AddBar(L"Mine");
    }
    EXPECT_THAT(trouble, testing::HasSubstr(L"a face of another size"));
    std::ifstream file(path_, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), kText);
}

/// A bar whose events are noted with the number of their arguments.
class ControlEvents : public testing::Test {
protected:
    com::EventHandler Note(const wchar_t* who, bool cancel = false) {
        return [this, who, cancel](DISPID member, const com::EventArguments& arguments) {
            const com::Object control = arguments.ObjectAt(0);
            const bool isBox = control.GetLong(L"Type") == kComboBox;
            events_.push_back(who + std::wstring(L" ") + std::to_wstring(member) + L"/" +
                              std::to_wstring(arguments.Count()) + L" " +
                              (isBox ? control.GetText(L"Text") : control.GetText(L"Caption")));
            if (cancel) arguments.SetBool(1, true);
        };
    }

    void Click(const wchar_t* caption) {
        window_.host->Click(caption);
        PumpMessages();
    }

    BarStore store_;
    BarWindow window_{store_};
    com::Object bar_ = window_.AddBar(L"Mine");
    std::vector<std::wstring> events_;
};

TEST_F(ControlEvents, OnlyAClickOnAnEnabledButtonRaisesClick) {
    const com::Object button = BarWindow::AddControl(bar_, kButton, L"&Look");
    com::EventSubscription sink;
    sink.Advise(button.Get(), kCommandBarButtonEvents, Note(L"a"));
    button.Put(L"Enabled", false);
    Click(L"Mine/Look");
    EXPECT_THAT(events_, ElementsAre());
    button.Put(L"Enabled", true);
    Click(L"Mine/Look");
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 &Look"));
}

TEST_F(ControlEvents, EveryObjectWithSinksRaisesAndEndsWithItsReference) {
    com::Object first = BarWindow::AddControl(bar_, kButton, L"Look");
    com::Object second = bar_.GetObject(L"Controls").GetObject(L"Item", {1L});
    com::EventSubscription sinks[2];
    sinks[0].Advise(first.Get(), kCommandBarButtonEvents, Note(L"a", true));
    sinks[1].Advise(second.Get(), kCommandBarButtonEvents, Note(L"b"));
    std::vector<std::wstring> lines;
    window_.host->SetListener([&](const std::wstring& line) { lines.push_back(line); });
    Click(L"Look");
    first.Reset();  // the subscription still holds the connection point
    Click(L"Look");
    second.Reset();
    Click(L"Look");
    EXPECT_THAT(lines,
                ElementsAre(L"Click \"Look\" sinks=2 cancelled", L"Click \"Look\" sinks=1", L"Click \"Look\" sinks=0"));
    EXPECT_THAT(events_, ElementsAre(L"a 1/2 Look", L"b 1/2 Look", L"b 1/2 Look"));
}

class ComboBox : public ControlEvents {
protected:
    ComboBox() {
        for (const wchar_t* item : {L"alpha", L"beta"}) box_.Call(L"AddItem", {item});
        sink_.Advise(box_.Get(), kCommandBarComboBoxEvents, Note(L"box"));
    }

    static std::wstring TextOf(HWND edit) {
        wchar_t text[32];
        return {text, static_cast<size_t>(GetWindowTextW(edit, text, 32))};
    }

    com::Object box_ = BarWindow::AddControl(bar_, kComboBox, L"Context");
    com::EventSubscription sink_;
};

TEST_F(ComboBox, WhatIsTypedIsEnteredByTheReturnKeyAndElseForgotten) {
    box_.Put(L"Text", L"old text");
    const HWND before =
        CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 200, 90, 20, window_.top, nullptr, nullptr, nullptr);
    SetFocus(before);
    Click(L"Context");
    const HWND edit = GetFocus();
    ASSERT_TRUE(IsChild(window_.host->Window(), edit));
    SendMessageW(edit, WM_CHAR, L'x', 1);
    box_.Call(L"AddItem", {L"new", 1L});  // leaves the user's text and place alone
    PumpMessages();
    SendMessageW(edit, WM_CHAR, L'y', 1);
    EXPECT_THAT(TextOf(edit), testing::HasSubstr(L"xy"));
    SetFocus(before);
    PumpMessages();
    EXPECT_EQ(TextOf(edit), L"old text");

    for (const wchar_t* text : {L"n\x20acw", L"beta", L""}) window_.host->Type(L"Context", text);
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 n\x20acw", L"box 1/1 beta", L"box 1/1 "));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 0);
    EXPECT_EQ(GetFocus(), before) << "the focus goes back";
}

TEST_F(ComboBox, ChoosingRaisesChange) {
    EXPECT_EQ(RaisedBy([&] { window_.host->Choose(L"Context", L"delta"); }).number, 5);
    window_.host->Choose(L"Context", L"alpha");
    box_.Call(L"AddItem", {L"new", 1L});  // before the choice arrives
    PumpMessages();
    EXPECT_THAT(events_, ElementsAre(L"box 1/1 alpha"));
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 2);
    box_.Call(L"AddItem", {L"newer", 2L});
    EXPECT_EQ(box_.GetLong(L"ListIndex"), 3) << "the chosen item has moved";
}

}  // namespace
}  // namespace beacon::standin
