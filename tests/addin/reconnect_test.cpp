#include "form_fixture.h"

namespace beacon::test {
namespace {

class Reconnect : public Timers {
protected:
    static constexpr WPARAM kReconnectTimer = 2;
    static constexpr WPARAM kToolbarTimer = 4;

    void SetUp() override {
        Timers::SetUp();
        SetDelay(600000);
        Load(false);
    }

    /// Sends the timer's message at once. Returns the level-1 lines, with "#" for the window's handle.
    LogLines Tick() {
        log_.Clear();
        SendMessageW(FormWindow(), WM_TIMER, kReconnectTimer, 0);
        return NewLines();
    }

    static void Gone() { throw com::Error(57, L"Gone"); }
};

const LogLines kNothingToDo{L"Begin reconnect timer", L"End reconnect timer - no reconnect necessary"};
const LogLines kStartedAndReSent{L"App StartUp end",
                                 L"Reconnect StartUp complete",
                                 L"Reconnect StartUp success, start ReSend",
                                 L"Start ReSend(bForce=True)",
                                 L"End ReSend",
                                 L"Reconnect ReSend complete"};

TEST_F(Reconnect, HasNothingToDoWithoutALinkOrWhileItIsUp) {
    engine_->controllerSide->id = engine_->engineSide->id = 1;  // the smallest number that means "connected"
    EXPECT_THAT(Tick(), ElementsAre(L"Begin reconnect timer", L"* controller id ", L"* engine id ",
                                    L"End reconnect timer - no reconnect necessary"));
    Pump(kDelay);
    EXPECT_EQ(listener_.closes, 0) << "no other timer starts";
    sender_->objApplication.Reset();
    EXPECT_EQ(Tick(), kNothingToDo);
    form_->SetConnection(nullptr);
    EXPECT_EQ(Tick(), kNothingToDo);
    sender_->objApplication = link_;
    EXPECT_EQ(listener_.sendLaters, 0);
}

TEST_F(Reconnect, DropsTheSinksOfAnEngineThatIsGoneAndTriesAgainUntilOneRuns) {
    engine_->engineSide->id = 0;
    engine_->Hide();
    Tick();
    EXPECT_EQ(link_->gControllerInterface, nullptr);
    EXPECT_EQ(link_->gEngineInterface, nullptr);
    EXPECT_FALSE(link_->gAppAdapterStarted);
    EXPECT_THAT(Tick(), ElementsAre(L"Begin reconnect timer", L"Reconnect attempting reconnection due to error: ",
                                    L"Reconnect trying to StartUp", L"App StartUp begin: #",
                                    L"App Startup: Failed to obtain BeaconController.Application",
                                    L"Reconnect StartUp complete"));
    EXPECT_EQ(listener_.sendLaters, 0);
    engine_.emplace();
    EXPECT_EQ(Tick().back(), kStartedAndReSent.back());
    EXPECT_EQ(listener_.sendLaters, 1);
}

TEST_F(Reconnect, LeavesTheShutdownOfAClosingLinkToTheNextTick) {
    engine_->once[L"engine id"] = [&] {
        link_->gClosePending = true;
        Gone();
    };
    EXPECT_EQ(Tick().back(), L"Reconnect attempting reconnection due to error: Gone");
    EXPECT_TRUE(link_->gAppAdapterStarted);
    EXPECT_EQ(Tick().back(), L"App ShutdownNoEnd end: #");
}

TEST_F(Reconnect, RestartsWhenAPeerIsNotConnectedOrFails) {
    const struct {
        const char* name;
        std::function<void()> breakLink;
        std::wstring error;
    } cases[] = {
        {"engine not connected", [&] { engine_->engineSide->id = 0; }, L""},
        {"controller not connected", [&] { engine_->controllerSide->id = 0; }, L""},
        {"controller fails after a shutdown that never finished",
         [&] {
             globals::gShutdownInProgress = true;
             engine_->once[L"controller id"] = Gone;
         },
         L"Gone"},
        {"engine fails", [&] { engine_->once[L"engine id"] = Gone; }, L"Gone"},
        {"engine's sink gone", [&] { link_->DropEngineInterface(); },
         L"Object variable or With block variable not set"},
        {"controller's peer gone", [&] { link_->gControllerInterface->ReturnMessageDispatch.Reset(); },
         L"Object variable or With block variable not set"},
    };

    int attempts = 0;
    for (const auto& [name, breakLink, error] : cases) {
        SCOPED_TRACE(name);
        breakLink();
        const LogLines lines = Tick();
        EXPECT_THAT(lines, Contains(L"Reconnect attempting reconnection due to error: " + error));
        ASSERT_GT(lines.size(), kStartedAndReSent.size());
        EXPECT_EQ(LogLines(lines.end() - std::ssize(kStartedAndReSent), lines.end()), kStartedAndReSent);
        EXPECT_EQ(listener_.sendLaters, ++attempts);
        EXPECT_TRUE(link_->gAppAdapterStarted);
        EXPECT_FALSE(globals::gShutdownInProgress);
        EXPECT_EQ(Tick().back(), kNothingToDo.back());
    }
}

TEST_F(Reconnect, StartsAgainWhenTheEngineCarriedOutAConnectThatFailed) {
    link_->Shutdown();
    for (const HRESULT failure : {E_FAIL, RPC_E_SERVERFAULT}) {  // it fails, or crashes in the call and lives on
        engine_->once[L"engine Connect"] = [&] {
            engine_->engineSide->id = Handle();
            com::Check(failure);
        };
        link_->StartUp();
        ASSERT_FALSE(link_->gAppAdapterStarted);
        EXPECT_THAT(Tick(), Contains(L"* engine PutMessage <hello id=\"#\"/> nothing #"));
        EXPECT_EQ(Tick().back(), kNothingToDo.back());
        EXPECT_TRUE(link_->Shutdown());
    }
}

TEST_F(Reconnect, DoesNothingInsideAStart) {
    link_->Shutdown();
    engine_->once[L"engine Connect"] = [&] { EXPECT_EQ(Tick(), kNothingToDo); };
    link_->StartUp();
    EXPECT_TRUE(link_->gAppAdapterStarted);
    EXPECT_THAT(NewLines(), Not(Contains(StartsWith(L"App StartUp begin"))));
}

TEST_F(Reconnect, TellsThePeersThatTheWindowIsGone) {
    DestroyWindow(window_);
    engine_->once[L"controller id"] = engine_->once[L"engine Disconnect"] = [] { com::Check(RPC_E_CALL_REJECTED); };
    const LogLines lines = Tick();
    EXPECT_THAT(lines, Contains(L"* engine Disconnect #"));
    EXPECT_THAT(lines, Contains(L"* controller Disconnect #")) << "each failure is for itself";
    EXPECT_THAT(lines, Contains(L"StartUp: bad gAppHwnd = #"));
    EXPECT_EQ(engine_->controllerSide->id, 0);
    EXPECT_EQ(link_->gEngineInterface, nullptr);
    engine_->engineSide->id = 0;
}

TEST_F(Reconnect, DoesNothingWhileTheLinkIsInsideAnotherCall) {
    engine_->once[L"controller id"] = [] { throw com::Error(static_cast<long>(0x80010005), L"busy"); };
    EXPECT_THAT(Tick(), ElementsAre(L"Begin reconnect timer", L"* controller id ",
                                    L"Reconnect attempting reconnection due to error: busy",
                                    L"Reconnect error:  multiple COM calls. Bailing out."));
    EXPECT_TRUE(link_->gAppAdapterStarted);
    EXPECT_EQ(listener_.sendLaters, 0);
}

TEST_F(Reconnect, SurvivesTheEndOfItsFormInsideACallToThePeer) {
    engine_->once[L"engine id"] = [&] {
        EndForm();
        Gone();
    };
    EXPECT_EQ(Tick().back(), L"Reconnect attempting reconnection due to error: Gone") << "there is no form any more";
    EXPECT_TRUE(link_->gAppAdapterStarted);
}

TEST_F(Reconnect, RunsEveryTwoSecondsAfterLoading) {
    std::exchange(form_, nullptr)->Unload();
    const ULONGLONG start = GetTickCount64();
    Load(false);
    Pump(4000, [&] { return log_.Has(kNothingToDo.front(), 1); });
    EXPECT_GE(GetTickCount64() - start, 1980u);
    EXPECT_LE(GetTickCount64() - start, 3500u);
}

TEST_F(Reconnect, InstallsTheToolbarUnlessTheLinkIsClosing) {
    const std::wstring line = L"tmrStartAnalysis_Timer:  Calling gToolbar.InstallBeaconToolbar";
    const auto installs = [&] {
        log_.Clear();
        SendMessageW(FormWindow(), WM_TIMER, kToolbarTimer, 0);
        return log_.Has(line);
    };
    EXPECT_FALSE(installs());
    form_->StartToolbarTimer();
    EXPECT_FALSE(installs()) << "there is no toolbar";
    sender_->gToolbar = com::MakeObject<CToolbar>();
    link_->gClosePending = true;
    EXPECT_FALSE(installs());
    link_->gClosePending = false;
    EXPECT_TRUE(installs());
    log_.Clear();
    EXPECT_TRUE(Pump(1000, [&] { return log_.Has(line); })) << "the timer tries until the bar is installed";
    sender_->gToolbar->put_gInitialized(VARIANT_TRUE);
    EXPECT_FALSE(installs());
    sender_->gToolbar->put_gInitialized(VARIANT_FALSE);
    form_->StopToolbarTimer();
    EXPECT_FALSE(installs());
}

}  // namespace
}  // namespace beacon::test
