#include "com/event_sink.h"

#include <gtest/gtest.h>
#include <ocidl.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "com/counted.h"
#include "com/module.h"
#include "common/automation_object.h"
#include "tests/fakes/raised_by.h"

namespace beacon::com {
namespace {

constexpr IID kEvents = {0x5A3D3D10, 0x1F4B, 0x4E1E, {0x9B, 0x1B, 0x0B, 0x7C, 0x5A, 0x44, 0x10, 0x01}};
constexpr IID kOtherEvents = {0x5A3D3D11, 0x1F4B, 0x4E1E, {0x9B, 0x1B, 0x0B, 0x7C, 0x5A, 0x44, 0x10, 0x01}};
constexpr IID kNoEvents = {0xBAD, 0, 0, {0}};

class Source final : public standin::AutomationObject {
public:
    IUnknown* Unknown() { return static_cast<IDispatch*>(this); }

    Source() : AutomationObject(L"Source") {
        AddEvents(kEvents, L"Events");
        AddEvents(kOtherEvents, L"OtherEvents");
    }
};

/// A source that keeps its sink whatever the sink says, as a host does that is in the middle of telling it an event.
class StubbornSource final : public Counted<IConnectionPointContainer, IConnectionPoint> {
public:
    HRESULT answer = S_OK;
    ComPtr<IDispatch> sink;
    int subscriptions = 0;
    std::function<void()> inside;  // of the next call

    IUnknown* Unknown() { return static_cast<IConnectionPoint*>(this); }

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }

    STDMETHODIMP FindConnectionPoint(REFIID, IConnectionPoint** point) override {
        return QueryInterface(IID_PPV_ARGS(point));
    }

    STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }

    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }

    STDMETHODIMP Advise(IUnknown* advised, DWORD* cookie) override {
        *cookie = 7;
        if (FAILED(answer)) return answer;
        ++subscriptions;
        if (inside) std::exchange(inside, nullptr)();
        return advised->QueryInterface(IID_PPV_ARGS(&sink));
    }

    STDMETHODIMP Unadvise(DWORD cookie) override {
        if (cookie != 7) return CONNECT_E_NOCONNECTION;
        --subscriptions;
        if (inside) std::exchange(inside, nullptr)();
        return S_OK;
    }

    STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

    HRESULT Fire(DISPID member) {
        return sink->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr);
    }
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
    std::vector<DISPID> members;

    EventSubscription subscription;
    ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, [&](DISPID member, const EventArguments& arguments) {
        members.push_back(member);
        if (arguments.Count() == 0) return;
        EXPECT_EQ(7u, arguments.Count());
        EXPECT_EQ(first.get(), arguments.ObjectAt(0).Get());
        EXPECT_EQ(second.get(), arguments.ObjectAt(1).Get());
        for (const UINT none : {2u, 3u, 4u, 5u, 6u, 7u, 999u}) EXPECT_FALSE(arguments.ObjectAt(none)) << none;
        for (const UINT index : {0u, 1u, 2u, 4u, 5u, 6u, 7u, 999u}) arguments.SetBool(index, true);
    }));
    source->Fire(kEvents, 0xF001,
                 {standin::HandOut(first), ByReference(VT_DISPATCH, &target), standin::ByReference(cancel),
                  standin::ByReference(untouched), _variant_t(false), ByReference(VT_VARIANT, &inner),
                  ByReference(VT_VARIANT, nullptr)});
    source->Fire(kEvents, 0xFA75);
    source->Fire(kOtherEvents, 1);
    EXPECT_EQ((std::vector<DISPID>{0xF001, 0xFA75}), members);
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(VARIANT_FALSE, untouched);
    EXPECT_EQ(VARIANT_TRUE, inner.boolVal) << "a Boolean in a variant by reference";
    subscription.Unadvise();
    EXPECT_TRUE(standin::OutsideReferences().empty());
}

TEST(EventSubscription, IsOneWhateverIsDoneInsideItsCalls) {
    const auto first = MakeObject<StubbornSource>();
    const auto second = MakeObject<StubbornSource>();
    EventSubscription subscription;
    const auto follow = [&](StubbornSource& source) {
        EXPECT_TRUE(subscription.Advise(source.Unknown(), kEvents, [](DISPID, const EventArguments&) {}));
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
         [&](auto& subscription) {
             EXPECT_TRUE(subscription->Advise(other->Unknown(), kEvents, [](DISPID, const EventArguments&) {}));
         }},
    };

    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        const long before = LiveThings();
        const auto source = std::make_shared<Source>();
        auto subscription = std::make_unique<EventSubscription>();
        auto state = std::make_shared<std::vector<int>>(1000, 42);
        const std::weak_ptr<std::vector<int>> watch = state;
        int events = 0;
        ASSERT_TRUE(subscription->Advise(source->Unknown(), kEvents,
                                         [&, state = std::exchange(state, nullptr)](DISPID, const EventArguments&) {
                                             if (++events == 1) source->Fire(kEvents, 2);  // nested; it ends there
                                             if (events == 2) way.end(subscription);
                                             EXPECT_EQ(42, state->back()) << "the handler lives until it returns";
                                         }));
        source->Fire(kEvents, 1);
        source->Fire(kEvents, 3);
        EXPECT_EQ(2, events);
        EXPECT_TRUE(watch.expired()) << "nothing of the handler is left";
        EXPECT_EQ(0u, source->Sinks());
        EXPECT_EQ(0u, source->OutsideReferences());
        subscription.reset();
        EXPECT_EQ(before, LiveThings());
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

TEST(EventSubscription, ItsSinkSwallowsWhatHandlersThrowAndServesItsEventsOnly) {
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

TEST(EventSubscription, AFailedAdviseHoldsNothing) {
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
                 {"not these events", source->Unknown(), kNoEvents, 0},
                 {"refused", refusing->Unknown(), kEvents, CONNECT_E_ADVISELIMIT}};

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        EventSubscription subscription;
        ASSERT_TRUE(subscription.Advise(source->Unknown(), kEvents, [](DISPID, const EventArguments&) {}));
        EXPECT_EQ(1u, source->Sinks());
        const Error error = test::RaisedBy(
            [&] { EXPECT_FALSE(subscription.Advise(test.source, test.events, [](DISPID, const EventArguments&) {})); });
        EXPECT_EQ(test.raised, error.number);
        EXPECT_EQ(0u, source->Sinks()) << "the earlier subscription ended first";
        EXPECT_EQ(before, LiveThings());
    }
    EXPECT_EQ(1u, refusing->References());
    EXPECT_TRUE(standin::OutsideReferences().empty());
}

TEST(WatchedObject, KeepsAnObjectOnlyWithItsEvents) {
    const auto source = std::make_shared<Source>();
    const auto other = std::make_shared<Source>();
    const auto plain = std::make_shared<standin::AutomationObject>(L"Plain");
    std::vector<DISPID> members;
    const EventHandler note = [&](DISPID member, const EventArguments&) { members.push_back(member); };
    WatchedObject watched;

    watched.Set(Object(source.get()), {kNoEvents, kOtherEvents, kEvents}, note);
    source->Fire(kEvents, 1);
    source->Fire(kOtherEvents, 2);
    EXPECT_EQ(std::vector<DISPID>{2}, members) << "the first that the source offers, and only that";

    watched.Set(Object(other.get()), {kEvents}, note);
    EXPECT_EQ(0u, source->OutsideReferences()) << "nothing of the earlier object is left";
    EXPECT_EQ(other.get(), watched.Get().Get());
    EXPECT_EQ(13, test::RaisedBy([&] { watched.Set(Object(plain.get()), {kNoEvents, kEvents}, note); }).number);
    EXPECT_FALSE(watched);
    EXPECT_TRUE(standin::OutsideReferences().empty()) << "neither the old object nor the refused one";

    watched.Set(Object(source.get()), {kEvents}, note);
    watched.Set(Object(plain.get()));
    EXPECT_EQ(plain.get(), watched.Get().Get()) << "an object whose events nobody wants";
    source->Fire(kEvents, 3);
    for (const bool released : {false, true}) {
        watched.Set(Object(source.get()), {kEvents}, note);
        released ? watched.Release() : watched.Set(Object(), {kEvents}, note);
        EXPECT_FALSE(watched);
        source->Fire(kEvents, 4);
    }
    EXPECT_EQ(std::vector<DISPID>{2}, members);
    EXPECT_TRUE(standin::OutsideReferences().empty());
}

}  // namespace
}  // namespace beacon::com
