#include "outlook/panes/item_pane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <chrono>
#include <ostream>
#include <stdexcept>

#include "com/object.h"
#include "tests/standins/panes/walking.h"

namespace beacon::test {
namespace {

using com::Object;
using standin::Editor;
using standin::ItemPane;
using standin::ItemText;

const ItemText kItem{L"Ann Lee", L"Bob Kay", L"Quarter report", L"First line\r\nthe second line\r\nlast",
                     L"<p>First line</p>"};

constexpr char kViewer[] = "Internet Explorer_Server";

struct Version {
    int number;
    Path explorer;
    Path dialog;
    Path plainBody, htmlBody, richBody;
};

void PrintTo(const Version& version, std::ostream* stream) { *stream << "Outlook " << version.number; }

const Version kVersions[] = {
    {9,
     {"rctrl_renwnd32", "rctrl_renwnd32", "#32770", "AfxWnd", "AfxWnd"},
     {"AfxWnd", "#32770"},
     {"AfxWnd", "AfxWnd", "RichEdit20A"},
     {"AfxWnd", "AfxWnd", kViewer},
     {"AfxWnd", "RichEdit20A"}},
    {10,
     {"rctrl_renwnd32", "rctrl_renwnd32", "AfxWndA", "#32770", "AfxWndA", "AfxWndA"},
     {"AfxWndA", "#32770"},
     {"AfxWndA", "AfxWndA", "RichEdit20W"},
     {"AfxWndA", "AfxWndA", kViewer},
     {"AfxWndA", "RichEdit20W"}},
    {11,
     {"AfxWndA", "AfxWndW"},
     {"AfxWndW", "#32770"},
     {"AfxWndA", "AfxWndW", "RichEdit20W"},
     {"AfxWndA", "AfxWndW", kViewer},
     {"AfxWndA", "RichEdit20W"}},
    {12,
     {"rctrl_renwnd32", "rctrl_renwnd32", "AfxWndW", "#32770", "AfxWndA", "_WwB"},
     {"AfxWndW", "AfxWndW", "#32770"},
     {"AfxWndA", "_WwB", "_WwG"},
     {"AfxWndA", "_WwB", "_WwG"},
     {"AfxWndA", "_WwB", "_WwG"}},
};

const Path& BodyPath(const Version& version, Editor editor) {
    static const Path unset = {nullptr, nullptr, nullptr};
    switch (editor) {
        case Editor::Plain: return version.plainBody;
        case Editor::Html: return version.htmlBody;
        case Editor::Rich: return version.richBody;
        default: return version.number == 12 ? version.plainBody : unset;
    }
}

Object ScriptDocument(HWND viewer) {
    const auto document = Document(viewer);
    return Object(document.Get());
}

class ItemPaneTest : public testing::Test {
protected:
    ItemPaneTest() { CoInitialize(nullptr); }

    ~ItemPaneTest() override { CoUninitialize(); }
};

class EveryPane : public ItemPaneTest, public testing::WithParamInterface<std::tuple<Version, Editor>> {
protected:
    const Version& Outlook() const { return std::get<0>(GetParam()); }

    Editor Kind() const { return std::get<1>(GetParam()); }

    bool ShownByWord() const { return Outlook().number == 12 || Kind() == Editor::Word; }

    TopWindow top_;
};

std::string PaneName(const testing::TestParamInfo<EveryPane::ParamType>& info) {
    const char* editors[] = {"None", "Plain", "Html", "Rich", "Word"};
    const auto& [version, editor] = info.param;
    return "Outlook" + std::to_string(version.number) + editors[static_cast<int>(editor)];
}

INSTANTIATE_TEST_SUITE_P(VersionsAndEditors, EveryPane,
                         testing::Combine(testing::ValuesIn(kVersions),
                                          testing::Values(Editor::Plain, Editor::Html, Editor::Rich, Editor::Word)),
                         PaneName);

TEST_P(EveryPane, InspectorLeadsToTheItemsText) {
    const auto pane = ItemPane::ForInspector(top_, Outlook().number, Kind());
    pane->Show(kItem);
    pane->SelectText(L"second line\nla");

    const HWND dialog = Walk(top_, Outlook().dialog);
    const HWND control = Walk(dialog, BodyPath(Outlook(), Kind()));
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control, pane->TextWindow());
    EXPECT_EQ(pane->Selection(), L"second line\r\nla");
    if (ShownByWord()) {
        EXPECT_EQ(WindowText(control), kItem.body);
        EXPECT_EQ(EditSelection(control), L"");
    } else if (Kind() == Editor::Html) {
        const Object document = ScriptDocument(control);
        EXPECT_EQ(document.GetObject(L"selection").CallObject(L"createRange").GetText(L"text"), L"second line\r\nla");
        EXPECT_EQ(ScriptDocument(control).GetObject(L"body").GetText(L"innerText"), kItem.body);
    } else {
        EXPECT_EQ(WindowText(control), kItem.body);
        EXPECT_EQ(EditSelection(control), L"second line\rla");
    }
}

TEST_P(EveryPane, ExplorerLeadsToTheSelectedText) {
    const auto pane = ItemPane::ForExplorer(top_, Outlook().number, Kind());
    pane->Show(kItem);
    pane->SelectText(L"second");

    const HWND start = Outlook().number == 11 ? Descendant(top_, "#32770") : static_cast<HWND>(top_);
    const HWND around = Walk(start, Outlook().explorer);
    ASSERT_NE(around, nullptr);
    const HWND text = FindWindowExA(around, nullptr, Outlook().plainBody.back(), nullptr);
    const HWND viewer = FindWindowExA(around, nullptr, kViewer, nullptr);
    if (Outlook().number == 12) {
        EXPECT_EQ(WindowText(text), kItem.body);
        EXPECT_EQ(EditSelection(text), L"");
    } else if (Kind() == Editor::Html || Kind() == Editor::Word) {
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(ScriptDocument(viewer).GetObject(L"selection").CallObject(L"createRange").GetText(L"text"),
                  L"second");
    } else {
        EXPECT_EQ(viewer, nullptr);
        EXPECT_EQ(EditSelection(text), L"second");
    }
    EXPECT_EQ(Walk(top_, Outlook().dialog), nullptr) << "an explorer has no item dialog";
}

TEST_P(EveryPane, HeaderFieldsFollowTheirLabels) {
    const auto pane = ItemPane::ForInspector(top_, Outlook().number, Kind());
    pane->Show(kItem);

    const HWND dialog = Walk(top_, Outlook().dialog);
    const std::pair<const char*, std::wstring> fields[] = {
        {"From", kItem.from}, {"To", kItem.to}, {"Sub&ject:", kItem.subject}};
    for (const auto& [label, value] : fields) {
        const HWND field = GetWindow(FindWindowExA(dialog, nullptr, "Static", label), GW_HWNDNEXT);
        char name[64] = "";
        GetClassNameA(field, name, sizeof name);
        EXPECT_STREQ(name, Outlook().number == 9 ? "RichEdit20A" : "RichEdit20W");
        EXPECT_EQ(WindowText(field), value);
    }
}

TEST_P(EveryPane, HoldsAVeryLongSelection) {
    const auto pane = ItemPane::ForInspector(top_, Outlook().number, Kind());
    std::wstring body(150'000, L'x');
    for (size_t i = 79; i < body.size(); i += 80) body[i] = L' ';
    body[100] = L'\u00e9';
    pane->SetBody(body);
    pane->SelectRange(10, 100'000);

    EXPECT_EQ(pane->Body(), body);
    EXPECT_EQ(pane->Selection(), body.substr(10, 100'000));
    const HWND control = pane->TextWindow();
    if (ShownByWord()) {
        EXPECT_EQ(WindowText(control), body);
    } else if (Kind() == Editor::Html) {
        EXPECT_EQ(ScriptDocument(control).GetObject(L"selection").CallObject(L"createRange").GetText(L"text"),
                  body.substr(10, 100'000));
    } else {
        EXPECT_EQ(EditSelection(control), body.substr(10, 100'000));
    }
}

TEST_F(ItemPaneTest, BodyIsTextWhateverItLooksLike) {
    const TopWindow top;
    for (const int version : {9, 10}) {
        const auto pane = ItemPane::ForInspector(top, version, Editor::Rich);
        pane->SetBody(L"{\\rtf1 not RTF}\nnext");
        EXPECT_EQ(pane->Body(), L"{\\rtf1 not RTF}\r\nnext");
        pane->SetBody(L"\u4e2d\r\n\r\nend");
        EXPECT_EQ(pane->Body(), L"\u4e2d\r\n\r\nend");
        pane->SelectRange(5, 3);
        EXPECT_EQ(pane->Selection(), L"end");
        pane->SetBody(L"");
        EXPECT_EQ(pane->Body(), L"");
        EXPECT_EQ(pane->Selection(), L"");
    }
}

TEST_F(ItemPaneTest, RefusesWhatItCannotSelect) {
    const TopWindow top;
    const auto pane = ItemPane::ForInspector(top, 11, Editor::Plain);
    pane->Show(kItem);
    pane->SelectText(L"line");
    EXPECT_THROW(pane->SelectText(L"no such text"), std::invalid_argument);
    EXPECT_THROW(pane->SelectRange(kItem.body.size(), 1), std::out_of_range);
    EXPECT_THROW(pane->SelectRange(1, static_cast<size_t>(-1)), std::out_of_range);
    EXPECT_EQ(pane->Selection(), L"line");
    EXPECT_THROW(pane->Hang(std::chrono::milliseconds(1)), std::logic_error);
    EXPECT_THROW(pane->OfferDocument(false), std::logic_error);
    pane->Show(kItem);
    EXPECT_EQ(pane->Selection(), L"") << "a new item has no selection";
}

TEST_F(ItemPaneTest, ItemWithoutABodyWindowHasItsHeader) {
    const TopWindow top;
    const auto pane = ItemPane::ForInspector(top, 9, Editor::None);
    pane->Show(kItem);
    EXPECT_EQ(pane->TextWindow(), nullptr);
    EXPECT_EQ(pane->Body(), L"");
    EXPECT_THROW(pane->SetBody(L"text"), std::logic_error);
    const HWND label = FindWindowExA(Walk(top, {"AfxWnd", "#32770"}), nullptr, "Static", "To");
    EXPECT_EQ(WindowText(GetWindow(label, GW_HWNDNEXT)), kItem.to);
}

TEST_F(ItemPaneTest, FieldsMayBeOfAnotherClass) {
    const TopWindow top;
    const auto pane = ItemPane::ForInspector(top, 9, Editor::Plain, {.fieldClass = L"Edit"});
    pane->Show(kItem);
    const HWND label = FindWindowExA(Walk(top, {"AfxWnd", "#32770"}), nullptr, "Static", "Sub&ject:");
    const HWND field = GetWindow(label, GW_HWNDNEXT);
    char name[64] = "";
    GetClassNameA(field, name, sizeof name);
    EXPECT_STREQ(name, "Edit");
    EXPECT_EQ(WindowText(field), kItem.subject);
}

TEST_F(ItemPaneTest, OnePaneReplacesAnother) {
    const TopWindow top;
    auto pane = ItemPane::ForExplorer(top, 9, Editor::Plain);
    pane.reset();
    EXPECT_EQ(GetWindow(top, GW_CHILD), nullptr);
    pane = ItemPane::ForExplorer(top, 9, Editor::Html);
    const HWND viewer = pane->TextWindow();
    EXPECT_EQ(GetParent(viewer), Walk(top, kVersions[0].explorer));
    DestroyWindow(top);
    EXPECT_FALSE(IsWindow(viewer));
    pane.reset();
}

TEST_F(ItemPaneTest, FillsTheAreaGiven) {
    const TopWindow top;
    for (const Editor editor : {Editor::Plain, Editor::Html}) {
        const auto pane = ItemPane::ForExplorer(top, 10, editor);
        pane->Resize({100, 50, 500, 250});
        RECT at{};
        GetWindowRect(pane->TextWindow(), &at);
        MapWindowPoints(nullptr, top, reinterpret_cast<POINT*>(&at), 2);
        EXPECT_EQ(at.left, 100);
        EXPECT_EQ(at.top, 50);
        EXPECT_EQ(at.right, 500);
        EXPECT_EQ(at.bottom, 250);
    }
}

}  // namespace
}  // namespace beacon::test
