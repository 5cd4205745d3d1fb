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
        listener->SetHwnd(window);
        listener->Connect();
        return listener;
    }

    FakeServices services_;
    ListenerRegistry registry_;
};

// Pointers are compared, never ComPtrs: MinGW's turns into a Boolean there, and any two objects would be equal.
TEST_F(Registry, FindsInspectorsBeforeExplorers) {
    const auto inspector = Made<InspectorListener>(11);
    const auto explorer = Made<ExplorerListener>(11);
    const auto other = Made<ExplorerListener>(22);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), nullptr);
    EXPECT_TRUE(registry_.AddExplorerListener(explorer));
    EXPECT_TRUE(registry_.AddExplorerListener(other));
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), explorer->objBeaconConnection().Get());
    EXPECT_TRUE(registry_.AddInspectorListener(inspector));
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), inspector->objBeaconConnection().Get());
    EXPECT_NE(inspector->objBeaconConnection(), nullptr);
    EXPECT_EQ(registry_.FindConnectionForWindow(22).Get(), other->objBeaconConnection().Get());
    EXPECT_EQ(registry_.FindConnectionForWindow(33).Get(), nullptr);
    EXPECT_EQ(registry_.FindInspectorListener(22).Get(), nullptr);
    EXPECT_EQ(registry_.FindExplorerListener(22).Get(), other.Get());
}

TEST_F(Registry, RemovesTheFirstWithTheSameWindow) {
    const auto first = Made<InspectorListener>(11);
    const auto second = Made<InspectorListener>(11);
    const auto stranger = Made<InspectorListener>(22);
    registry_.AddInspectorListener(first);
    registry_.AddInspectorListener(second);
    registry_.AddInspectorListener(second);
    EXPECT_TRUE(registry_.RemoveInspectorListener(*stranger.Get()));
    EXPECT_EQ(registry_.gInspectorListeners.Count(), 3);
    EXPECT_EQ(registry_.FindInspectorListener(11).Get(), first.Get());
    EXPECT_TRUE(registry_.RemoveInspectorListener(*second.Get()));
    EXPECT_EQ(registry_.FindInspectorListener(11).Get(), second.Get());
    EXPECT_TRUE(registry_.RemoveInspectorListener(*second.Get()));
    EXPECT_EQ(registry_.gInspectorListeners.Count(), 1);
    EXPECT_EQ(registry_.FindInspectorListener(11).Get(), second.Get()) << "it was registered twice";
    EXPECT_NE(second->objBeaconConnection(), nullptr) << "removing does not disconnect";
}

// Listeners have no window until they are initialised; a closing one must not take another's place.
TEST_F(Registry, RemovesAListenerWithoutAWindowByItself) {
    const auto older = Made<InspectorListener>(0);
    const auto newer = Made<InspectorListener>(0);
    registry_.AddInspectorListener(older);
    registry_.AddInspectorListener(newer);
    EXPECT_TRUE(registry_.RemoveInspectorListener(*newer.Get()));
    ASSERT_EQ(registry_.gInspectorListeners.Count(), 1);
    EXPECT_EQ(registry_.gInspectorListeners.Item(1).Get(), older.Get());
}

TEST_F(Registry, RemoveAllSkipsEverySecondListenerAndFails) {
    const auto first = Made<InspectorListener>(11);
    const auto second = Made<InspectorListener>(22);
    registry_.AddInspectorListener(first);
    registry_.AddInspectorListener(second);
    EXPECT_EQ(RaisedBy([&] { registry_.RemoveAllInspectors(); }).number, com::kSubscriptOutOfRange);
    EXPECT_EQ(first->objBeaconConnection(), nullptr);
    EXPECT_NE(second->objBeaconConnection(), nullptr);
    registry_.AbandonAll();
    EXPECT_EQ(second->objBeaconConnection(), nullptr);
}

}  // namespace
}  // namespace beacon::test
