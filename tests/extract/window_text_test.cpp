#include "extract/window_text.h"

#include <malloc.h>
#include <oleacc.h>
#include <richedit.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <vector>

#include "common/threads.h"
#include "tests/extract/extract_fixture.h"
#include "tests/fakes/child_process.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

/// The answers of a control about its texts.
struct Answers {
    LRESULT length = 0;     // of its text
    LRESULT copied = 0;     // when its text is read
    long selected = 0;      // length of its selection
    LRESULT selection = 0;  // when its selection is read
    LRESULT document = 0;
};

class WindowText : public Extract {
protected:
    /// A control that answers as a test wants. Only one at a time.
    HWND Answering(const char* windowClass) {
        says = {};
        asked.clear();
        const HWND window = Make(top_, windowClass);
        // Of the characters that it is asked in: otherwise the system would convert its answers in a buffer of its own.
        const auto set = globals::gOutlookVersion == 9 ? SetWindowLongPtrW : SetWindowLongPtrA;
        set(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Answer));
        return window;
    }

    static inline Answers says;
    static inline std::vector<UINT> asked;
    static inline WPARAM offered = 0;  // for its text, in characters

    // A control fills the whole buffer that it is offered; one character more would corrupt the heap.
    static LRESULT CALLBACK Answer(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        asked.push_back(message);
        const bool isUnicode = globals::gOutlookVersion == 9;
        auto* const buffer = reinterpret_cast<char*>(lParam);
        if (message == WM_GETTEXT) {
            offered = wParam;
            EXPECT_GE(_msize(buffer), isUnicode ? wParam * sizeof(wchar_t) : wParam);
            return says.copied;
        }
        if (message == EM_GETSELTEXT) {
            const auto told = static_cast<size_t>(asked.front() == EM_EXGETSEL ? says.selected : 0);
            EXPECT_GE(_msize(buffer), isUnicode ? 4 * told + 1 : 2 * told + 2) << "UTF-8 may need four bytes";
            std::fill_n(buffer, std::clamp<LRESULT>(says.selection, 0, static_cast<LRESULT>(_msize(buffer))), 'a');
            return says.selection;
        }
        if (message == EM_EXGETSEL) *reinterpret_cast<CHARRANGE*>(lParam) = {100, 100 + says.selected};
        if (message == RegisterWindowMessageA("WM_HTML_GETOBJECT")) return says.document;
        return message == WM_GETTEXTLENGTH ? says.length : 0;
    }
};

TEST_F(WindowText, IsCutBelowTheLimitAndUnicodeInOutlook2000Only) {
    const HWND edit = Make(top_, "Edit", "abcdef");
    const HWND chinese =
        CreateWindowExW(0, L"Edit", L"\u00e9\u4e2d", WS_CHILD, 0, 0, 9, 9, top_, nullptr, nullptr, nullptr);

    const struct {
        long units;
        const wchar_t* text;
    } cases[] = {{8, L"abcdef"}, {7, L"abcdef"}, {6, L"abcde"}, {2, L"a"}, {1, L""}, {-1, L""}, {3072, L"abcdef"}};

    for (const long version : {9L, 10L}) {
        globals::gOutlookVersion = version;
        for (const auto& one : cases) {
            LimitDocuments(one.units);
            EXPECT_EQ(WindowGetText(edit), one.text) << "version " << version << ", limit " << one.units;
        }
        EXPECT_EQ(WindowGetText(chinese), version == 9 ? L"\u00e9\u4e2d" : L"\u00e9?");
    }
}

TEST_F(WindowText, AnAnswerThatExceedsTheBufferIsCut) {
    for (const long version : {9L, 10L}) {
        globals::gOutlookVersion = version;
        const HWND control = Answering("RichEditOfTest");
        says.length = 3;
        says.copied = 5000;
        const size_t read = WindowGetText(control).size();
        EXPECT_LE(read, offered);
        says.selection = 50'000;
        EXPECT_EQ(EditSelection(control).size(), version == 9 ? 4096u : 1024u);
        for (const LRESULT none : {0, -1}) {
            says.copied = says.selection = none;
            EXPECT_EQ(WindowGetText(control) + EditSelection(control), L"") << none;
        }
    }
    EXPECT_EQ(LPSTRtoBSTR("ab\0cd", 5), L"ab");
    EXPECT_EQ(LPWSTRtoBSTR(L"ab\0cd", 5).size(), 5u);
}

TEST_F(WindowText, BuffersAreAsLargeAsTheControlIsTold) {
    for (const long version : {9L, 10L}) {
        SCOPED_TRACE(version);
        globals::gOutlookVersion = version;
        const HWND control = Answering("RichEditOfTest");
        for (const long length : {0L, 1L, 1023L, 1024L, 1025L, 5000L}) {
            says.length = says.copied = says.selected = length;
            asked.clear();
            EditSelection(control);
            EXPECT_LE(WindowGetText(control).size(), 3072u);
        }
    }
    Make(top_, "Static", "Label:");
    Answering("RichEditOfTest");
    says.length = 1 << 30;
    GetLabelledFieldText(top_, L"Label:", "Static");
    EXPECT_EQ(offered, (1u << 20) + 1) << "the longest field";
}

TEST_F(WindowText, SelectionIsReadWholeFromARichEdit) {
    std::wstring text(101'000, L'x');
    for (size_t i = 79; i < text.size(); i += 80) text[i] = L' ';
    text[20] = L'\u00e9';
    for (const long version : {9L, 10L}) {
        ItemPane& pane = Show(version, Editor::Rich);
        EXPECT_EQ(EditSelection(pane.TextWindow()), L"");
        pane.SelectText(L"second line\r\nla");
        EXPECT_EQ(EditSelection(pane.TextWindow()), L"second line\rla");
        if (version != 9) text[21] = L'\u4e2d';
        pane.SetBody(text);
        for (const size_t length : {1u, 1023u, 1024u, 1025u, 100'000u}) {
            pane.SelectRange(10, length);
            const std::wstring read = EditSelection(pane.TextWindow());
            EXPECT_TRUE(read == text.substr(10, length)) << length << " characters selected, read " << read.size();
        }
    }
}

TEST_F(WindowText, OnlyARichEditIsAskedForItsSelectionsLength) {
    for (const bool rich : {false, true}) {
        const HWND control = Answering(rich ? "RichEditOfTest" : "_WwG of test");
        says.selected = 2000;
        says.selection = rich ? 2000 : 2;
        EXPECT_EQ(EditSelection(control), std::wstring(static_cast<size_t>(says.selection), L'a'));
        EXPECT_EQ(asked, rich ? std::vector<UINT>({EM_EXGETSEL, EM_GETSELTEXT}) : std::vector<UINT>({EM_GETSELTEXT}));
    }
    EXPECT_EQ(EditSelection(nullptr), L"");
}

TEST_F(WindowText, IsReadFromTheDocumentOfAnHtmlWindow) {
    ItemPane& pane = Show(10, Editor::Html);
    const com::Object document = WindowDOM(pane.TextWindow());
    ASSERT_TRUE(document);
    EXPECT_EQ(DocumentSelection(document), L"");
    pane.SelectText(L"second line\r\nla");
    pane.OfferDocument(false);
    EXPECT_FALSE(WindowDOM(pane.TextWindow()));
    EXPECT_FALSE(WindowDOM(nullptr));
    const HWND control = Answering("Not HTML");
    EXPECT_FALSE(WindowDOM(control)) << "the window does not know the message";
    says.document = 12345;
    EXPECT_FALSE(WindowDOM(control)) << "the answer stands for no object";
    pane_.reset();
    EXPECT_EQ(DocumentSelection(document), L"second line\r\nla") << "a document outlives its window";
    EXPECT_EQ(RaisedBy([] { DocumentSelection({}); }).number, com::kNoObject);
}

TEST_F(WindowText, AHangingHtmlWindowIsWaitedForOneSecond) {
    const standin::UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::atomic<HWND> window = nullptr;  // of a thread that dispatches no messages
    const standin::UniqueHandle thread = standin::StartThread([&] {
        window = Make(nullptr, "Internet Explorer_Server");
        WaitForSingleObject(stop.get(), INFINITE);
    });
    Pump(20000, [&] { return window != nullptr; });
    const ULONGLONG waited = Duration([&] { EXPECT_FALSE(WindowDOM(window)); });
    EXPECT_TRUE(waited >= 900 && waited < 2000) << waited;
    SetEvent(stop.get());
    WaitForSingleObject(thread.get(), INFINITE);
}

constexpr UINT kHang = WM_APP;
constexpr char kForeignClass[] = "RichEditOfAnotherProcess";

LRESULT CALLBACK AnswerFromAnotherProcess(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kHang) Sleep(60000);
    return message == EM_GETSELTEXT ? 5 : DefWindowProcA(window, message, wParam, lParam);
}

/// Started by the next test: a window that answers a message of rich edits, and hangs from kHang on.
TEST(AnotherProcess, DISABLED_ShowsAWindow) {
    const HWND window = Extract::Make(nullptr, kForeignClass, "foreign");
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(AnswerFromAnotherProcess));
    Pump(60000);
    FAIL() << "the parent should have ended it";
}

// Any process can put a window below one of Outlook's. Windows marshals no pointers of a rich edit's messages.
TEST_F(WindowText, AWindowOfAnotherProcessIsOnlyAskedForItsTextAndForOneSecond) {
    globals::gOutlookVersion = 10;
    const ChildProcess other(L"extract_test.exe",
                             L"--gtest_filter=*DISABLED_ShowsAWindow --gtest_also_run_disabled_tests --gtest_brief=1");
    HWND window = nullptr;
    ASSERT_TRUE(Pump(20000, [&] { return (window = FindWindowA(kForeignClass, nullptr)) != nullptr; }));
    EXPECT_EQ(WindowGetText(window), L"foreign");
    EXPECT_EQ(FindOwnWindow(kForeignClass, nullptr), nullptr);
    EXPECT_EQ(EditSelection(window), L"");
    SendNotifyMessageA(window, kHang, 0, 0);
    EXPECT_LT(Duration([&] { EXPECT_EQ(WindowGetText(window), L""); }), 3000u);
}

TEST_F(WindowText, OfAFieldIsFoundByItsLabel) {
    const auto read = [this](const wchar_t* label) { return GetLabelledFieldText(top_, label, "Static"); };
    globals::gOutlookVersion = 10;
    Make(top_, "Static", "Me");
    EXPECT_EQ(read(L"Me"), L"") << "nothing follows";
    Make(top_, "Edit", "a plain edit");
    EXPECT_EQ(read(L"Me"), L"");
    Make(top_, "Static", "Sub&ject:");
    Answering("RichEditOfTest");
    says = {-1, 1};
    EXPECT_EQ(read(L"Sub&ject:"), L"");
    EXPECT_THAT(asked, ElementsAre(WM_GETTEXTLENGTH));
    for (const auto& [copied, length] : std::map<LRESULT, size_t>{{5000, 3}, {1, 1}, {-1, 0}}) {
        says = {3, copied};
        EXPECT_EQ(read(L"Sub&ject:").size(), length);
    }
    says = {3, 3};
    for (const wchar_t* other : {L"Sub&ject", L"Subject:", L"ject:"}) EXPECT_EQ(read(other), L"");
    EXPECT_EQ(GetLabelledFieldText(top_, L"Sub&ject:", "Button"), L"");
    Show(9, Editor::Plain);
    EXPECT_EQ(GetLabelledFieldText(FindWindowHierarchy(top_, ItemDialogClasses(9)), L"From", "Static"), L"Ann Lee");
    EXPECT_EQ(log_.Lines().back(), L"GMII: From:Ann Lee");
}

}  // namespace
}  // namespace beacon::test
