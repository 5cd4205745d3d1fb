#include "addin/connect.h"

#include "addin/listener_registry.h"
#include "addin/message_hook.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {
namespace {

using testing::Contains;
using testing::StartsWith;

constexpr long kAfterStartup = 0;
constexpr long kAtStartup = 1;
constexpr long kExternal = 2;

/// The add-in's entry object as Outlook holds it, over the process's own registry of listeners.
class ConnectTest : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        outlook_ = std::make_shared<FakeApplication>();
        connect_ = com::MakeObject<Connect>();
    }

    void TearDown() override {
        if (connect_ != nullptr) connect_->OnDisconnection(0, nullptr);
        connect_.Reset();
        EXPECT_EQ(Listeners(), 0);
        outlook_.reset();
        OutlookTest::TearDown();
    }

    static ListenerRegistry& Registry() { return ListenerRegistry::OfProcess(); }

    static long Listeners() { return Registry().gExplorerListeners.Count() + Registry().gInspectorListeners.Count(); }

    void Start(long mode = kAfterStartup) {
        connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), mode, nullptr, nullptr);
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

    std::shared_ptr<FakeApplication> outlook_;
    com::ComPtr<Connect> connect_;
};

TEST_F(ConnectTest, StartsWithOutlookOrAtOnceWhenThatHasStarted) {
    Explorer();
    outlook_->activeExplorer = windows_.back();
    for (const long mode : {kAfterStartup, kAtStartup, kExternal}) {
        Start(mode);
        EXPECT_EQ(globals::gOutlookVersion, 10);
        EXPECT_THAT(log_.Lines(), Contains(StartsWith(L"SetUpWindowsHook() TID=")));
        EXPECT_EQ(Listeners(), mode == kAtStartup ? 0 : 1);
        if (mode == kAtStartup) outlook_->Fire(events::kApplication, events::kStartup);
        ASSERT_EQ(Listeners(), 1);
        EXPECT_EQ(Registry().gExplorerListeners.Item(1)->GetHwnd(), windows_.back()->Handle());
        EXPECT_EQ(engine_->engineSide->id, windows_.back()->Handle()) << "the link is up";
        connect_->OnDisconnection(0, nullptr);
        EXPECT_EQ(Listeners(), 0);
        EXPECT_EQ(engine_->engineSide->id, 0);
        EXPECT_EQ(HeldOfOutlook(), 0u);
    }
}

TEST_F(ConnectTest, FollowsEveryNewWindow) {
    Start();
    FakeWindow& inspector = Inspector(Mail(L"A body that is long enough"));
    items_.back()->Events();
    FakeWindow& explorer = Explorer();
    const long before = Listeners();
    NewInspector(inspector);
    NewExplorer(explorer);
    EXPECT_EQ(Listeners(), before + 2);
    EXPECT_EQ(engine_->engineSide->id, 0) << "not before it is activated";
    inspector.Fire(events::kInspector10, events::kActivate);
    EXPECT_EQ(engine_->engineSide->id, inspector.Handle());
    inspector.Fire(events::kInspector10, events::kWindowClose);
    explorer.Fire(events::kExplorer, events::kWindowClose);
    EXPECT_EQ(Listeners(), before);
    FakeWindow& deaf = Window(L"deaf", {});
    NewExplorer(deaf);
    NewInspector(deaf);
    EXPECT_EQ(Listeners(), before) << "the end of a window without events would not be heard";
    EXPECT_TRUE(log_.Has(L"Exception in gExplorers_NewExplorer: Type mismatch 13"));
    EXPECT_TRUE(log_.Has(L"Exception in gInspectors_NewInspector: Type mismatch 13"));
}

TEST_F(ConnectTest, StartedForOneItemItFollowsThat) {
    Inspector(Mail(L"A body that is long enough"));
    items_.back()->Events();
    outlook_->activeInspector = windows_.back();
    Start();
    ASSERT_EQ(Registry().gInspectorListeners.Count(), 1);
    EXPECT_EQ(Registry().gInspectorListeners.Item(1)->GetHwnd(), windows_.back()->Handle());
}

// Outlook up to 2003 neither ends nor disconnects while one of its objects is held; the order of removal leaves every
// second listener registered.
TEST_F(ConnectTest, AfterQuitNothingOfOutlooksIsHeldHoweverManyWindowsThereAre) {
    Explorer();
    outlook_->activeExplorer = windows_.back();
    Start();
    for (int i = 0; i < 2; ++i) {
        NewExplorer(Explorer());
        FakeWindow& inspector = Inspector(Mail(L"A body that is long enough"));
        items_.back()->Events();
        NewInspector(inspector);
        inspector.Fire(events::kInspector10, events::kActivate);
        SetWindowTextW(static_cast<HWND>(LongToHandle(inspector.Handle())), L"activated");
    }
    ASSERT_EQ(Listeners(), 5);
    outlook_->Fire(events::kApplication, events::kQuit);
    EXPECT_EQ(Listeners(), 2) << "as ordered";
    EXPECT_TRUE(log_.Has(L"Exception in gOutlookApp_Quit: Subscript out of range 9"));
    EXPECT_EQ(HeldOfOutlook(), 0u);
    EXPECT_EQ(Registry().outlookApplication.Get(), nullptr);
    connect_->OnDisconnection(0, nullptr);
    EXPECT_EQ(Listeners(), 0);
}

TEST_F(ConnectTest, QuittingInsideTheStartEndsIt) {
    Explorer();
    outlook_->activeExplorer = windows_.back();
    engine_->once[L"engine Connect"] = [&] { outlook_->Fire(events::kApplication, events::kQuit); };
    Start();
    EXPECT_EQ(Listeners(), 0);
    EXPECT_EQ(engine_->engineSide->id, 0);
    EXPECT_EQ(engine_->controllerSide->id, 0);
    EXPECT_EQ(HeldOfOutlook(), 0u);
}

TEST_F(ConnectTest, AWindowThatOpensWhileTheListenersEndIsNotFollowed) {
    Explorer();
    outlook_->activeExplorer = windows_.back();
    Start();
    FakeWindow& late = Explorer();
    engine_->once[L"engine Disconnect"] = [&] { NewExplorer(late); };
    connect_->OnDisconnection(0, nullptr);
    EXPECT_EQ(Listeners(), 0);
}

TEST_F(ConnectTest, ReleasedWithoutDisconnectionItDisconnectsItself) {
    Explorer();
    outlook_->activeExplorer = windows_.back();
    Start();
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
}

}  // namespace
}  // namespace beacon::test
