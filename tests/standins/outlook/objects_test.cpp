// Objects published by name, the property reader, and the words of a script.
#include <gmock/gmock.h>

#include "com/event_sink.h"
#include "common/automation_object.h"
#include "common/words.h"
#include "outlook/mapi_reader.h"
#include "outlook/store.h"

namespace beacon::standin {
namespace {

using testing::ElementsAre;

constexpr IID kEvents = {0x7e57, 1, 1, {1, 2, 3, 4, 5, 6, 7, 8}};

class Sample final : public AutomationObject {
public:
    Sample() : AutomationObject(L"Sample") {
        AddMethod(1, L"Join", 1, 3, [](const CallArguments& arguments) {
            return com::FromText(arguments.Text(0) + arguments.Text(1, L"-") + std::to_wstring(arguments.Long(2, 7)));
        });
        AddProperty(
            2, L"Size", [this] { return com::FromLong(size); },
            [this](const CallArguments& arguments) { size = arguments.Long(0); });
        AddProperty(3, L"Fixed", [] { return com::FromLong(1); });
        AddMethod(4, L"Fail", 0, 0, [](const CallArguments&) -> _variant_t { com::Raise(com::kSubscriptOutOfRange); });
        AddEvents(kEvents, L"SampleEvents");
    }

    long size = 0;
};

HRESULT Call(IDispatch* object, DISPID member, WORD flags, std::vector<VARIANT> reversed, _variant_t& result,
             EXCEPINFO& info) {
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    if (flags == DISPATCH_PROPERTYPUT) {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    UINT wrong = 0;
    return object->Invoke(member, IID_NULL, 0, flags, &parameters, &result, &info, &wrong);
}

HRESULT Call(IDispatch* object, DISPID member, WORD flags, std::vector<VARIANT> reversed = {}) {
    _variant_t result;
    EXCEPINFO info{};
    const HRESULT answer = Call(object, member, flags, std::move(reversed), result, info);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrSource);
    return answer;
}

TEST(AutomationObject, TakesArgumentsAsAutomationDoes) {
    const auto sample = std::make_shared<Sample>();
    const com::Object object(sample.get());
    EXPECT_EQ(object.Call(L"join", {_variant_t(L"a")}), _variant_t(L"a-7"));
    EXPECT_EQ(object.Call(L"Join", {_variant_t(5L), com::Missing(), _variant_t(L"12")}), _variant_t(L"5-12"));
    EXPECT_EQ(Call(sample.get(), 1, DISPATCH_METHOD), DISP_E_BADPARAMCOUNT);
    const _variant_t word(L"word");
    EXPECT_EQ(Call(sample.get(), 1, DISPATCH_METHOD, {word, word, word}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(sample.get(), 1, DISPATCH_METHOD, {com::Missing()}), DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(Call(sample.get(), 1, DISPATCH_PROPERTYGET, {word}), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Call(sample.get(), 4, DISPATCH_METHOD), DISP_E_EXCEPTION);
    object.Put(L"Size", _variant_t(L"41"));
    EXPECT_EQ(object.GetLong(L"Size"), 41);
    EXPECT_EQ(Call(sample.get(), 2, DISPATCH_PROPERTYPUT, {word}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(sample.get(), 3, DISPATCH_PROPERTYPUT, {word}), DISP_E_MEMBERNOTFOUND);
    sample->Retire();
    EXPECT_EQ(Call(sample.get(), 2, DISPATCH_PROPERTYGET), RPC_E_DISCONNECTED);
}

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

TEST(AutomationObject, FiresOverASnapshotOfSinksThatChangesUnderway) {
    const auto sample = std::make_shared<Sample>();
    std::vector<std::string> heard;
    com::EventSubscription first, second, late;
    com::Object last(sample.get());
    first.Advise(static_cast<IDispatch*>(sample.get()), kEvents, [&](DISPID, const com::EventArguments& arguments) {
        heard.push_back("first");
        arguments.SetBool(1, true);
        first.Unadvise();
        second.Unadvise();
        late.Advise(static_cast<IDispatch*>(sample.get()), kEvents,
                    [&](DISPID, const com::EventArguments&) { heard.push_back("late"); });
        last.Reset();
    });
    second.Advise(static_cast<IDispatch*>(sample.get()), kEvents,
                  [&](DISPID, const com::EventArguments&) { heard.push_back("second"); });
    VARIANT_BOOL cancel = VARIANT_FALSE;
    sample->Fire(kEvents, 1, {Give(sample), ByReference(cancel)});
    EXPECT_THAT(heard, ElementsAre("first"));
    EXPECT_EQ(cancel, VARIANT_TRUE);
    late.Unadvise();
    EXPECT_EQ(sample->OutsideReferences(), 0u);  // the argument was released after the call
    EXPECT_EQ(sample->Sinks(), 0u);
}

std::shared_ptr<Item> Mail() {
    ItemData data;
    data.entryId = L"A1";
    data.subject = L"\u6771\u4eac";
    data.body = L"0123456789";
    data.senderName = L"Anna";
    data.receivedBy = L"Paul";
    return std::make_shared<Item>(data, EventGeneration::Old, nullptr);
}

std::wstring Property(MapiReader& reader, const std::shared_ptr<Item>& item, long tag) {
    _variant_t value;
    com::Check(reader.GetStringProperty(Give(item), tag, &value));
    return com::ToText(value);
}

TEST(MapiReader, ReadsWhatIsStored) {
    const com::ComPtr<MapiReader> reader(new MapiReader);
    const auto item = Mail();
    BSTR text = nullptr;
    EXPECT_EQ(reader->GetStringPropertyLimited(Give(item), 0x1000001E, 4, &text), static_cast<HRESULT>(0x80040605));
    ASSERT_EQ(reader->Initialize(), S_OK);
    EXPECT_EQ(Property(*reader.Get(), item, 0x0C1A001E), L"Anna");
    EXPECT_EQ(Property(*reader.Get(), item, 0x004E001E), L"Paul");
    EXPECT_EQ(Property(*reader.Get(), item, 0x0037001E), L"??");  // what the 8-bit type leaves of it
    EXPECT_EQ(Property(*reader.Get(), item, 0x0037001F), L"\u6771\u4eac");
    EXPECT_EQ(Property(*reader.Get(), item, 0x3A06001F), L"");
    EXPECT_EQ(reader->GetStringPropertyLimited(Give(item), 0x1000001E, 4, &text), S_OK);
    EXPECT_EQ(_bstr_t(text, false), _bstr_t(L"0123"));
    _variant_t value;
    EXPECT_EQ(reader->GetStringProperty(Give(item), 0x6789001E, &value), static_cast<HRESULT>(0x8004010F));
    EXPECT_EQ(reader->GetStringProperty(_variant_t(1L), 0x0037001E, &value), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(reader->GetStringProperty(Give(std::make_shared<Sample>()), 0x0037001E, &value), E_INVALIDARG);
    EXPECT_EQ(reader->Uninitialize(), S_OK);
    EXPECT_TRUE(FAILED(reader->GetStringProperty(Give(item), 0x0037001E, &value)));
    EXPECT_EQ(item->OutsideReferences(), 0u);
}

TEST(MapiReader, LeavesOutWhatItIsToldTo) {
    const auto item = Mail();
    item->mapi = MapiContent::NoBody;
    EXPECT_EQ(MapiText(*item, 0x1000001E), L"");
    EXPECT_EQ(MapiText(*item, 0x0C1A001E), L"Anna");
    item->mapi = MapiContent::NoHeaders;
    EXPECT_EQ(MapiText(*item, 0x1000001E), L"0123456789");
    EXPECT_EQ(MapiText(*item, 0x0C1A001E), L"");
}

std::vector<std::wstring> Texts(const wchar_t* line) {
    std::vector<std::wstring> texts;
    for (Words words(line); !words.AtEnd();) texts.push_back(words.Take(L"word"));
    return texts;
}

TEST(Words, AreSeparatedQuotedAndCommented) {
    EXPECT_THAT(Texts(L"select 1,2, \"a, b\"  # rest"), ElementsAre(L"select", L"1", L"2", L"a, b"));
    EXPECT_THAT(Texts(LR"(x "tab\t quote\" slash\\ digit\d" y)"),
                ElementsAre(L"x", L"tab\t quote\" slash\\ digit\\d", L"y"));
    EXPECT_THAT(Texts(L"\"\""), ElementsAre(L""));
    EXPECT_TRUE(Texts(L"   # only a comment").empty());
    EXPECT_THROW(Texts(L"a \"b"), ScriptError);
}

TEST(Words, AreTakenByKind) {
    Words words(L"\"all\" all -7 \"7\" 99999999999 2 <A b=\"1\", #2>");
    EXPECT_FALSE(words.Accept(L"all"));  // quoted, it is a text
    EXPECT_EQ(words.Take(L"text"), L"all");
    EXPECT_TRUE(words.Accept(L"all"));
    EXPECT_EQ(words.TakeNumber(L"number"), -7);
    EXPECT_THROW(words.TakeNumber(L"number"), ScriptError);  // the quoted one
    EXPECT_THROW(words.TakeNumber(L"number"), ScriptError);  // the one that is too long
    EXPECT_EQ(words.TakeTime(std::chrono::seconds(1)), std::chrono::milliseconds(2000));
    EXPECT_THROW(words.End(), ScriptError);
    EXPECT_EQ(words.TakeRest(), L"<A b=\"1\", #2>");
    EXPECT_NO_THROW(words.End());
    EXPECT_THROW(words.Take(L"text"), ScriptError);
    EXPECT_THROW(Words(L"86401").TakeTime(std::chrono::seconds(1)), ScriptError);
}

}  // namespace
}  // namespace beacon::standin
