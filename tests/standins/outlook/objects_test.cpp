// Objects published by name, and the words of a script.
#include <gmock/gmock.h>

#include "com/event_sink.h"
#include "common/automation_object.h"
#include "common/words.h"

namespace beacon::standin {
namespace {

using testing::ElementsAre;

constexpr IID kEvents = {0x7e57, 1, 1, {1, 2, 3, 4, 5, 6, 7, 8}};

class Sample final : public AutomationObject {
public:
    Sample() : AutomationObject(L"Sample") { AddEvents(kEvents, L"SampleEvents"); }
};

TEST(AutomationObject, LivesWhileItIsHeldFromOutsideAndNoLonger) {
    std::weak_ptr<Sample> watch;
    com::ComPtr<IConnectionPoint> point;
    {
        const auto sample = std::make_shared<Sample>();
        watch = sample;
        EXPECT_EQ(sample->OutsideReferences(), 0u);
        com::ComPtr<IDispatch> held(sample.get());
        com::ComPtr<IConnectionPointContainer> container;
        ASSERT_EQ(held.As(&container), S_OK);
        ASSERT_EQ(container->FindConnectionPoint(kEvents, &point), S_OK);
        EXPECT_EQ(sample->OutsideReferences(), 3u);
    }
    ASSERT_FALSE(watch.expired());  // a connection point keeps its object
    const auto report = OutsideReferences();
    ASSERT_EQ(report.size(), 1u);
    EXPECT_EQ(report[0].description, L"Sample");
    EXPECT_EQ(report[0].references, 1u);
    point.Reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(OutsideReferences().empty());
}

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
