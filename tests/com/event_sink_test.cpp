#include "com/event_sink.h"

#include <ocidl.h>

#include "com_test.h"

namespace beacon::com {
namespace {

constexpr IID kEvents = {0x5A3D3D10, 0x1F4B, 0x4E1E, {0x9B, 0x1B, 0x0B, 0x7C, 0x5A, 0x44, 0x10, 0x01}};
constexpr IID kOtherEvents = {0x5A3D3D11, 0x1F4B, 0x4E1E, {0x9B, 0x1B, 0x0B, 0x7C, 0x5A, 0x44, 0x10, 0x01}};
constexpr IID kUnknownEvents = {0xBAD, 0, 0, {0}};

const EventHandler kIgnore = [](DISPID, const EventArguments&) {};

class Source final : public standin::AutomationObject {
public:
    Source() : AutomationObject(L"Source") {
        AddEvents(kEvents, L"Events");
        AddEvents(kOtherEvents, L"OtherEvents");
    }

    IUnknown* Unknown() { return static_cast<IDispatch*>(this); }
};

/// A source that keeps its sink whatever the sink says, as a host does while it is raising an event.
class StubbornSource final : public Counted<IConnectionPointContainer, IConnectionPoint> {
public:
    HRESULT answer = S_OK;  ///< of Advise, which takes the sink in any case
    ComPtr<IDispatch> sink;
    int subscriptions = 0;
    std::function<void()> inside;  ///< runs inside the next call

    IUnknown* Unknown() { return static_cast<IConnectionPoint*>(this); }

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }

    STDMETHODIMP FindConnectionPoint(REFIID, IConnectionPoint** point) override {
        return QueryInterface(IID_PPV_ARGS(point));
    }

    STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }

    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }

    STDMETHODIMP Advise(IUnknown* advised, DWORD* cookie) override {
        *cookie = kCookie;
        ++subscriptions;
        if (inside) std::exchange(inside, nullptr)();
        advised->QueryInterface(IID_PPV_ARGS(&sink));
        return answer;
    }

    STDMETHODIMP Unadvise(DWORD cookie) override {
        if (cookie != kCookie) return CONNECT_E_NOCONNECTION;
        --subscriptions;
        if (inside) std::exchange(inside, nullptr)();
        return S_OK;
    }

    STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

    HRESULT Fire(DISPID member) {
        return sink->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr);
    }

private:
    static constexpr DWORD kCookie = 7;
};

_variant_t ByReference(VARTYPE type, void* place) {
    _variant_t value;
    value.vt = static_cast<VARTYPE>(type | VT_BYREF);
    value.byref = place;
    return value;
}

TEST(EventSubscription, HandsOverMemberAndArgumentsInNaturalOrder) {
    const auto source = std::make_shared<Source>();
    const auto first = std::make_shared<Source>();
    const auto second = std::make_shared<Source>();
    VARIANT_BOOL cancel = VARIANT_FALSE;
    VARIANT_BOOL untouched = VARIANT_FALSE;
    IDispatch* target = second.get();
    _variant_t inner(false);
    _variant_t number(6L);
    std::vector<DISPID> members;

    EventSubscription subscription;
    ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, [&](DISPID member, const EventArguments& arguments) {
        members.push_back(member);
        if (arguments.Count() == 0) return;
        EXPECT_EQ(first.get(), arguments.ObjectAt(0).Get());
        EXPECT_EQ(second.get(), arguments.ObjectAt(1).Get());
        for (const UINT none : {2u, 3u, 4u, 5u, 6u, 7u, 8u, 999u}) EXPECT_FALSE(arguments.ObjectAt(none)) << none;
        for (const UINT index : {0u, 1u, 2u, 4u, 5u, 6u, 7u, 8u, 999u}) arguments.SetBool(index, true);
    }));
    source->Fire(kEvents, 0xF001,
                 {standin::HandOut(first), ByReference(VT_DISPATCH, &target), standin::ByReference(cancel),
                  standin::ByReference(untouched), _variant_t(false), ByReference(VT_VARIANT, &inner),
                  ByReference(VT_VARIANT, &number), ByReference(VT_VARIANT, nullptr)});
    source->Fire(kEvents, 0xFA75);
    source->Fire(kOtherEvents, 1);
    EXPECT_EQ((std::vector<DISPID>{0xF001, 0xFA75}), members);
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(VARIANT_FALSE, untouched);
    EXPECT_EQ(VARIANT_TRUE, inner.boolVal) << "a Boolean in a variant by reference";
    EXPECT_EQ(_variant_t(6L), number);
    subscription.Unadvise();
    EXPECT_TRUE(standin::OutsideReferences().empty());
}

TEST(EventSubscription, KeepsOneSourceWhenItsCallsSubscribeAgain) {
    const auto first = MakeObject<StubbornSource>();
    const auto second = MakeObject<StubbornSource>();
    EventSubscription subscription;
    const auto follow = [&](StubbornSource& source) {
        EXPECT_TRUE(subscription.Advise(source.Unknown(), kEvents, kIgnore));
    };
    first->inside = [&] { follow(*second.Get()); };
    follow(*first.Get());
    EXPECT_EQ(std::pair(first->subscriptions, second->subscriptions), std::pair(1, 0));
    first->inside = [&] { follow(*second.Get()); };
    subscription.Unadvise();
    EXPECT_EQ(std::pair(first->subscriptions, second->subscriptions), std::pair(0, 1));
    subscription.Unadvise();
    EXPECT_EQ(second->subscriptions, 0);
}

TEST(EventSubscription, EndsInsideItsOwnEvent) {
    const auto other = std::make_shared<Source>();

    const struct {
        const char* name;
        std::function<void(std::unique_ptr<EventSubscription>&)> end;
    } ways[] = {
        {"unadvise", [](auto& subscription) { subscription->Unadvise(); }},
        {"destroy", [](auto& subscription) { subscription.reset(); }},
        {"move away", [](auto& subscription) { *subscription = EventSubscription(); }},
        {"advise elsewhere",
         [&](auto& subscription) { EXPECT_TRUE(subscription->Advise(other->Unknown(), kEvents, kIgnore)); }},
    };

    const auto token = std::make_shared<int>();
    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        const auto source = std::make_shared<Source>();
        auto subscription = std::make_unique<EventSubscription>();
        int events = 0;
        ASSERT_TRUE(subscription->Advise(source->Unknown(), kEvents, [&, held = token](DISPID, const EventArguments&) {
            if (++events == 1) source->Fire(kEvents, 2);  // nested; it ends there
            if (events == 2) way.end(subscription);
            EXPECT_EQ(2, token.use_count()) << "the handler lives until it returns";
        }));
        source->Fire(kEvents, 1);
        source->Fire(kEvents, 3);
        EXPECT_EQ(2, events);
        EXPECT_EQ(1, token.use_count()) << "nothing of the handler is left";
        EXPECT_EQ(0u, source->OutsideReferences() + source->Sinks());
    }
}

TEST(EventSubscription, IsSilentForASourceThatKeepsTheSink) {
    const auto source = MakeObject<StubbornSource>();
    const long before = LiveThings();
    int events = 0;
    {
        EventSubscription subscription;
        ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, [&](DISPID, const EventArguments&) { ++events; }));
        EXPECT_EQ(S_OK, source->Fire(1));
        EventSubscription moved;
        moved = EventSubscription(std::move(subscription));
        EXPECT_EQ(S_OK, source->Fire(1));
        moved.Unadvise();
        moved.Unadvise();
        EXPECT_EQ(S_OK, source->Fire(1));
    }
    EXPECT_EQ(2, events);
    EXPECT_EQ(1u, source->References());
    EXPECT_EQ(before + 1, LiveThings()) << "the deaf sink is code of this module: it must stay loaded";
    source->sink.Reset();
    EXPECT_EQ(before, LiveThings());
}

TEST(EventSubscription, ItsSinkSwallowsExceptionsAndServesItsEventsOnly) {
    const auto source = MakeObject<StubbornSource>();
    int events = 0;
    EventSubscription subscription;
    ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, [&](DISPID member, const EventArguments&) {
        ++events;
        if (member == 1) Raise(kNoObject);
        if (member == 2) throw 3;
    }));
    for (const DISPID member : {1, 2, 3}) EXPECT_EQ(S_OK, source->Fire(member)) << member;
    EXPECT_EQ(3, events);
    for (const IID& id : {IID_IUnknown, IID_IDispatch, kEvents, kOtherEvents}) {
        ComPtr<IUnknown> asked;
        EXPECT_EQ(id == kOtherEvents ? E_NOINTERFACE : S_OK,
                  source->sink->QueryInterface(id, reinterpret_cast<void**>(asked.GetAddressOf())));
    }
}

TEST(EventSubscription, AFailedAdviseHoldsNothingAndHearsNothing) {
    const auto source = std::make_shared<Source>();
    const auto plain = std::make_shared<standin::AutomationObject>(L"Plain");
    const auto refusing = MakeObject<StubbornSource>();
    refusing->answer = CONNECT_E_ADVISELIMIT;
    const long before = LiveThings();

    const struct {
        const char* name;
        IUnknown* source;
        IID events;
        long raised;
    } cases[] = {{"no source", nullptr, kEvents, 0},
                 {"no events at all", static_cast<IDispatch*>(plain.get()), kEvents, 0},
                 {"not these events", source->Unknown(), kUnknownEvents, 0},
                 {"refused", refusing->Unknown(), kEvents, CONNECT_E_ADVISELIMIT}};

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        EventSubscription subscription;
        ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, kIgnore));
        const EventHandler fail = [](DISPID, const EventArguments&) { ADD_FAILURE() << "heard"; };
        const Error error = RaisedBy([&] { EXPECT_FALSE(subscription.Advise(test.source, test.events, fail)); });
        EXPECT_EQ(test.raised, error.number);
        EXPECT_EQ(0u, source->Sinks()) << "the earlier subscription ended first";
        if (refusing->sink != nullptr) EXPECT_EQ(S_OK, refusing->Fire(1));
        refusing->sink.Reset();
        EXPECT_EQ(before, LiveThings());
    }
    EXPECT_EQ(1u, refusing->References());
    EXPECT_TRUE(standin::OutsideReferences().empty());
}

TEST(WatchedObject, KeepsAnObjectOnlyWithItsEvents) {
    const auto source = std::make_shared<Source>();
    const auto plain = std::make_shared<standin::AutomationObject>(L"Plain");
    std::vector<DISPID> members;
    const EventHandler note = [&](DISPID member, const EventArguments&) { members.push_back(member); };
    WatchedObject watched;

    watched.Set(Object(source.get()), {kUnknownEvents, kOtherEvents, kEvents}, note);
    EXPECT_EQ(source.get(), watched.Get().Get());
    source->Fire(kEvents, 1);
    source->Fire(kOtherEvents, 2);
    EXPECT_EQ(std::vector<DISPID>{2}, members) << "the first that the source offers, and only that";

    EXPECT_EQ(13, RaisedBy([&] { watched.Set(Object(plain.get()), {kUnknownEvents, kEvents}, note); }).number);
    EXPECT_FALSE(watched);
    EXPECT_TRUE(standin::OutsideReferences().empty()) << "neither the old object nor the refused one";

    const struct {
        std::function<void()> end;
        IDispatch* kept;
    } ends[] = {{[&] { watched.Set(Object(plain.get())); }, plain.get()},
                {[&] { watched.Release(); }, nullptr},
                {[&] { watched.Set(Object(), {kEvents}, note); }, nullptr}};

    for (const auto& [end, kept] : ends) {
        watched.Set(Object(source.get()), {kEvents}, note);
        end();
        source->Fire(kEvents, 3);
        EXPECT_EQ(0u, source->OutsideReferences()) << "nothing of the earlier object is left";
        EXPECT_EQ(kept, watched.Get().Get());
    }
    EXPECT_EQ(std::vector<DISPID>{2}, members);
}

}  // namespace
}  // namespace beacon::com
