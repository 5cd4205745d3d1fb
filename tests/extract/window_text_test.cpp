#include "extract/window_text.h"

#include <oleacc.h>
#include <richedit.h>

#include <chrono>
#include <functional>
#include <map>

#include "extract/window_search.h"
#include "tests/extract/extract_fixture.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

using std::chrono::milliseconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Clock = std::chrono::steady_clock;

class WindowText : public Extract {};

/// A control that answers as a test wants; what it has no answer for it does not know.
class Answering {
public:
    using Answer = std::function<LRESULT(WPARAM, LPARAM)>;

    Answering(HWND parent, const char* windowClass) {
        WNDCLASSA description{};
        description.lpfnWndProc = Procedure;
        description.lpszClassName = windowClass;
        RegisterClassA(&description);
        window = CreateWindowExA(0, windowClass, "", WS_CHILD, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }

    Answering(const Answering&) = delete;
    Answering& operator=(const Answering&) = delete;

    ~Answering() { DestroyWindow(window); }

    /// Says it has three characters and then tells of `told`, as a control whose text has grown since.
    void Overstate(LRESULT told) {
        answers[WM_GETTEXTLENGTH] = [](WPARAM, LPARAM) { return 3; };
        answers[WM_GETTEXT] = [=](WPARAM, LPARAM) { return told; };
    }

    HWND window;
    std::map<UINT, Answer> answers;
    std::vector<UINT> asked;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const self = reinterpret_cast<Answering*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (self == nullptr) return DefWindowProcA(window, message, wParam, lParam);
        self->asked.push_back(message);
        const auto answer = self->answers.find(message);
        return answer == self->answers.end() ? 0 : answer->second(wParam, lParam);
    }
};

TEST_F(WindowText, IsCutBelowTheLimit) {
    const HWND edit = Make(top_, "Edit", "abcdef");

    const struct {
        long units;
        const wchar_t* text;
    } cases[] = {{8, L"abcdef"}, {7, L"abcdef"}, {6, L"abcde"}, {2, L"a"}, {1, L""}, {-1, L""}, {-32768, L""}};

    for (const long version : {9L, 10L}) {
        globals::gOutlookVersion = version;
        for (const auto& one : cases) {
            LimitDocuments(one.units);
            EXPECT_EQ(WindowGetText(edit), one.text) << "version " << version << ", limit " << one.units;
        }
        LimitDocuments(3072);
        const HWND longer = Make(top_, "Edit", std::string(5000, 'x').c_str());
        EXPECT_EQ(WindowGetText(longer), std::wstring(3071, L'x'));
        log_.Clear();
        EXPECT_EQ(WindowGetText(Make(top_, "Edit")), L"");
        EXPECT_THAT(log_.Lines(), ElementsAre(L"WindowGetText: SendMessage: WM_GETTEXTLENGTH",
                                              L"WindowGetText: WM_GETTEXTLENGTH: returned:0"));
    }
}

TEST_F(WindowText, IsUnicodeInOutlook2000AndAnsiAfter) {
    const HWND edit =
        CreateWindowExW(0, L"Edit", L"\u00e9\u4e2d", WS_CHILD, 0, 0, 9, 9, top_, nullptr, nullptr, nullptr);
    EXPECT_EQ(WindowGetText(edit), L"\u00e9\u4e2d");
    EXPECT_THAT(log_.Lines(), Not(Contains(L"WindowGetText: WM_GETTEXT: returned:2")));
    globals::gOutlookVersion = 10;
    EXPECT_EQ(WindowGetText(edit), L"\u00e9?");
    EXPECT_TRUE(log_.Has(L"WindowGetText: WM_GETTEXT: returned:2"));
}

TEST_F(WindowText, AnAnswerBeyondTheBufferIsCut) {
    Answering control(top_, "RichEditOfTest");
    for (const long version : {9L, 10L}) {
        globals::gOutlookVersion = version;
        control.Overstate(5000);
        EXPECT_LE(WindowGetText(control.window).size(), 4u);
        control.answers[EM_GETSELTEXT] = [](WPARAM, LPARAM buffer) {
            std::fill_n(reinterpret_cast<char*>(buffer), 2050, 'a');  // all of it
            return 50'000;
        };
        EXPECT_EQ(EditSelection(control.window).size(), version == 9 ? 2048u : 1024u);
        for (const LRESULT none : {0, -1}) {
            control.Overstate(none);
            EXPECT_EQ(WindowGetText(control.window), L"");
            control.answers[EM_GETSELTEXT] = [=](WPARAM, LPARAM) { return none; };
            EXPECT_EQ(EditSelection(control.window), L"");
        }
    }
    Make(top_, "Static", "To");
    Answering field(top_, "RichEditOfTest");
    field.Overstate(5000);
    EXPECT_EQ(GetLabelledFieldText(top_, L"To", "Static").size(), 3u);
}

TEST_F(WindowText, SelectionIsReadWholeFromARichEdit) {
    for (const long version : {9L, 10L}) {
        for (const Editor editor : {Editor::Plain, Editor::Rich}) {
            ItemPane& pane = Show(version, editor);
            EXPECT_EQ(EditSelection(pane.TextWindow()), L"");
            pane.SelectText(L"second line\r\nla");
            EXPECT_EQ(EditSelection(pane.TextWindow()), L"second line\rla");
            std::wstring text(6000, L'x');
            for (size_t i = 79; i < text.size(); i += 80) text[i] = L' ';
            text[20] = L'\u00e9';
            if (version != 9) text[21] = L'\u4e2d';
            pane.SetBody(text);
            for (const size_t length : {1u, 1023u, 1024u, 1025u, 5000u}) {
                pane.SelectRange(10, length);
                EXPECT_EQ(EditSelection(pane.TextWindow()), text.substr(10, length)) << length;
            }
        }
    }
}

TEST_F(WindowText, OnlyARichEditIsAskedForItsSelectionsLength) {
    Answering word(top_, "_WwG of test");
    Answering rich(top_, "RichEditOfTest");
    for (Answering* const control : {&word, &rich}) {
        control->answers[EM_EXGETSEL] = [](WPARAM, LPARAM range) {
            *reinterpret_cast<CHARRANGE*>(range) = {100, 2100};
            return 0;
        };
        const LRESULT length = control == &word ? 2 : 2000;
        control->answers[EM_GETSELTEXT] = [length](WPARAM, LPARAM buffer) {
            std::fill_n(reinterpret_cast<char*>(buffer), length, 'a');
            return length;
        };
    }
    EXPECT_EQ(EditSelection(word.window), L"aa");
    EXPECT_EQ(EditSelection(rich.window), std::wstring(2000, L'a'));
    EXPECT_THAT(word.asked, ElementsAre(EM_GETSELTEXT));
    EXPECT_THAT(rich.asked, ElementsAre(EM_EXGETSEL, EM_GETSELTEXT));
    EXPECT_EQ(EditSelection(nullptr), L"");

    ItemPane& pane = Show(12, Editor::Word);
    pane.SelectText(L"second");
    EXPECT_EQ(EditSelection(pane.TextWindow()), L"");
    EXPECT_EQ(WindowGetText(pane.TextWindow()), body_);
}

TEST_F(WindowText, AnHtmlWindowGivesItsDocument) {
    ItemPane& pane = Show(10, Editor::Html);
    const com::Object document = WindowDOM(pane.TextWindow());
    ASSERT_TRUE(document);
    EXPECT_EQ(DocumentSelection(document), L"");
    pane.SelectText(L"second line\r\nla");
    EXPECT_EQ(DocumentSelection(document), L"second line\r\nla");
    EXPECT_EQ(DocumentSelection(WindowDOM(pane.TextWindow())), L"second line\r\nla");
    pane.OfferDocument(false);
    EXPECT_FALSE(WindowDOM(pane.TextWindow()));
    EXPECT_FALSE(WindowDOM(top_)) << "a window that does not know the question";
    EXPECT_FALSE(WindowDOM(nullptr));
    EXPECT_EQ(RaisedBy([] { DocumentSelection({}); }).number, com::kNoObject);
    Answering control(top_, "Not HTML");
    control.answers[RegisterWindowMessageA("WM_HTML_GETOBJECT")] = [](WPARAM, LPARAM) { return 12345; };
    EXPECT_FALSE(WindowDOM(control.window)) << "an answer that stands for no object";
    pane_.reset();
    EXPECT_EQ(DocumentSelection(document), L"second line\r\nla") << "a document outlives its window";
}

TEST_F(WindowText, AHangingHtmlWindowIsWaitedForOneSecond) {
    ShowWindow(top_, SW_SHOWNA);
    ItemPane& pane = Show(11, Editor::Html);
    pane.Hang(milliseconds(2500));
    const auto start = Clock::now();
    EXPECT_FALSE(WindowDOM(pane.TextWindow()));
    const auto waited = Clock::now() - start;
    EXPECT_GE(waited, milliseconds(900));
    EXPECT_LT(waited, milliseconds(2000));
    pane.Hang(milliseconds(0));
    com::Object document;
    for (int i = 0; i < 3 && !document; ++i) document = WindowDOM(pane.TextWindow());
    EXPECT_TRUE(document) << "it has come back";
}

TEST_F(WindowText, AFieldIsKnownByTheLabelBeforeIt) {
    Show(9, Editor::Plain);
    const HWND dialog = FindWindowHierarchy(top_, ItemDialogClasses(9));
    log_.Clear();
    EXPECT_EQ(GetLabelledFieldText(dialog, L"From", "Static"), L"Ann Lee");
    EXPECT_EQ(GetLabelledFieldText(dialog, L"Sub&ject:", "Static"), L"Quarter report");
    EXPECT_EQ(GetLabelledFieldText(dialog, L"Cc", "Static"), L"") << "an empty field";
    EXPECT_EQ(GetLabelledFieldText(dialog, L"Fro", "Static"), L"");
    EXPECT_EQ(GetLabelledFieldText(dialog, L"From:", "Static"), L"");
    EXPECT_EQ(GetLabelledFieldText(dialog, L"From", "Button"), L"");
    EXPECT_THAT(log_.Lines(), ElementsAre(L"GMII: From:Ann Lee", L"GMII: Sub&ject::Quarter report"));

    Show(9, Editor::Plain, {.fieldClass = L"Edit"});
    EXPECT_EQ(GetLabelledFieldText(FindWindowHierarchy(top_, ItemDialogClasses(9)), L"From", "Static"), L"");
    const HWND lone = Make(top_, "Button");
    Make(lone, "Static", "From");
    EXPECT_EQ(GetLabelledFieldText(lone, L"From", "Static"), L"") << "nothing follows";
    Answering field(lone, "RichEditOfTest");
    field.answers[WM_GETTEXTLENGTH] = [](WPARAM, LPARAM) { return -1; };
    EXPECT_EQ(GetLabelledFieldText(lone, L"From", "Static"), L"");
    EXPECT_THAT(field.asked, ElementsAre(WM_GETTEXTLENGTH));
    field.Overstate(1);
    EXPECT_EQ(GetLabelledFieldText(lone, L"From", "Static").size(), 1u);
    field.Overstate(-1);
    EXPECT_EQ(GetLabelledFieldText(lone, L"From", "Static"), L"");
}

TEST_F(WindowText, ForeignBuffersAreCopied) {
    EXPECT_EQ(LPSTRtoBSTR("a\xe9z", 2), L"a\u00e9");
    EXPECT_EQ(LPSTRtoBSTR("ab\0cd", 5), L"ab");
    EXPECT_EQ(LPSTRtoBSTR("ab", 0), L"");
    EXPECT_EQ(LPSTRtoBSTR("ab", -1), L"");
    EXPECT_EQ(LPWSTRtoBSTR(L"a\u4e2dz", 2), L"a\u4e2d");
    EXPECT_EQ(LPWSTRtoBSTR(L"ab\0cd", 5), (std::wstring{L"ab\0cd", 5}));
    EXPECT_EQ(LPWSTRtoBSTR(L"ab", 0), L"");
    EXPECT_EQ(LPWSTRtoBSTR(L"ab", -1), L"");
}

}  // namespace
}  // namespace beacon::test
