#include "extract/window_search.h"

#include "outlook/panes/modal_dialog.h"
#include "tests/extract/extract_fixture.h"

namespace beacon::test {
namespace {

using WindowSearch = Extract;

TEST_F(WindowSearch, APathTakesTheFirstChildOfEachClass) {
    const HWND first = Make(top_, "Static");
    const HWND button = Make(first, "Button");
    Make(Make(top_, "Static"), "Edit");

    constexpr const char* toButton[] = {"static", "Button"};
    constexpr const char* toEdit[] = {"Static", "Edit", "Button"};  // only the second Static has an Edit
    constexpr const char* any[] = {"Static", nullptr};
    EXPECT_EQ(FindWindowHierarchy(top_, toButton), button);
    EXPECT_EQ(FindWindowHierarchy(top_, {}), top_);
    log_.Clear();
    EXPECT_EQ(FindWindowHierarchy(top_, toEdit), nullptr);
    EXPECT_EQ(WalkDown(L"Any", top_, any), button);
    EXPECT_THAT(log_.Lines(), ElementsAre(Step(L"FindWindowHierarchy(0)", L"Static", first),
                                          Step(L"FindWindowHierarchy(1)", L"Edit", nullptr),
                                          Step(L"Any(0)", L"Static", first), Step(L"Any(1)", L"", button)));
}

TEST_F(WindowSearch, SearchesAllChildrenBeforeTheirDescendants) {
    const HWND branch = Make(top_, "Static");
    const HWND inner = Make(branch, "Static");
    const HWND deep = Make(inner, "Button", "deep");
    const HWND direct = Make(top_, "Button", "direct");
    const HWND second = Make(top_, "Button");
    const HWND below = Make(second, "Static");

    const struct {
        HWND after;  // siblings are in the order of creation
        const char* windowClass;
        const char* title;
        HWND found;
    } cases[] = {{nullptr, "Button", nullptr, direct}, {nullptr, "Button", "deep", deep},
                 {nullptr, nullptr, "deep", deep},     {nullptr, "Edit", nullptr, nullptr},
                 {direct, "Button", nullptr, second},  {branch, "Static", nullptr, below},
                 {branch, nullptr, "deep", nullptr}};

    for (const auto& one : cases)
        EXPECT_EQ(FindDescendentWindow(top_, one.after, one.windowClass, one.title), one.found) << &one - cases;
    const std::wstring parent = L"(" + HandleText(top_) + L",0";
    EXPECT_TRUE(log_.Has(L"FindDescendentWindow" + parent + L",Button,deep)"));
    EXPECT_TRUE(log_.Has(L"FindDescendentWindow: FindWindowEx" + parent + L")=" + HandleText(branch)));
}

TEST_F(WindowSearch, CutsALongClassName) {
    const std::string longName(70, 'c');
    EXPECT_EQ(GetWindowClass(Make(top_, longName.c_str())), std::wstring(63, L'c')) << "64 characters with the NUL";
}

TEST_F(WindowSearch, NeverFindsANewWindow) {
    for (const int command : {SW_SHOWNA, SW_HIDE}) {
        ShowWindow(top_, command);
        EXPECT_EQ(FindNewWindow(L"Inbox", true), nullptr);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(WindowSearch, FindsADialogByItsOwner) {
    const HWND other = Make(nullptr, kOutlookClass, "Other");
    const auto theirs = standin::ModalDialog::Open(other, L"Theirs");
    EXPECT_FALSE(IsDialogChild(top_));
    auto ours = standin::ModalDialog::Open(top_, L"Ours");
    const auto latest = standin::ModalDialog::Open(other, L"Latest");
    EXPECT_TRUE(IsDialogChild(top_));
    EXPECT_TRUE(IsDialogChild(other));
    ours.reset();
    EXPECT_FALSE(IsDialogChild(top_));
    Show(9, Editor::Plain);
    EXPECT_FALSE(IsDialogChild(top_)) << "a child dialog does not count";
    DestroyWindow(other);
}

// End-to-end tests cannot check these paths: only Outlook 2000's windows are read for bodies, and Word gives no
// selection.
TEST_F(WindowSearch, PathsLeadToTheTextOfEveryVersionAndEditor) {
    for (const long version : {10L, 11L, 12L})
        for (const long editor : {1L, 2L, 3L}) {
            SCOPED_TRACE(version * 10 + editor);
            const HWND text = Show(version, static_cast<Editor>(editor)).TextWindow();
            EXPECT_EQ(WalkDown(L"", top_, InspectorSelectionClasses(version, editor).value()), text);
            const HWND dialog = WalkDown(L"", top_, ItemDialogClasses(version));
            EXPECT_EQ(GetWindowClass(dialog), L"#32770");
            EXPECT_EQ(WalkDown(L"", dialog, ItemBodyClasses(version, editor)), text);
        }
    EXPECT_TRUE(InspectorSelectionClasses(11, 4).value().empty());
    EXPECT_FALSE(InspectorSelectionClasses(13, 1).has_value());
    pane_ = nullptr;
    pane_ = ItemPane::ForExplorer(top_, 12, Editor::Plain);
    const auto path = ExplorerSelectionClasses(12).value();
    EXPECT_FALSE(path.startsAtDialog);
    const HWND around = WalkDown(L"", top_, path.parents);
    EXPECT_EQ(FindWindowExA(around, nullptr, path.control, nullptr), pane_->TextWindow());
}

}  // namespace
}  // namespace beacon::test
