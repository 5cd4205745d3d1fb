#include "common/words.h"

#include <gmock/gmock.h>

namespace beacon::standin {
namespace {

using testing::ElementsAre;

std::vector<std::wstring> Texts(const wchar_t* line) {
    std::vector<std::wstring> texts;
    for (Words words(line); !words.AtEnd();) texts.push_back(words.Take(L"word"));
    return texts;
}

TEST(Words, AreSeparatedQuotedCommentedAndTakenByKind) {
    EXPECT_THAT(Texts(L"select 1,2, \"a, b\"  # rest"), ElementsAre(L"select", L"1", L"2", L"a, b"));
    EXPECT_THAT(Texts(LR"(x "tab\t quote\" slash\\ digit\d" "")"),
                ElementsAre(L"x", L"tab\t quote\" slash\\ digit\\d", L""));
    Words words(L"\"all\" all -7 2 <A b=\"1\", #2>");
    EXPECT_FALSE(words.Accept(L"all"));  // quoted, it is a text
    EXPECT_EQ(words.Take(L"text"), L"all");
    EXPECT_TRUE(words.Accept(L"all"));
    EXPECT_EQ(words.TakeNumber(L"number"), -7);
    EXPECT_EQ(words.TakeTime(std::chrono::seconds(1)), std::chrono::milliseconds(2000));
    EXPECT_THROW(words.End(), ScriptError);
    EXPECT_EQ(words.TakeRest(), L"<A b=\"1\", #2>");
}

}  // namespace
}  // namespace beacon::standin
