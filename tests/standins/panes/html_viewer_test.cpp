#include <gtest/gtest.h>
#include <objbase.h>
#include <oleacc.h>

#include <chrono>

#include "com/object.h"
#include "outlook/panes/item_pane.h"
#include "tests/standins/panes/walking.h"

namespace beacon::test {
namespace {

using com::Object;
using Microsoft::WRL::ComPtr;
using standin::Editor;
using standin::ItemPane;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

class HtmlViewerTest : public testing::Test {
protected:
    HtmlViewerTest() {
        CoInitialize(nullptr);
        pane_ = ItemPane::ForInspector(top_, 11, Editor::Html);
        pane_->Show({L"Ann", L"Bob", L"Prices", L"a < b\r\nc", L"<p>a &lt; b</p><p>c</p>"});
    }

    ~HtmlViewerTest() override {
        pane_.reset();
        CoUninitialize();
    }

    TopWindow top_;
    std::unique_ptr<ItemPane> pane_;
};

TEST_F(HtmlViewerTest, DocumentAnswersByName) {
    pane_->SelectText(L"< b\r\nc");
    const auto taken = Document(pane_->TextWindow());
    const Object document(taken.Get());
    const Object range = document.GetObject(L"selection").CallObject(L"CREATERANGE");
    EXPECT_EQ(range.GetText(L"text"), L"< b\r\nc");
    EXPECT_EQ(range.GetText(L"htmlText"), L"&lt; b<BR>c");
    EXPECT_EQ(document.GetObject(L"body").GetText(L"innerHTML"), L"<p>a &lt; b</p><p>c</p>");
    EXPECT_EQ(document.GetText(L"title"), L"Prices");
    EXPECT_THROW(document.GetText(L"noSuchMember"), com::Error);
    EXPECT_THROW(document.Put(L"title", L"x"), com::Error);
}

TEST_F(HtmlViewerTest, DocumentAnswersByVirtualTable) {
    pane_->SelectText(L"b");
    ComPtr<IHTMLDocument2> document;
    ASSERT_EQ(Document(pane_->TextWindow()).As(&document), S_OK);
    ComPtr<IHTMLSelectionObject> selection;
    ASSERT_EQ(document->get_selection(&selection), S_OK);
    ComPtr<IDispatch> range;
    ASSERT_EQ(selection->createRange(&range), S_OK);
    ComPtr<IHTMLTxtRange> textRange;
    ASSERT_EQ(range.As(&textRange), S_OK);
    _bstr_t text;
    ASSERT_EQ(textRange->get_text(text.GetAddress()), S_OK);
    EXPECT_EQ(std::wstring(text), L"b");
    ComPtr<IHTMLElement> body;
    ASSERT_EQ(document->get_body(&body), S_OK);
    ASSERT_EQ(body->get_innerText(text.GetAddress()), S_OK);
    EXPECT_EQ(std::wstring(text), L"a < b\r\nc");
    // The last methods of the tables, which a shorter table would not have.
    EXPECT_EQ(document->createStyleSheet(nullptr, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(body->get_all(nullptr), E_NOTIMPL);
}

TEST_F(HtmlViewerTest, DocumentIsLiveAndOutlivesItsWindow) {
    const auto taken = Document(pane_->TextWindow());
    const Object document(taken.Get());
    const auto selected = [&] { return document.GetObject(L"selection").CallObject(L"createRange").GetText(L"text"); };
    EXPECT_EQ(selected(), L"");
    pane_->SelectText(L"a");
    EXPECT_EQ(selected(), L"a");
    pane_.reset();
    EXPECT_EQ(selected(), L"a");
}

TEST_F(HtmlViewerTest, EachAnswerIsTakenOnce) {
    const LRESULT answer = SendMessageA(pane_->TextWindow(), RegisterWindowMessageA("WM_HTML_GETOBJECT"), 0, 0);
    ComPtr<IHTMLDocument> document;
    EXPECT_EQ(ObjectFromLresult(answer, IID_IHTMLDocument, 0, &document), S_OK);
    EXPECT_NE(document, nullptr);
    document.Reset();
    EXPECT_TRUE(FAILED(ObjectFromLresult(answer, IID_IHTMLDocument, 0, &document)));
}

TEST_F(HtmlViewerTest, GivesNoDocumentWhenToldSo) {
    pane_->OfferDocument(false);
    EXPECT_EQ(SendMessageA(pane_->TextWindow(), RegisterWindowMessageA("WM_HTML_GETOBJECT"), 0, 0), 0);
    pane_->OfferDocument(true);
    EXPECT_NE(Document(pane_->TextWindow()), nullptr);
}

TEST_F(HtmlViewerTest, HangsAndComesBack) {
    ShowWindow(top_, SW_SHOWNA);
    pane_->SelectText(L"b");
    pane_->Hang(milliseconds(2500));
    const HWND viewer = Walk(top_, {"AfxWndW", "#32770", "AfxWndA", "AfxWndW", "Internet Explorer_Server"});
    EXPECT_EQ(viewer, pane_->TextWindow());
    const auto start = Clock::now();
    EXPECT_EQ(Document(viewer), nullptr);
    const auto waited = Clock::now() - start;
    EXPECT_GE(waited, milliseconds(900));
    EXPECT_LT(waited, milliseconds(2000)) << "the client's time-out ends the wait";
    pane_->Resize({0, 0, 300, 300});
    RedrawWindow(top_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_LT(Clock::now() - start, milliseconds(2200)) << "the pane's own thread is not held up";

    pane_->Hang(milliseconds(0));
    ComPtr<IHTMLDocument> taken;
    for (int i = 0; i < 3 && !taken; ++i) taken = Document(viewer);
    ASSERT_NE(taken, nullptr);
    const Object document(taken.Get());
    EXPECT_EQ(document.GetObject(L"selection").CallObject(L"createRange").GetText(L"text"), L"b");
}

TEST_F(HtmlViewerTest, EndsWhileHanging) {
    pane_->Hang(std::chrono::minutes(1));
    const HWND viewer = pane_->TextWindow();
    const auto start = Clock::now();
    pane_.reset();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_FALSE(IsWindow(viewer));
}

}  // namespace
}  // namespace beacon::test
