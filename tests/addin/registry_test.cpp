#include "addin/listener_registry.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

class Registry : public AdapterTest {
protected:
    void TearDown() override {
        registry_.AbandonAll();
        AdapterTest::TearDown();
    }

    /// With a sender, as after its initialisation.
    template <class Listener>
    com::ComPtr<Listener> Made(long window) {
        auto listener = com::MakeObject<Listener>(services_);
        SetWindow(*listener.Get(), window);
        listener->Connect();
        return listener;
    }

    static void SetWindow(InspectorListener& listener, long window) { listener.put_hInspector(window); }

    static void SetWindow(ExplorerListener& listener, long window) { listener.put_hExplorer(window); }

    FakeServices services_;
    ListenerRegistry registry_;
};

// Pointers are compared, never ComPtrs: MinGW's turns into a Boolean there, and any two objects would be equal.
TEST_F(Registry, FindsInspectorsBeforeExplorers) {
    const auto inspector = Made<InspectorListener>(11);
    const auto explorer = Made<ExplorerListener>(11);
    const auto other = Made<ExplorerListener>(22);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), nullptr);
    registry_.gExplorerListeners.Add(explorer);
    registry_.gExplorerListeners.Add(other);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), explorer->objBeaconConnection().Get());
    registry_.gInspectorListeners.Add(inspector);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), inspector->objBeaconConnection().Get());
    EXPECT_NE(inspector->objBeaconConnection(), nullptr);
    EXPECT_EQ(registry_.FindConnectionForWindow(22).Get(), other->objBeaconConnection().Get());
    EXPECT_EQ(registry_.FindConnectionForWindow(33).Get(), nullptr);
    EXPECT_EQ(registry_.gInspectorListeners.Find(22).Get(), nullptr);
    EXPECT_EQ(registry_.gExplorerListeners.Find(22).Get(), other.Get());
}

TEST_F(Registry, RemovesTheFirstWithTheSameWindow) {
    const auto first = Made<InspectorListener>(11);
    const auto second = Made<InspectorListener>(11);
    const auto stranger = Made<InspectorListener>(22);
    registry_.gInspectorListeners.Add(first);
    registry_.gInspectorListeners.Add(second);
    registry_.gInspectorListeners.Add(second);
    registry_.RemoveListener(*stranger.Get());
    EXPECT_EQ(registry_.gInspectorListeners.Count(), 3);
    EXPECT_EQ(registry_.gInspectorListeners.Find(11).Get(), first.Get());
    registry_.RemoveListener(*second.Get());
    EXPECT_EQ(registry_.gInspectorListeners.Find(11).Get(), second.Get());
    registry_.RemoveListener(*second.Get());
    EXPECT_EQ(registry_.gInspectorListeners.Count(), 1);
    EXPECT_EQ(registry_.gInspectorListeners.Find(11).Get(), second.Get()) << "it was registered twice";
    EXPECT_NE(second->objBeaconConnection(), nullptr) << "removing does not disconnect";
}

// Listeners have no window until they are initialised; a closing one must not take another's place.
TEST_F(Registry, RemovesAListenerWithoutAWindowByItself) {
    const auto older = Made<InspectorListener>(0);
    const auto newer = Made<InspectorListener>(0);
    registry_.gInspectorListeners.Add(older);
    registry_.gInspectorListeners.Add(newer);
    registry_.RemoveListener(*newer.Get());
    ASSERT_EQ(registry_.gInspectorListeners.Count(), 1);
    EXPECT_EQ(registry_.gInspectorListeners.Item(1).Get(), older.Get());
}

TEST_F(Registry, RemoveAllSkipsEverySecondListenerAndFails) {
    const auto first = Made<InspectorListener>(11);
    const auto second = Made<InspectorListener>(22);
    registry_.gInspectorListeners.Add(first);
    registry_.gInspectorListeners.Add(second);
    EXPECT_EQ(RaisedBy([&] { registry_.gInspectorListeners.RemoveAll(); }).number, com::kSubscriptOutOfRange);
    EXPECT_EQ(first->objBeaconConnection(), nullptr);
    EXPECT_NE(second->objBeaconConnection(), nullptr);
    registry_.AbandonAll();
    EXPECT_EQ(second->objBeaconConnection(), nullptr);
}

}  // namespace
}  // namespace beacon::test
