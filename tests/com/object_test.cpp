#include "com_test.h"

namespace beacon::com {
namespace {

class Folder final : public standin::AutomationObject {
public:
    std::vector<std::wstring> order;
    std::wstring caption = std::wstring(L"in\0box", 6);
    std::function<void()> inQuestion;  ///< runs inside the next question for the number of a name
    std::function<void()> inMove;

    explicit Folder(DISPID numberOfCaption = 1) : AutomationObject(L"Folder") {
        AddProperty(
            numberOfCaption, L"Caption", [this] { return FromText(caption); },
            [this](const standin::CallArguments& value) { caption = value.Text(0); });
        AddMethod(2, L"Move", 2, 3, [this](const standin::CallArguments& arguments) {
            for (UINT i = 0; i < arguments.Count(); ++i) order.push_back(arguments.Has(i) ? arguments.Text(i) : L"-");
            if (inMove) inMove();
            return FromLong(static_cast<long>(arguments.Count()));
        });
        AddMethod(3, L"Count", 1, 1,
                  [](const standin::CallArguments& arguments) { return FromLong(arguments.Long(0)); });
        AddMethod(4, L"Locked", 0, 0,
                  [](const standin::CallArguments&) -> _variant_t { throw Error(70, L"Permission denied"); });
        AddProperty(6 - numberOfCaption, L"Parent", [] { return _variant_t(); });
    }

    STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* members) override {
        if (const auto action = std::exchange(inQuestion, nullptr)) action();
        return AutomationObject::GetIDsOfNames(id, names, count, locale, members);
    }
};

TEST(Object, SpeaksOfErrorsByNumberAndUsualDescription) {
    const auto folder = std::make_shared<Folder>();
    const auto gone = std::make_shared<Folder>();
    const Object object(folder.get());
    const Object retired(gone.get());
    gone->Retire();

    constexpr wchar_t kNothing[] = L"Object variable or With block variable not set";
    constexpr wchar_t kUnknown[] = L"Object doesn't support this property or method";

    const struct {
        const char* name;
        std::function<void()> use;
        long number;
        const wchar_t* description;
    } cases[] = {
        {"get of nothing", [] { Object().Get(L"Caption"); }, 91, kNothing},
        {"default member of nothing", [] { Object().Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}); }, 91, kNothing},
        {"member of an empty result", [&] { object.GetObject(L"Parent").Get(L"Caption"); }, 91, kNothing},
        {"no such name", [&] { object.Get(L"Colour"); }, 438, kUnknown},
        {"read-only", [&] { object.Put(L"Parent", FromLong(1)); }, 438, kUnknown},
        {"argument of the wrong type", [&] { object.Call(L"Count", {FromText(L"many")}); }, 13, L"Type mismatch"},
        {"result of the wrong type", [&] { object.GetLong(L"Caption"); }, 13, L"Type mismatch"},
        {"result is no object", [&] { object.GetObject(L"Caption"); }, 424, L"Object required"},
        {"argument too large", [&] { object.Call(L"Count", {_variant_t(1e12)}); }, 6, L"Overflow"},
        {"wrong count", [&] { object.Call(L"Count"); }, 450,
         L"Wrong number of arguments or invalid property assignment"},
        {"the object's own error", [&] { object.Call(L"Locked"); }, 70, L"Permission denied"},
        {"the object is gone", [&] { retired.Get(L"Caption"); }, RPC_E_DISCONNECTED, nullptr},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const Error error = RaisedBy(test.use);
        EXPECT_EQ(test.number, error.number);
        if (test.description != nullptr) EXPECT_EQ(test.description, error.Description());
        EXPECT_FALSE(error.Description().empty()) << "the log never ends in nothing";
    }
}

TEST(Object, PassesValuesInNaturalOrderAndKeepsTheCalleeAlive) {
    auto folder = std::make_shared<Folder>();
    const std::weak_ptr<Folder> watch = folder;
    Object object(folder.get());
    EXPECT_EQ(3, ToLong(object.Call(L"Move", {FromText(L"a"), Missing(), FromLong(3)})));
    EXPECT_EQ(2, object.GetLong(L"Count", {FromLong(2)})) << "a method, asked for as a property";
    EXPECT_EQ((std::vector<std::wstring>{L"a", L"-", L"3"}), folder->order);
    EXPECT_EQ(std::wstring(L"in\0box", 6), object.GetText(L"caption")) << "names have no case, texts may hold NULs";
    object.Put(L"Caption", FromText(L"outbox"));
    EXPECT_EQ(L"outbox", folder->caption);
    folder->inMove = [&] { object.Reset(); };
    folder.reset();
    EXPECT_EQ(2, ToLong(object.Call(L"Move", {FromText(L"a"), FromText(L"b")})))
        << "the callee drops the caller's reference";
    EXPECT_TRUE(watch.expired());
}

TEST(Object, AsksEachObjectForItsOwnNumberOfAName) {
    for (const DISPID number : {1, 5}) {
        const auto folder = std::make_shared<Folder>(number);
        Object object(folder.get());
        folder->caption = L"caption";
        folder->inQuestion = [&] { object.Reset(); };
        EXPECT_EQ(L"caption", object.GetText(L"Caption")) << "the reference changes inside the question";
        EXPECT_FALSE(object);
    }
}

TEST(Values, ConvertAsAutomationDoes) {
    _variant_t null;
    null.vt = VT_NULL;

    const struct {
        _variant_t value;
        const wchar_t* text;
        long number;
    } cases[] = {
        {_variant_t(), L"", 0},
        {null, L"", 0},
        {Missing(), L"", 0},
        {FromBool(true), L"True", -1},
        {FromBool(false), L"False", 0},
        {FromLong(-7), L"-7", -7},
        {FromText(L"43"), L"43", 43},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.text);
        EXPECT_EQ(test.text, ToText(test.value));
        EXPECT_EQ(test.number, ToLong(test.value));
        EXPECT_EQ(*test.text == 0 ? 0 : 424, RaisedBy([&] { EXPECT_FALSE(ToObject(test.value)); }).number);
    }
    EXPECT_EQ(2, ToLong(_variant_t(2.5)));
    EXPECT_EQ(6, RaisedBy([] { ToLong(FromText(L"99999999999")); }).number);
    const auto folder = std::make_shared<Folder>();
    _variant_t unknown(static_cast<IUnknown*>(static_cast<IDispatch*>(folder.get())));
    EXPECT_EQ(folder.get(), ToObject(unknown).Get());
    EXPECT_FALSE(ToObject(FromObject(nullptr)));
    _variant_t inner(static_cast<IDispatch*>(folder.get()));
    for (const auto& [type, place] : {std::pair<int, void*>(VT_DISPATCH, &inner.pdispVal), {VT_VARIANT, &inner}}) {
        VARIANT reference{};
        reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
        reference.byref = place;
        EXPECT_EQ(folder.get(), ToObject(_variant_t(reference)).Get()) << "a caller's own variable";
    }
}

}  // namespace
}  // namespace beacon::com
