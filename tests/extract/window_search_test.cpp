#include "extract/window_search.h"

#include "outlook/panes/modal_dialog.h"
#include "tests/extract/extract_fixture.h"

// Where this program keeps the addresses of what it calls in user32.
#ifdef _WIN64
extern decltype(&IsWindowVisible) visibilityImport asm("__imp_IsWindowVisible");
#else
extern decltype(&IsWindowVisible) visibilityImport asm("__imp__IsWindowVisible@4");
#endif

namespace beacon::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowSearch : public Extract {
protected:
    static std::wstring Hex(HWND window) {
        wchar_t text[16];
        swprintf(text, 16, L"%lX", static_cast<unsigned long>(HandleToLong(window)));
        return text;
    }
};

TEST_F(WindowSearch, APathTakesTheFirstChildOfEachClass) {
    const HWND first = Make(top_, "Static");
    const HWND button = Make(first, "Button");
    const HWND second = Make(top_, "Static");
    Make(second, "Edit");

    constexpr const char* toButton[] = {"static", "Button"};
    constexpr const char* toEdit[] = {"Static", "Edit", "Button"};  // only the second has an Edit
    constexpr const char* any[] = {"Static", nullptr};
    EXPECT_EQ(FindWindowHierarchy(top_, toButton), button);
    EXPECT_EQ(FindWindowHierarchy(top_, any), button);
    EXPECT_EQ(FindWindowHierarchy(top_, {}), top_);
    log_.Clear();
    EXPECT_EQ(FindWindowHierarchy(top_, toEdit), nullptr);
    EXPECT_THAT(
        log_.Lines(),
        ElementsAre(L"FindWindowHierarchy(0) FindWindowEx(hWnd, 0, Static, vbNullString) returned " + Hex(first),
                    L"FindWindowHierarchy(1) FindWindowEx(hWnd, 0, Edit, vbNullString) returned 0"));
    log_.Clear();
    EXPECT_EQ(WalkDown(L"Any", first, ClassPath(any).last(1)), button);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"Any(0) FindWindowEx(hWnd, 0, , vbNullString) returned " + Hex(button)));
}

TEST_F(WindowSearch, DescendantsAreSearchedLevelFirstThenDepth) {
    const HWND branch = Make(top_, "Static");
    const HWND deep = Make(Make(branch, "Static"), "Button", "deep");
    const HWND direct = Make(top_, "Button", "direct");
    const HWND second = Make(top_, "Button");
    const HWND below = Make(second, "Static");

    EXPECT_EQ(FindDescendentWindow(top_, nullptr, "Button", nullptr), direct);
    EXPECT_EQ(FindDescendentWindow(top_, nullptr, "Button", "deep"), deep);
    EXPECT_EQ(FindDescendentWindow(top_, nullptr, nullptr, "deep"), deep);
    EXPECT_EQ(FindDescendentWindow(top_, nullptr, "Edit", nullptr), nullptr);
    // Children lie in the order of their making.
    EXPECT_EQ(FindDescendentWindow(top_, direct, "Button", nullptr), second);
    EXPECT_EQ(FindDescendentWindow(top_, branch, "Static", nullptr), below);
    EXPECT_EQ(FindDescendentWindow(top_, branch, nullptr, "deep"), nullptr);
    DestroyWindow(second);
    DestroyWindow(direct);
    log_.Clear();
    EXPECT_EQ(FindDescendentWindow(top_, nullptr, "Button", nullptr), deep);
    const HWND inner = GetParent(deep);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"FindDescendentWindow(" + Hex(top_) + L",0,Button,)",
                                          L"FindDescendentWindow: FindWindowEx(" + Hex(top_) + L",0)=" + Hex(branch),
                                          L"FindDescendentWindow(" + Hex(branch) + L",0,Button,)",
                                          L"FindDescendentWindow: FindWindowEx(" + Hex(branch) + L",0)=" + Hex(inner),
                                          L"FindDescendentWindow(" + Hex(inner) + L",0,Button,)"));
}

TEST_F(WindowSearch, WindowsAreKnownByTheirTitleOrElseByTheirClass) {
    std::wstring kind;
    std::wstring name;
    EXPECT_EQ(GetWindowIdentification(top_, kind, name), L"Inbox");
    EXPECT_EQ(kind, L"title");
    EXPECT_EQ(name, L"rctrl_renwnd32");
    SetWindowTextA(top_, "");
    EXPECT_EQ(GetWindowIdentification(top_, kind, name), L"rctrl_renwnd32");
    EXPECT_EQ(kind, L"class");
    SetWindowTextA(top_, "x");
    EXPECT_EQ(GetWindowIdentification(top_, kind, name), L"x");
    EXPECT_EQ(GetWindowClass(nullptr), L"");

    WNDCLASSA description{};
    description.lpfnWndProc = DefWindowProcA;
    const std::string longName(70, 'c');
    description.lpszClassName = longName.c_str();
    RegisterClassA(&description);
    EXPECT_EQ(GetWindowClass(Make(top_, longName.c_str())), std::wstring(63, L'c')) << "64 characters with the NUL";

    EXPECT_EQ(StripNulls({L"ab\0c\0", 5}), L"ab");
    EXPECT_EQ(StripNulls(L"abc"), L"abc");
    EXPECT_EQ(StripNulls({L"\0x", 2}), L"");
}

HWND nested;

BOOL WINAPI AllOnes(HWND window) {
    nested = FindNewWindow(L"Memo", true);
    return GetParent(window) == nullptr ? -1 : 0;
}

/// Lets IsWindowVisible answer as the search wants it, which the system never does.
class AllVisible {
public:
    AllVisible() : before_(visibilityImport) { Answer(AllOnes); }

    ~AllVisible() { Answer(before_); }

private:
    static void Answer(decltype(&IsWindowVisible) function) {
        DWORD access = 0;
        VirtualProtect(&visibilityImport, sizeof visibilityImport, PAGE_READWRITE, &access);
        visibilityImport = function;
        VirtualProtect(&visibilityImport, sizeof visibilityImport, access, &access);
    }

    const decltype(&IsWindowVisible) before_;
};

TEST_F(WindowSearch, NoNewWindowIsLookedAtAndIfItsTitleWouldDecide) {
    const HWND other = Make(nullptr, "Static", "Memo");
    DestroyWindow(top_);
    const HWND memo = Make(nullptr, kOutlookClass, "Memo");
    const std::wstring looked = L"EnumWindowProc - GetWindowIdentification returned: [Memo]";
    const std::wstring number = std::to_wstring(HandleToLong(memo));
    for (const int command : {SW_SHOWNA, SW_HIDE}) {
        ShowWindow(memo, command);
        EXPECT_EQ(FindNewWindow(L"Memo", true), nullptr);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
    nested = memo;
    {
        const AllVisible visible;
        EXPECT_EQ(FindNewWindow({L"Memo\0x", 6}, true), memo);
        EXPECT_EQ(nested, nullptr) << "one search at a time";
        EXPECT_THAT(log_.Lines(), ElementsAre(looked, L"FindNewWindow found: [Memo-" + number + L"]"));
        log_.Clear();
        EXPECT_EQ(FindNewWindow(L"memo", true), nullptr);
        EXPECT_THAT(log_.Lines(), ElementsAre(looked));
        log_.Clear();
        SetPropA(memo, "PROP_OLK", memo);
        EXPECT_EQ(FindNewWindow(L"Memo", true), memo);
        EXPECT_THAT(log_.Lines(), ElementsAre(looked, L"EnumWindowProc - Dup hWnd(" + number + L") discarded",
                                              L"FindNewWindow found: [Memo-" + number + L"]"));
    }
    RemovePropA(memo, "PROP_OLK");
    DestroyWindow(memo);
    DestroyWindow(other);
}

TEST_F(WindowSearch, ADialogBelongsToItsOwner) {
    const HWND other = Make(nullptr, kOutlookClass, "Other");
    EXPECT_FALSE(IsDialogChild(top_));
    const auto theirs = standin::ModalDialog::Open(other, L"Theirs");
    EXPECT_FALSE(IsDialogChild(top_));
    auto ours = standin::ModalDialog::Open(top_, L"Ours");
    const auto latest = standin::ModalDialog::Open(other, L"Latest");
    EXPECT_TRUE(IsDialogChild(top_));
    EXPECT_TRUE(IsDialogChild(other));
    ours.reset();
    EXPECT_FALSE(IsDialogChild(top_));
    Show(9, Editor::Plain);
    EXPECT_FALSE(IsDialogChild(top_)) << "the window's own child dialog is none";
    DestroyWindow(other);
}

class Panes : public WindowSearch, public testing::WithParamInterface<std::tuple<long, Editor>> {};

INSTANTIATE_TEST_SUITE_P(VersionsAndEditors, Panes, kWindowKinds);

TEST_P(Panes, PathsLeadToTheItemsText) {
    const auto& [version, editor] = GetParam();
    const auto number = static_cast<long>(editor);
    const ItemPane& pane = Show(version, editor);
    const HWND dialog = FindWindowHierarchy(top_, ItemDialogClasses(version));
    EXPECT_EQ(GetWindowClass(dialog), L"#32770");
    EXPECT_EQ(FindWindowHierarchy(dialog, ItemBodyClasses(version, number)), pane.TextWindow());
    const auto selection = InspectorSelectionClasses(version, number);
    ASSERT_TRUE(selection);
    if (editor == Editor::Word && version < 12)
        EXPECT_TRUE(selection->empty());
    else
        EXPECT_EQ(WalkDown(L"", top_, *selection), pane.TextWindow());
    pane_.reset();

    const auto reading = ItemPane::ForExplorer(top_, static_cast<int>(version), editor);
    EXPECT_EQ(FindWindowHierarchy(top_, ItemDialogClasses(version)), nullptr) << "an explorer has no item dialog";
    const auto path = ExplorerSelectionClasses(version);
    ASSERT_TRUE(path);
    const HWND from = path->startsAtDialog ? FindDescendentWindow(top_, nullptr, kDialogClass, nullptr) : top_;
    const HWND around = WalkDown(L"", from, path->parents);
    const bool asHtml = version < 12 && (editor == Editor::Html || editor == Editor::Word);
    EXPECT_EQ(FindWindowExA(around, nullptr, asHtml ? kHtmlViewerClass : path->control, nullptr),
              reading->TextWindow());
    EXPECT_EQ(FindWindowExA(around, nullptr, asHtml ? path->control : kHtmlViewerClass, nullptr), nullptr);
}

}  // namespace
}  // namespace beacon::test
