#include "engine/conversation.h"

#include <gmock/gmock.h>

#include "engine/view.h"

namespace beacon::standin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A client with handle 7 at a clock that goes 5 ms a message.
class Talk {
public:
    std::vector<std::wstring> Says(const std::wstring& text) { return Lines(conversation_.Message(text, now_ += 5)); }

    std::vector<std::wstring> Controls(const std::wstring& text) {
        return Lines(conversation_.Control(text, now_ += 5));
    }

    std::vector<std::wstring> Ends(bool inOrder) { return Lines(conversation_.Ended(inOrder, now_ += 5)); }

    Talk& Greeted() {
        Says(L"<hello id=\"7\"/>");
        return *this;
    }

    Talk& InMail() {
        Greeted().Says(Mail(L"Lunch"));
        return *this;
    }

    static std::wstring Mail(const std::wstring& title) {
        return L"<pre_send_document title=\"" + title +
               L"\"  id=\"7\"  refresh=\"true\"  docId=\"7;Bo;1\"  docPath=\"/\" docName=\"" + title +
               L"\" spanCnt=\"100\"  type=\"email\"  sender=\"Bo\"  recipient=\"Ann\"  buttonClicked=\"0\" />";
    }

    static std::wstring Text(const std::wstring& text, const std::wstring& id = L"7;Bo;1") {
        return L"<send_document emphasis=\"high\" doc=\"" + text + L"\" docId=\"" + id +
               L"\" docPath=\"/\" docName=\"Lunch\" />";
    }

    static std::wstring End(const std::wstring& id = L"7;Bo;1") {
        return L"<eod docId=\"" + id + L"\" shouldProcess=\"1\"/>";
    }

private:
    static std::vector<std::wstring> Lines(const std::vector<Observation>& observations) {
        std::vector<std::wstring> lines;
        for (const Observation& observation : observations)
            lines.push_back(DescribeObservation(7, observation, 20).substr(9));  // without the handle
        return lines;
    }

    Conversation conversation_{7};
    uint64_t now_ = 1000;
};

TEST(Conversation, ShowsAMail) {
    Talk talk;
    EXPECT_THAT(talk.Says(L"<hello id=\"7\"/>"), ElementsAre(L"hello"));
    EXPECT_THAT(talk.Says(Talk::Mail(L"He said \"hi\"")),
                ElementsAre(L"MAIL \"He said \"hi\"\" from \"Bo\" to \"Ann\" docId \"7;Bo;1\""));
    EXPECT_THAT(talk.Says(Talk::Mail(L"Lunch")),
                ElementsAre(L"  interrupted by the next preamble: 0 texts, 0 persons, 5 ms",
                            L"MAIL \"Lunch\" from \"Bo\" to \"Ann\" docId \"7;Bo;1\""));
    EXPECT_THAT(talk.Says(Talk::Text(L"12 &amp; then\n&lt;13&gt;")), ElementsAre(L"  high     \"12 & then\\n<13>\""));
    EXPECT_THAT(talk.Says(Talk::Text(std::wstring(30, L'x'))),
                ElementsAre(L"  high     \"" + std::wstring(20, L'x') + L"...\" (30 characters)"));
    EXPECT_THAT(talk.Says(Talk::End()), ElementsAre(L"  complete: 2 texts, 0 persons, 15 ms"));
    EXPECT_THAT(talk.Controls(L"<exit id=\"7\"/>"), ElementsAre(L"exit, told to the controller"));
    EXPECT_THAT(talk.Says(L"<exit id=\"7\"/>"), ElementsAre(L"exit, told to the engine"));
    EXPECT_THAT(talk.Ends(true), IsEmpty());
}

TEST(Conversation, ShowsAContact) {
    Talk talk;
    EXPECT_THAT(
        talk.Greeted().Says(L"<pre_send_document type=\"contact\" title=\"Ann Lee\"  id = \"7\"  refresh=\"true\"  "
                            L"docId=\"C7\"  docPath=\"/\" docName=\"Ann Lee\" spanCnt=\"100\"  buttonClicked=\"1\" />"),
        ElementsAre(L"CONTACT \"Ann Lee\" [button clicked] docId \"C7\""));
    EXPECT_THAT(talk.Says(L"<person firstname=\"Ann\" lastname=\"Lee\" company=\"L &amp; C\" position=\"\" email=\"a\" "
                          L"docId=\"C7\" docPath=\"/\" docName=\"Ann Lee\"/>"),
                ElementsAre(L"  person   \"Ann Lee, L & C, a\""));
    EXPECT_THAT(talk.Says(L"<eod docId=\"C7\" shouldProcess=\"0\" reasonNoProcess=\"3\"/>"),
                ElementsAre(L"  unsupported, reason 3: 0 texts, 1 person, 10 ms"));
}

TEST(Conversation, TellsHowALinkEnded) {
    EXPECT_THAT(Talk().InMail().Ends(false), ElementsAre(L"  link lost: 0 texts, 0 persons, 5 ms"));
    EXPECT_THAT(Talk().InMail().Ends(true),
                ElementsAre(L"  interrupted: the client disconnected: 0 texts, 0 persons, 5 ms",
                            L"note: disconnected without exit"));
    EXPECT_THAT(Talk().InMail().Says(L"<exit id=\"7\"/>"),
                ElementsAre(L"  interrupted by exit: 0 texts, 0 persons, 5 ms", L"exit, told to the engine"));
}

TEST(Conversation, NamesEachFaultAndGoesOn) {
    struct Row {
        std::wstring message;
        std::wstring fault;
    };

    const Row inMail[] = {
        {L"<nonsense/>", L"unknown element \"nonsense\""},
        {L"nonsense", L"the text does not begin with \"<\""},
        {Talk::Text(L"x", L"other"), L"send_document: wrong docId \"other\", the open document is \"7;Bo;1\""},
        {Talk::End(L"other"), L"eod: wrong docId \"other\", the open document is \"7;Bo;1\""},
        {Talk::Text(L"a & b"), L"send_document: doc is not encoded"},
        {L"<hello id=\"8\"/>", L"hello: id \"8\" is not this client's handle"},
        {L"<eod docId=\"7;Bo;1\"/>", L"eod: attribute shouldProcess is missing"},
        {L"<send_document emphasis=\"loud\" doc=\"\" docId=\"7;Bo;1\" docName=\"Lunch\"/>",
         L"send_document: unknown emphasis \"loud\""},
        {L"<send_document emphasis=\"low\" doc=\"\" docId=\"7;Bo;1\" docName=\"Dinner\"/>",
         L"send_document: docName is not the preamble's"},
        {L"<pre_send_document type=\"fax\" title=\"a\" docName=\"b\"/>", L"preamble: unknown type \"fax\""},
        {L"<pre_send_document type=\"fax\" title=\"a\" docName=\"b\"/>", L"preamble: title and docName differ"},
        {L"<pre_send_document buttonClicked=\"yes\"/>", L"preamble: buttonClicked is neither \"0\" nor \"1\""},
    };
    for (const Row& row : inMail)
        EXPECT_THAT(Talk().InMail().Says(row.message), testing::Contains(L"FAULT: " + row.fault));
    EXPECT_THAT(Talk().Says(L"<hello id=\"7\"/>"), ElementsAre(L"hello"));
    EXPECT_THAT(Talk().Says(Talk::Mail(L"Lunch")), testing::Contains(L"FAULT: pre_send_document before hello"));
    EXPECT_THAT(Talk().Greeted().Says(Talk::Text(L"x")),
                testing::Contains(L"FAULT: send_document before any preamble"));
    Talk ended;
    ended.InMail().Says(Talk::End());
    EXPECT_THAT(ended.Says(Talk::Text(L"x")), ElementsAre(L"FAULT: send_document after eod", L"  high     \"x\""));
    EXPECT_THAT(Talk().Greeted().Says(L"<person firstname=\"A\" lastname=\"\" company=\"\" position=\"\" email=\"\" "
                                      L"docId=\"C\" docPath=\"/\" docName=\"A\"/>"),
                ElementsAre(L"note: person outside a document", L"  person   \"A\""));
}

}  // namespace
}  // namespace beacon::standin
