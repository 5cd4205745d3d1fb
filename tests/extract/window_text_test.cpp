#include "extract/window_text.h"

#include <malloc.h>
#include <oleacc.h>
#include <richedit.h>

#include <chrono>
#include <functional>
#include <map>

#include "common/threads.h"
#include "tests/extract/extract_fixture.h"
#include "tests/fakes/child_process.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

class WindowText : public Extract {
protected:
    /// A control with answers that the test sets; it answers 0 to other messages. Only one at a time.
    HWND Answering(const char* windowClass) {
        answers.clear();
        asked.clear();
        const HWND window = Make(top_, windowClass);
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Answer));
        return window;
    }

    /// Reports `length` characters and then, when it is read, `told`, as if its text had changed.
    static void Has(LRESULT length, LRESULT told) {
        answers[WM_GETTEXTLENGTH] = [=](LPARAM) { return length; };
        answers[WM_GETTEXT] = [=](LPARAM) { return told; };
    }

    /// Writes so many bytes as its selection and reports `told`.
    static void Selects(size_t written, LRESULT told) {
        answers[EM_GETSELTEXT] = [=](LPARAM buffer) {
            std::fill_n(reinterpret_cast<char*>(buffer), written, 'a');
            return told;
        };
    }

    static inline std::map<UINT, std::function<LRESULT(LPARAM)>> answers;
    static inline std::vector<UINT> asked;
    static inline WPARAM given = 0;  // with the last message

private:
    static LRESULT CALLBACK Answer(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        asked.push_back(message);
        given = wParam;
        const auto answer = answers.find(message);
        return answer == answers.end() ? 0 : answer->second(lParam);
    }
};

TEST_F(WindowText, IsCutBelowTheLimitAndUnicodeInOutlook2000Only) {
    const HWND edit = Make(top_, "Edit", "abcdef");
    const HWND empty = Make(top_, "Edit");
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
        log_.Clear();
        EXPECT_EQ(WindowGetText(empty), L"");
        EXPECT_THAT(log_.Lines(), ElementsAre(L"WindowGetText: SendMessage: WM_GETTEXTLENGTH",
                                              L"WindowGetText: WM_GETTEXTLENGTH: returned:0"));
        EXPECT_EQ(WindowGetText(chinese), version == 9 ? L"\u00e9\u4e2d" : L"\u00e9?");
        EXPECT_EQ(log_.Has(L"WindowGetText: WM_GETTEXT: returned:2"), version == 10);
    }
}

TEST_F(WindowText, AnAnswerThatExceedsTheBufferIsCut) {
    const HWND control = Answering("RichEditOfTest");
    for (const long version : {9L, 10L}) {
        globals::gOutlookVersion = version;
        Has(3, 5000);
        EXPECT_LE(WindowGetText(control).size(), 4u);
        Selects(4096, 50'000);  // 1,024 characters of up to four bytes
        EXPECT_EQ(EditSelection(control).size(), version == 9 ? 4096u : 1024u);
        for (const LRESULT none : {0, -1}) {
            Has(3, none);
            EXPECT_EQ(WindowGetText(control), L"");
            Selects(0, none);
            EXPECT_EQ(EditSelection(control), L"");
        }
    }
    EXPECT_EQ(LPSTRtoBSTR("ab\0cd", 5), L"ab");
    EXPECT_EQ(LPWSTRtoBSTR(L"ab\0cd", 5), (std::wstring{L"ab\0cd", 5}));
}

// A control fills the whole buffer that it is offered; one character more would corrupt the heap.
TEST_F(WindowText, BuffersAreAsLargeAsTheControlIsTold) {
    Make(top_, "Static", "Label:");
    const HWND control = Answering("RichEditOfTest");
    size_t characterSize = 0;
    answers[WM_GETTEXT] = [&](LPARAM buffer) {
        EXPECT_GE(_msize(reinterpret_cast<void*>(buffer)), given * characterSize);
        return 0;
    };
    long selected = 0;
    answers[EM_EXGETSEL] = [&](LPARAM range) {
        *reinterpret_cast<CHARRANGE*>(range) = {0, selected};
        return 0;
    };
    answers[EM_GETSELTEXT] = [&](LPARAM buffer) {
        const auto length = static_cast<size_t>(selected);  // up to four bytes each in Outlook 2000, as UTF-8 may need
        EXPECT_GE(_msize(reinterpret_cast<void*>(buffer)), characterSize == 1 ? 2 * length + 2 : 4 * length + 1);
        return 0;
    };
    for (const long version : {9L, 10L}) {
        SCOPED_TRACE(version);
        globals::gOutlookVersion = version;
        characterSize = version == 9 ? sizeof(wchar_t) : sizeof(char);
        for (const long length : {1L, 5000L}) {
            answers[WM_GETTEXTLENGTH] = [=](LPARAM) { return length; };
            WindowGetText(control);
        }
        for (const long length : {0L, 1023L, 1024L, 1025L, 5000L}) {
            selected = length;
            EditSelection(control);
        }
    }
    answers[WM_GETTEXTLENGTH] = [](LPARAM) { return 1 << 30; };
    GetLabelledFieldText(top_, L"Label:", "Static");
    EXPECT_EQ(asked.back(), WM_GETTEXT);
    EXPECT_EQ(given, (1u << 20) + 1) << "the longest field";
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
            EXPECT_TRUE(EditSelection(pane.TextWindow()) == text.substr(10, length))
                << length;  // too long for a message
        }
    }
}

TEST_F(WindowText, OnlyARichEditIsAskedForItsSelectionsLength) {
    for (const bool rich : {false, true}) {
        const HWND control = Answering(rich ? "RichEditOfTest" : "_WwG of test");
        answers[EM_EXGETSEL] = [](LPARAM range) {
            *reinterpret_cast<CHARRANGE*>(range) = {100, 2100};
            return 0;
        };
        const size_t length = rich ? 2000 : 2;
        Selects(length, static_cast<LRESULT>(length));
        EXPECT_EQ(EditSelection(control), std::wstring(length, L'a'));
        EXPECT_EQ(asked, rich ? std::vector<UINT>({EM_EXGETSEL, EM_GETSELTEXT}) : std::vector<UINT>({EM_GETSELTEXT}));
    }
    EXPECT_EQ(EditSelection(nullptr), L"");
    ItemPane& pane = Show(12, Editor::Word);
    pane.SelectText(L"second");
    EXPECT_EQ(EditSelection(pane.TextWindow()), L"");
    EXPECT_EQ(WindowGetText(pane.TextWindow()), body_);
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
    answers[RegisterWindowMessageA("WM_HTML_GETOBJECT")] = [](LPARAM) { return 12345; };
    EXPECT_FALSE(WindowDOM(control)) << "the answer stands for no object";
    pane_.reset();
    EXPECT_EQ(DocumentSelection(document), L"second line\r\nla") << "a document outlives its window";
    EXPECT_EQ(RaisedBy([] { DocumentSelection({}); }).number, com::kNoObject);
}

TEST_F(WindowText, AHangingHtmlWindowIsWaitedForOneSecond) {
    const standin::UniqueHandle created(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const standin::UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    HWND window = nullptr;  // of another thread, which dispatches no messages
    const standin::UniqueHandle thread = standin::StartThread([&] {
        window = Make(nullptr, "Internet Explorer_Server");
        SetEvent(created.get());
        WaitForSingleObject(stop.get(), INFINITE);
        DestroyWindow(window);
    });
    WaitForSingleObject(created.get(), INFINITE);
    const ULONGLONG start = GetTickCount64();
    EXPECT_FALSE(WindowDOM(window));
    const ULONGLONG waited = GetTickCount64() - start;
    EXPECT_TRUE(waited >= 900 && waited < 2000) << waited;
    SetEvent(stop.get());
    WaitForSingleObject(thread.get(), INFINITE);
}

constexpr wchar_t kForeignTitle[] = L"of another process";

/// Started by a test below: a window that does not answer.
TEST(AnotherProcess, DISABLED_Hangs) {
    CreateWindowExW(0, L"STATIC", kForeignTitle, WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    Sleep(60000);
    FAIL() << "the parent should have ended it";
}

/// Started by a test below: a control that answers rich-edit messages.
TEST(AnotherProcess, DISABLED_Answers) {
    WNDCLASSW description{};
    description.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return message == EM_GETSELTEXT ? 5 : DefWindowProcW(window, message, wParam, lParam);
    };
    description.lpszClassName = L"RichEditOfAnotherProcess";
    RegisterClassW(&description);
    CreateWindowExW(0, description.lpszClassName, kForeignTitle, WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr,
                    nullptr);
    Pump(60000);
    FAIL() << "the parent should have ended it";
}

// Any process can put a window below one of Outlook's.
TEST_F(WindowText, AHangingWindowOfAnotherProcessIsWaitedForOneSecond) {
    ChildProcess other(L"extract_test.exe",
                       L"--gtest_filter=*DISABLED_Hangs --gtest_also_run_disabled_tests --gtest_brief=1");
    HWND window = nullptr;
    EXPECT_TRUE(Pump(20000, [&] { return (window = FindWindowW(nullptr, kForeignTitle)) != nullptr; }));
    EXPECT_EQ(FindOwnWindow("Static", kForeignTitle), nullptr);
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(WindowGetText(window), L"");
    EXPECT_LT(GetTickCount64() - start, 3000u);
}

// The other process would take the pointers for addresses of its own.
TEST_F(WindowText, ARichEditOfAnotherProcessIsNotAskedForItsSelection) {
    ChildProcess other(L"extract_test.exe",
                       L"--gtest_filter=*DISABLED_Answers --gtest_also_run_disabled_tests --gtest_brief=1");
    HWND window = nullptr;
    EXPECT_TRUE(Pump(20000, [&] { return (window = FindWindowW(nullptr, kForeignTitle)) != nullptr; }));
    EXPECT_EQ(EditSelection(window), L"");
}

TEST_F(WindowText, OfAFieldIsFoundByItsLabel) {
    const auto read = [this](const wchar_t* label) { return GetLabelledFieldText(top_, label, "Static"); };
    Make(top_, "Static", "Me");
    EXPECT_EQ(read(L"Me"), L"") << "nothing follows";
    Make(top_, "Edit", "a plain edit");
    EXPECT_EQ(read(L"Me"), L"");
    Make(top_, "Static", "Sub&ject:");
    Answering("RichEditOfTest");
    Has(-1, 1);
    EXPECT_EQ(read(L"Sub&ject:"), L"");
    EXPECT_THAT(asked, ElementsAre(WM_GETTEXTLENGTH));
    for (const auto& [told, length] : std::map<LRESULT, size_t>{{5000, 3}, {1, 1}, {-1, 0}}) {
        Has(3, told);
        EXPECT_EQ(read(L"Sub&ject:").size(), length);
    }
    Has(3, 3);
    for (const wchar_t* other : {L"Sub&ject", L"Subject:", L"ject:"}) EXPECT_EQ(read(other), L"");
    EXPECT_EQ(GetLabelledFieldText(top_, L"Sub&ject:", "Button"), L"");
    Show(9, Editor::Plain);
    log_.Clear();
    EXPECT_EQ(GetLabelledFieldText(FindWindowHierarchy(top_, ItemDialogClasses(9)), L"From", "Static"), L"Ann Lee");
    EXPECT_EQ(log_.Lines().back(), L"GMII: From:Ann Lee");
}

}  // namespace
}  // namespace beacon::test
