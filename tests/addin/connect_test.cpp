#include "addin/connect.h"

#include "addin/listener_registry.h"
#include "addin/message_hook.h"
#include "common/call_points.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {
namespace {

constexpr long kAfterStartup = 0;

/// The add-in's entry object as Outlook holds it, over the process's own registry of listeners.
class ConnectTest : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        connect_ = com::MakeObject<Connect>();
    }

    void TearDown() override {
        if (connect_ != nullptr) connect_->OnDisconnection(0, nullptr);
        connect_.Reset();
        EXPECT_EQ(Listeners(), 0);
        OutlookTest::TearDown();
    }

    static ListenerRegistry& Registry() { return ListenerRegistry::OfProcess(); }

    static long Listeners() { return Registry().gExplorerListeners.Count() + Registry().gInspectorListeners.Count(); }

    void Start() { connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), kAfterStartup, nullptr, nullptr); }

    void StartWithAnExplorer() {
        Explorer();
        outlook_->activeExplorer = windows_.back();
        Start();
    }

    /// Outlook's own objects that are held, application and collections included.
    static size_t HeldOfOutlook() {
        size_t held = 0;
        for (const standin::OutsideReference& one : standin::OutsideReferences())
            if (one.description != L"controller" && one.description != L"engine") held += one.references + one.sinks;
        return held;
    }

    void NewExplorer(FakeWindow& window) {
        outlook_->explorers->Fire(events::kExplorers, events::kNewWindow, {com::FromObject(&window)});
    }

    void NewInspector(FakeWindow& window) {
        outlook_->inspectors->Fire(events::kInspectors, events::kNewWindow, {com::FromObject(&window)});
    }

    com::ComPtr<Connect> connect_;
};

TEST_F(ConnectTest, DoesNotFollowAWindowWhoseEndItWouldNotHear) {
    Start();
    FakeWindow& deaf = Window(L"deaf", {});
    NewExplorer(deaf);
    NewInspector(deaf);
    EXPECT_EQ(Listeners(), 0);
    EXPECT_TRUE(log_.Has(L"Exception in gExplorers_NewExplorer: Type mismatch 13"));
    EXPECT_TRUE(log_.Has(L"Exception in gInspectors_NewInspector: Type mismatch 13"));
}

TEST_F(ConnectTest, SwitchedOnLaterItFindsTheExplorerBehindAnItemsWindow) {
    FakeWindow& explorer = Explorer();
    outlook_->activeExplorer = windows_.back();
    Inspector(Contact());
    Start();
    EXPECT_TRUE(explorer.IsMarked());
}

TEST_F(ConnectTest, QuittingInsideTheStartEndsIt) {
    engine_->once[L"engine Connect"] = [&] { outlook_->Fire(events::kApplication, events::kQuit); };
    StartWithAnExplorer();
    EXPECT_EQ(Listeners(), 0);
    EXPECT_TRUE(engine_->KnowsNobody());
    EXPECT_EQ(HeldOfOutlook(), 0u);
}

TEST_F(ConnectTest, QuittingInsideAnyCallOfTheStartLeavesNothingHeld) {
    standin::CallPoints& calls = standin::TheCallPoints();
    calls.Watch(GetModuleHandleW(nullptr));
    int heard = 0;
    const auto quit = [&] {
        if (outlook_->Sinks() != 0) ++heard;
        outlook_->Fire(events::kApplication, events::kQuit);
    };
    for (unsigned call = 1; call == 1 || !calls.Met().empty(); ++call)
        for (const bool after : {false, true}) {
            const int heardBefore = heard;
            calls.Start(after ? standin::CallPlan{call, S_OK, 0, {}, quit}
                              : standin::CallPlan{call, S_OK, 0, quit, {}});
            StartWithAnExplorer();
            if (heard > heardBefore) EXPECT_EQ(HeldOfOutlook(), 0u) << com::ToAnsi(calls.Met());
            connect_->OnDisconnection(0, nullptr);
        }
    calls.Watch(nullptr);
    calls.Start({});
    EXPECT_GT(heard, 30);
}

TEST_F(ConnectTest, DisconnectedInsideItsConnectionItInstallsNoHook) {
    outlook_->once = [&] { connect_->OnDisconnection(0, nullptr); };
    StartWithAnExplorer();
    EXPECT_EQ(Listeners(), 0);
    EXPECT_THAT(log_.Lines(), Not(Contains(StartsWith(L"SetUpWindowsHook()"))));
}

TEST_F(ConnectTest, WithoutAWindowNothingIsFollowed) {
    Start();
    EXPECT_TRUE(log_.Has(L"Exception in gOutlookApp_Startup: Object variable or With block variable not set 91"));
    outlook_->explorers->Fire(events::kExplorers, events::kNewWindow, {com::FromLong(5)});
    outlook_->inspectors->Fire(events::kInspectors, events::kNewWindow, {});
    EXPECT_EQ(Listeners(), 0);
}

TEST_F(ConnectTest, AWindowThatOpensWhileTheListenersEndIsNotFollowed) {
    StartWithAnExplorer();
    FakeWindow& late = Explorer();
    engine_->once[L"engine Disconnect"] = [&] { NewExplorer(late); };
    connect_->OnDisconnection(0, nullptr);
    EXPECT_EQ(Listeners(), 0);
}

TEST_F(ConnectTest, ReleasedWithoutDisconnectionItDisconnectsItself) {
    StartWithAnExplorer();
    connect_.Reset();
    EXPECT_EQ(Listeners(), 0);
    EXPECT_EQ(HeldOfOutlook(), 0u);
    EXPECT_THAT(log_.Lines(), Contains(StartsWith(L"RemoveWindowsHook() TID=")));
}

TEST_F(ConnectTest, ARefusedSubscriptionIsTold) {
    outlook_->explorers = std::make_shared<FakeCollection>(L"Explorers", events::kInspectors);
    Start();
    EXPECT_TRUE(log_.Has(L"Exception in gOutlookApp_Startup: Type mismatch 13"));
    connect_->OnDisconnection(0, nullptr);
    FakeWindow& other = Explorer();
    connect_->OnConnection(static_cast<IDispatch*>(&other), kAfterStartup, nullptr, nullptr);
    EXPECT_TRUE(log_.Has(L"Exception in AddinInstance_OnConnection: Type mismatch 13"));
    EXPECT_FALSE(Registry().outlookApplication) << "nobody would hear Quit";
}

}  // namespace
}  // namespace beacon::test
