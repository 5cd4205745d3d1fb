#include "addin/connect.h"

#include "addin/listener_registry.h"
#include "addin/message_hook.h"
#include "tests/fakes/failing_memory.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {
namespace {

constexpr long kAfterStartup = 0;  // connect modes
constexpr long kAtStartup = 1;

/// The add-in's entry object as Outlook holds it, with the registry of listeners of the process.
class ConnectTest : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        connect_ = com::MakeObject<Connect>();
    }

    void TearDown() override {
        if (connect_ != nullptr) connect_->OnDisconnection(0, nullptr);
        EXPECT_EQ(HeldOfOutlook(), 0u);
        connect_.Reset();
        EXPECT_EQ(Listeners(), 0);
        OutlookTest::TearDown();
    }

    static ListenerRegistry& Registry() { return ListenerRegistry::OfProcess(); }

    static long Listeners() { return Registry().gExplorerListeners.Count() + Registry().gInspectorListeners.Count(); }

    void Start() { connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), kAfterStartup, nullptr, nullptr); }

    FakeWindow& ActiveExplorer() {
        Explorer();
        outlook_->activeExplorer = windows_.back();
        return *windows_.back();
    }

    void StartWithAnExplorer() {
        ActiveExplorer();
        Start();
    }

    /// References and sinks that are held on Outlook's objects, application and collections included.
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

TEST_F(ConnectTest, WhenConnectedLaterItFindsTheExplorerBehindAnItemsWindow) {
    FakeWindow& explorer = ActiveExplorer();
    Inspector(Contact());
    Start();
    EXPECT_TRUE(explorer.IsMarked());
}

TEST_F(ConnectTest, AtStartUpItTakesTheWindowInFrontForTheExplorers) {
    FakeWindow& explorer = ActiveExplorer();
    FakeWindow& inFront = Inspector(Contact());
    connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), kAtStartup, nullptr, nullptr);
    outlook_->Fire(events::kApplication, events::kStartup);
    EXPECT_FALSE(explorer.HasAnyMark());
    EXPECT_TRUE(inFront.HasAnyMark());
}

TEST_F(ConnectTest, QuittingInsideTheStartEndsIt) {
    engine_->once[L"engine Connect"] = [&] { outlook_->Fire(events::kApplication, events::kQuit); };
    StartWithAnExplorer();
    EXPECT_EQ(Listeners(), 0);
    EXPECT_TRUE(engine_->KnowsNobody());
    EXPECT_EQ(HeldOfOutlook(), 0u);
    EXPECT_TRUE(log_.Has(L"Connect.Shutdown()"));
    outlook_->once = [&] { outlook_->once = [&] { outlook_->Fire(events::kApplication, events::kQuit); }; };
    Start();
    EXPECT_EQ(HeldOfOutlook(), 0u) << "it quits while its inspectors are read";
}

TEST_F(ConnectTest, EndedInsideItsConnectionItHoldsNothingAndInstallsNoHook) {
    const std::function<void()> ends[] = {[&] { connect_->OnDisconnection(0, nullptr); },
                                          [&] { outlook_->Fire(events::kApplication, events::kQuit); }};
    for (const auto& end : ends) {
        outlook_->once = end;
        StartWithAnExplorer();
        EXPECT_EQ(Listeners(), 0);
        EXPECT_EQ(HeldOfOutlook(), 0u);
        EXPECT_THAT(log_.Lines(), Not(Contains(StartsWith(L"SetUpWindowsHook()"))));
    }
}

TEST_F(ConnectTest, WithoutAWindowNothingIsFollowed) {
    Start();
    EXPECT_THAT(log_.Lines(), Contains(StartsWith(L"SetUpWindowsHook()")));
    EXPECT_TRUE(log_.Has(L"Exception in gOutlookApp_Startup: Object variable or With block variable not set 91"));
    outlook_->explorers->Fire(events::kExplorers, events::kNewWindow, {com::FromLong(5)});
    outlook_->inspectors->Fire(events::kInspectors, events::kNewWindow, {});
    EXPECT_EQ(Listeners(), 0);
}

TEST_F(ConnectTest, AWindowThatOpensWhileTheListenersEndIsNotFollowed) {
    StartWithAnExplorer();
    FakeWindow& explorer = Explorer();
    FakeWindow& inspector = Inspector(Contact());
    long followed = 0;
    engine_->once[L"engine Disconnect"] = [&] {
        const long before = Listeners();
        SetUpWindowsHook();  // as a link that starts at this moment
        NewExplorer(explorer);
        NewInspector(inspector);
        followed = Listeners() - before;
    };
    connect_->OnDisconnection(0, nullptr);
    EXPECT_EQ(followed, 0);
    EXPECT_EQ(Listeners(), 0);
    EXPECT_THAT(log_.Lines(), Contains(StartsWith(L"RemoveWindowsHook()")).Times(2));
}

TEST_F(ConnectTest, DisconnectionReleasesAReaderThatRefusesToEnd) {
    StartWithAnExplorer();
    InitMapiWrapper();
    FakeReader::ends = E_FAIL;
    connect_->OnDisconnection(0, nullptr);
    EXPECT_EQ(FakeReader::alive, 0);
}

TEST_F(ConnectTest, DisconnectedInsideTheStartOfAReaderItKeepsNone) {
    StartWithAnExplorer();
    FakeReader::onInitialize = [&] { connect_->OnDisconnection(0, nullptr); };
    InitMapiWrapper();
    EXPECT_EQ(FakeReader::alive, 0);
}

TEST_F(ConnectTest, ARefusedSubscriptionIsLogged) {
    outlook_->explorers = std::make_shared<FakeCollection>(L"Explorers", events::kInspectors);
    Start();
    EXPECT_TRUE(log_.Has(L"Exception in gOutlookApp_Startup: Type mismatch 13"));
    connect_->OnDisconnection(0, nullptr);
    FakeWindow& other = Explorer();
    connect_->OnConnection(static_cast<IDispatch*>(&other), kAfterStartup, nullptr, nullptr);
    EXPECT_TRUE(log_.Has(L"Exception in AddinInstance_OnConnection: Type mismatch 13"));
    EXPECT_FALSE(Registry().outlookApplication) << "nobody would hear Quit";
}

TEST_F(ConnectTest, OneFailedAllocationOfTheStartLeavesNoWindowUnwatched) {
    StartLikeANewProcess();  // no log, as on a user's machine: its lines are most of the allocations
    SetOfUser(L"DefaultAutoUpdate", L"True");
    Mail(L"A body that is long enough to be sent");
    FakeWindow& explorer = ActiveExplorer();
    explorer.items = items_;
    int messages = 0;
    engine_->onMessage = [&](BSTR) { ++messages; };
    bool failed = true;
    for (long allocation = 1; failed; ++allocation) {
        SCOPED_TRACE(allocation);
        failingAllocation = allocation;
        Start();
        failed = std::exchange(failingAllocation, 0) == 0;
        explorer.Fire(events::kExplorer, events::kActivate);
        SendMessageW(FindWindowExW(HWND_MESSAGE, nullptr, L"BeaconOLKAdapter frmHidden", nullptr), WM_TIMER, 2, 0);
        ASSERT_EQ(Registry().gExplorerListeners.Count(), 1);
        messages = 0;
        Registry().gExplorerListeners.Item(1)->Send();
        EXPECT_EQ(messages, 4) << "preamble, subject, body, end";
        connect_->OnDisconnection(0, nullptr);
    }
}

TEST_F(ConnectTest, ReleasingOutlookNeedsNoMemory) {
    StartLikeANewProcess();
    Start();
    for (int number = 0; number < 2; ++number) {
        FakeWindow& inspector = Inspector(Contact());
        NewInspector(inspector);
        inspector.Fire(events::kInspector10, events::kActivate);
    }
    ASSERT_EQ(Registry().gInspectorListeners.Count(), 2);
    outOfMemory = true;
    Registry().ReleaseOutlook();
    outOfMemory = false;
    for (const auto& window : windows_) EXPECT_EQ(window->OutsideReferences() + window->Sinks(), 0u);
}

}  // namespace
}  // namespace beacon::test
