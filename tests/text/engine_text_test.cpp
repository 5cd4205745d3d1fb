#include <gtest/gtest.h>

#include <set>

#include "engine/encoders.h"
#include "engine/message_formats.h"

namespace beacon {
namespace {

TEST(XmlEncode, ReplacesMarkupAndDropsTheUnevenSetOfControls) {
    EXPECT_EQ(L"a&quot;b&apos;c", XmlEncode(L"a\"b'c"));
    EXPECT_EQ(L"&lt;&amp;&gt;\t\r\n\x00E9\x20AC", XmlEncode(L"<&>\t\r\n\x00E9\x20AC"));

    const std::set<int> dropped{1, 2, 3, 4, 5, 6, 7, 8, 0xB, 0xC, 0xE, 0x19, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F};
    for (int code = 0; code < 0x22; ++code) {
        const auto character = static_cast<wchar_t>(code);
        const std::wstring expected = dropped.contains(code) ? L"" : std::wstring(1, character);
        EXPECT_EQ(expected, ExpandEntity(character)) << code;
        const std::wstring line(20, L'a');
        EXPECT_EQ(line + expected + line, XmlEncode(line + character + line)) << code;
    }
}

TEST(UrlEncoding, RoundTripsAndKeepsOddEnds) {
    EXPECT_EQ(L"a%20b%25", UrlEncode(L"a b%"));
    EXPECT_EQ(L"%3B%2F%3F%3A%40%3D%26%20%22%3C%3E%23%25%7B%7D%7C%5C%5E%7E%5B%5D%60",
              UrlEncode(L";/?:@=& \"<>#%{}|\\^~[]`"));
    EXPECT_EQ(L"aZ09-_.!*'(),+$\x00E9\x20AC", UrlEncode(L"aZ09-_.!*'(),+$\x00E9\x20AC"));

    EXPECT_EQ(L"J", UrlDecode(L"%4a"));
    EXPECT_EQ(L"J5", UrlDecode(L"%4A5"));
    EXPECT_EQ(L"\x0A", UrlDecode(L"%zA"));
    EXPECT_EQ(L"a%", UrlDecode(L"a%"));
    EXPECT_EQ(L"a%4", UrlDecode(L"a%4"));
    EXPECT_EQ(L"%41", UrlDecode(L"%2541"));
    EXPECT_EQ(L"\x00FF", UrlDecode(L"%fF"));
}

TEST(Messages, MatchTheProtocolToTheByte) {
    const DocumentRef document{L"D42", L"/", L"Budget.msg"};
    const std::wstring rest = L"docId=\"D42\" docPath=\"/\" docName=\"Budget.msg\"";
    const std::wstring common =
        L"refresh=\"true\"  docId=\"D42\"  docPath=\"/\" docName=\"Budget.msg\" spanCnt=\"100\"  ";

    const struct {
        std::wstring message;
        std::wstring expected;
    } cases[] = {
        {PreambleMessage(-1234, false, document),
         L"<pre_send_document title=\"Budget.msg\"  id = \"-1234\"  " + common + L"buttonClicked=\"0\" />"},
        {ContactPreambleMessage(1234, true, document),
         L"<pre_send_document type=\"contact\" title=\"Budget.msg\"  id = \"1234\"  " + common +
             L"buttonClicked=\"1\" />"},
        {EmailPreambleMessage(1234, true, document, L"Bo", L"Ann"),
         L"<pre_send_document title=\"Budget.msg\"  id=\"1234\"  " + common +
             L"type=\"email\"  sender=\"Bo\"  recipient=\"Ann\"  buttonClicked=\"1\" />"},
        {PersonMessage({L"A", L"B", L"C", L"D", L"E"}, document),
         L"<person firstname=\"A\" lastname=\"B\" company=\"C\" position=\"D\" email=\"E\" " + rest + L"/>"},
        {SendDocumentMessage(L"low", L"&amp;", document),
         L"<send_document emphasis=\"low\" doc=\"&amp;\" " + rest + L" />"},
        {EodMessage(L"X1"), L"<eod docId=\"X1\" shouldProcess=\"1\"/>"},
        {UnsupportedEodMessage(L"X1"), L"<eod docId=\"X1\" shouldProcess=\"0\" reasonNoProcess=\"3\"/>"},
        {HelloMessage(7), L"<hello id=\"7\"/>"},
        {ExitMessage(-2), L"<exit id=\"-2\"/>"},
    };

    for (const auto& one : cases) EXPECT_EQ(one.expected, one.message);
}

}  // namespace
}  // namespace beacon
