#include "engine/wire.h"

#include <gtest/gtest.h>

#include "engine/view.h"

namespace beacon::standin {
namespace {

std::wstring Flat(const Element& element) {
    std::wstring text = element.name;
    for (const Attribute& attribute : element.attributes) text += L"|" + attribute.name + L"=" + attribute.value;
    for (const std::wstring& problem : element.problems) text += L"|! " + problem;
    return text;
}

TEST(Wire, ReadsWhatClientsSend) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"<hello id=\"1234\"/>", L"hello|id=1234"},
        {L"<pre_send_document title=\"a\"  id = \"1\"  type=\"email\"  x=\"\" />",
         L"pre_send_document|title=a|id=1|type=email|x="},
        {L"<a t=\"say \"hi\" now\" u=\"1\"/>", L"a|t=say \"hi\" now|u=1"},
        {L"<a t=\"ends with \"quote\"\" u=\"1\"/>", L"a|t=ends with \"quote\"|u=1"},
        {L"<a t=\"x=\"1\"/>", L"a|t=x=\"1"},
        {L"<a t=\"<b/>\" />", L"a|t=<b/>"},
        {L"<a t=\"1\" t=\"2\"/>", L"a|t=1|t=2|! attribute t comes twice"},
        {L"<a t=\"1\"", L"a|t=1\"|! malformed attributes: t has no closing quote"},
        {L"<a t=1/>", L"a|! malformed attributes from \"t=1/>\" on"},
        {L"<a", L"a|! the closing \"/>\" is missing"},
        {L"</>", L"|! no name follows \"<\""},
        {L"text", L"|! the text does not begin with \"<\""},
        {L"", L"|! the text does not begin with \"<\""},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(Flat(ParseElement(text)), expected) << text;
}

TEST(Wire, DecodesTheFiveEntitiesOnly) {
    EXPECT_EQ(DecodeEntities(L"&lt;a&gt; &amp;amp; &quot;b&quot; &apos;c&apos; &nbsp; &"),
              L"<a> &amp; \"b\" 'c' &nbsp; &");
    EXPECT_TRUE(IsEncoded(L"a &amp;nbsp; b"));
    for (const wchar_t* text : {L"a & b", L"<", L">", L"it's", L"\"", L"&nbsp;"}) EXPECT_FALSE(IsEncoded(text)) << text;
}

TEST(View, RawEscapesKeepALineALine) { EXPECT_EQ(EscapeRaw(L"a\\n\r\nb\t\v"), L"a\\\\n\\r\\nb\t\v"); }

}  // namespace
}  // namespace beacon::standin
