#include "addin/listener_registry.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_outlook.h"
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

    /// A listener with a sender, as after Init.
    template <class Listener>
    com::ComPtr<Listener> Add(ListenerCollection<Listener>& listeners, long window) {
        auto listener = com::MakeObject<Listener>(services_);
        SetWindow(*listener.Get(), window);
        listener->Connect();
        listeners.Add(listener);
        return listener;
    }

    static void SetWindow(InspectorListener& listener, long window) { listener.put_hInspector(window); }

    static void SetWindow(ExplorerListener& listener, long window) { listener.put_hExplorer(window); }

    FakeServices services_;
    ListenerRegistry registry_;
    ListenerCollection<ExplorerListener>& explorers_ = registry_.gExplorerListeners;
    ListenerCollection<InspectorListener>& inspectors_ = registry_.gInspectorListeners;
};

// Compare pointers: MinGW's ComPtr converts to a Boolean, so that any two of them are equal.
TEST_F(Registry, FindsInspectorsBeforeExplorers) {
    const auto explorer = Add(explorers_, 11);
    const auto other = Add(explorers_, 22);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), explorer->objBeaconConnection().Get());
    const auto inspector = Add(inspectors_, 11);
    EXPECT_EQ(registry_.FindConnectionForWindow(11).Get(), inspector->objBeaconConnection().Get());
    EXPECT_NE(inspector->objBeaconConnection(), nullptr);
    EXPECT_EQ(registry_.FindConnectionForWindow(22).Get(), other->objBeaconConnection().Get());
    EXPECT_EQ(registry_.FindConnectionForWindow(33).Get(), nullptr);
    EXPECT_EQ(inspectors_.Find(22).Get(), nullptr);
    EXPECT_EQ(explorers_.Find(22).Get(), other.Get());
}

TEST_F(Registry, RemovesTheFirstWithTheSameWindow) {
    const auto first = Add(inspectors_, 11);
    const auto second = Add(inspectors_, 11);
    inspectors_.Add(second);
    const auto stranger = com::MakeObject<InspectorListener>(services_);
    SetWindow(*stranger.Get(), 22);
    registry_.RemoveListener(*stranger.Get());
    for (const auto& next : {first, second, second}) {
        EXPECT_EQ(inspectors_.Find(11).Get(), next.Get());
        registry_.RemoveListener(*second.Get());
    }
    EXPECT_EQ(inspectors_.Count(), 0);
    EXPECT_NE(second->objBeaconConnection(), nullptr) << "removing does not disconnect";
}

// A listener has no window before Init. When it closes, no other one without a window may be removed instead.
TEST_F(Registry, RemovesAListenerWithoutAWindowByIdentity) {
    const auto older = Add(inspectors_, 0);
    const auto newer = Add(inspectors_, 0);
    registry_.RemoveListener(*newer.Get());
    ASSERT_EQ(inspectors_.Count(), 1);
    EXPECT_EQ(inspectors_.Item(1).Get(), older.Get());
}

TEST_F(Registry, RemoveAllSkipsEverySecondListenerAndFails) {
    const auto first = Add(inspectors_, 11);
    const auto second = Add(inspectors_, 22);
    EXPECT_EQ(RaisedBy([&] { inspectors_.RemoveAll(); }).number, com::kSubscriptOutOfRange);
    EXPECT_EQ(first->objBeaconConnection(), nullptr);
    EXPECT_NE(second->objBeaconConnection(), nullptr);
    registry_.AbandonAll();
    EXPECT_EQ(second->objBeaconConnection(), nullptr);
}

/// Explorers with windows, owned by the registry. Releasing a window runs code of Outlook, which may use the registry.
class RegistryWithWindows : public Registry {
protected:
    void SetUp() override {
        Registry::SetUp();
        for (const long handle : {11L, 22L, 33L}) {
            windows_.push_back(std::make_shared<FakeWindow>(L"Inbox", std::vector<IID>{events::kExplorer}));
            Add(explorers_, handle)->Watch(static_cast<IDispatch*>(windows_.back().get()));
        }
    }

    void RemoveFirst() {
        const ExplorerListener& first = *explorers_.Item(1).Get();  // only the registry holds it
        registry_.RemoveListener(first);
    }

    std::vector<std::shared_ptr<FakeWindow>> windows_;
};

TEST_F(RegistryWithWindows, IsConsistentWhileARemovedListenerEnds) {
    long left = 0;
    windows_.front()->onRelease = [&] {
        left = explorers_.Count();
        EXPECT_EQ(explorers_.Item(1)->GetHwnd(), 22);
    };
    RemoveFirst();
    EXPECT_EQ(left, 2);
}

TEST_F(RegistryWithWindows, ReleasesAllWindowsEvenIfAListenerIsRemovedMeanwhile) {
    windows_.front()->onRelease = [&] { RemoveFirst(); };
    registry_.ReleaseOutlook();
    EXPECT_EQ(explorers_.Count(), 2);
    for (const auto& window : windows_) EXPECT_EQ(window->OutsideReferences(), 0u);
}

}  // namespace
}  // namespace beacon::test
