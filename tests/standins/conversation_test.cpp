// What the monitor understands of a client's texts, and shows.
#include "engine/conversation.h"

#include <gmock/gmock-matchers.h>

#include "engine/view.h"

namespace beacon::standin {
namespace {

using Lines = std::vector<std::wstring>;

std::wstring Flat(const Element& element) {
    std::wstring text = element.name;
    for (const Attribute& attribute : element.attributes) text += L"|" + attribute.name + L"=" + attribute.value;
    for (const std::wstring& problem : element.problems) text += L"|! " + problem;
    return text;
}

TEST(Wire, ReadsWhatClientsSend) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"<a t=\"say \"hi\" now\"  id = \"1\" u=\"\" />", L"a|t=say \"hi\" now|id=1|u="},
        {L"<a t=\"x\"y=\"<b/>\"/>", L"a|t=x\"y=\"<b/>"},
        {L"<a t=\"1\" t=\"2\"/>", L"a|t=1|t=2|! attribute t comes twice"},
        {L"<a t=\"1\"", L"a|t=1\"|! malformed attributes: t has no closing quote"},
        {L"", L"|! the text does not begin with \"<\""},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(Flat(ParseElement(text)), expected) << text;
    EXPECT_EQ(DecodeEntities(L"&lt;a&gt; &amp;amp; &quot;b&quot; &apos;c&apos; &nbsp; &"),
              L"<a> &amp; \"b\" 'c' &nbsp; &");
    EXPECT_TRUE(IsEncoded(L"a &amp;nbsp; b"));
    for (const wchar_t* text : {L"a & b", L"<", L"it's", L"&nbsp;"}) EXPECT_FALSE(IsEncoded(text)) << text;
}

/// What is shown of a text from the client with handle 7, at a clock that goes 5 ms a text.
class Talk : public testing::Test {
protected:
    Lines Says(const std::wstring& text) { return Shown(conversation_.Message(text, now_ += 5)); }

    /// Without the handle.
    static Lines Shown(const std::vector<Observation>& observations) {
        Lines lines;
        for (const Observation& one : observations) lines.push_back(DescribeObservation(7, one, 20).substr(9));
        return lines;
    }

    static std::wstring Mail(const std::wstring& title) {
        return L"<pre_send_document title=\"" + title +
               L"\"  id=\"7\"  refresh=\"true\"  docId=\"D\"  docPath=\"/\" docName=\"" + title +
               L"\" spanCnt=\"100\"  type=\"email\"  sender=\"Bo\"  recipient=\"Ann\"  buttonClicked=\"0\" />";
    }

    static std::wstring Text(const std::wstring& text, const std::wstring& id = L"D") {
        return L"<send_document emphasis=\"high\" doc=\"" + text + L"\" docId=\"" + id + L"\" docName=\"Lunch\" />";
    }

    Conversation conversation_{7};
    uint64_t now_ = 1000;
};

TEST_F(Talk, IsShownStepByStep) {
    const std::pair<std::wstring, Lines> rows[] = {
        {L"<hello id=\"7\"/>", {L"hello"}},
        {Mail(L"Lunch"), {L"MAIL \"Lunch\" from \"Bo\" to \"Ann\" docId \"D\""}},
        {Text(L"12 &amp; then\n&lt;13&gt;"), {L"  high     \"12 & then\\n<13>\""}},
        {Text(std::wstring(30, L'x')), {L"  high     \"" + std::wstring(20, L'x') + L"...\" (30 characters)"}},
        {L"<eod docId=\"D\" shouldProcess=\"1\"/>", {L"  complete: 2 texts, 0 persons, 15 ms"}},
        {Text(L"x"), {L"FAULT: send_document after eod", L"  high     \"x\""}},
        {Mail(L"Dinner"), {L"MAIL \"Dinner\" from \"Bo\" to \"Ann\" docId \"D\""}},
        {L"<person firstname=\"Ann\" lastname=\"Lee\" company=\"L &amp; C\" position=\"\" email=\"a\" docId=\"D\"/>",
         {L"  person   \"Ann Lee, L & C, a\""}},
        {L"<exit id=\"7\"/>", {L"  interrupted by exit: 0 texts, 1 person, 10 ms", L"exit, told to the engine"}},
        {L"<hello id=\"7\"/>", {L"hello"}},
    };
    for (const auto& [text, shown] : rows) EXPECT_EQ(Says(text), shown);
    EXPECT_EQ(Shown(conversation_.Ended(true, now_)), Lines{L"note: disconnected without exit"});
    Says(Mail(L"Lunch"));
    EXPECT_EQ(Shown(conversation_.Ended(false, now_)), Lines{L"  link lost: 0 texts, 0 persons, 0 ms"});
}

TEST_F(Talk, NamesEachFaultAndGoesOn) {
    EXPECT_THAT(Says(Mail(L"Lunch")), testing::Contains(L"FAULT: pre_send_document before hello"));
    Says(L"<hello id=\"7\"/>");
    const std::pair<std::wstring, std::wstring> rows[] = {
        {L"<nonsense/>", L"unknown element \"nonsense\""},
        {Text(L"x", L"other"), L"send_document: wrong docId \"other\", the open document is \"D\""},
        {Text(L"a & b"), L"send_document: doc is not encoded"},
        {L"<hello id=\"8\"/>", L"hello: id \"8\" is not this client's handle"},
        {L"<send_document docId=\"D\" docName=\"Dinner\"/>", L"send_document: docName is not the preamble's"},
        {L"<eod docId=\"D\"/>", L"eod: attribute shouldProcess is missing"},
        {Text(L"x", L"new"), L"send_document before any preamble"},
        {L"<pre_send_document type=\"fax\"/>", L"preamble: unknown type \"fax\""},
        {L"<pre_send_document title=\"a\" docName=\"b\"/>", L"preamble: title and docName differ"},
        {L"<pre_send_document buttonClicked=\"yes\"/>", L"preamble: buttonClicked is neither \"0\" nor \"1\""},
    };
    for (const auto& [text, fault] : rows) EXPECT_THAT(Says(text), testing::Contains(L"FAULT: " + fault));
}

}  // namespace
}  // namespace beacon::standin
