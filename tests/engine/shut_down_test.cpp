#include "link_fixture.h"

namespace beacon::test {
namespace {

using testing::ElementsAreArray;

class ShutDown : public LinkTest {};

TEST_F(ShutDown, SaysGoodByeAndDisconnectsInOrder) {
    Application& link = StartLink();
    EXPECT_TRUE(link.Shutdown());
    EXPECT_THAT(NewLines(), ElementsAreArray(LogLines{
                                L"App Shutdown begin: #",
                                L"App ShutdownBody begin: #",
                                L"BeaconOLKApp Shutdown",
                                L"App PutControl begin <exit id=\"#\"/>",
                                L"* controller PutControl <exit id=\"#\"/> CI #",
                                L"App PutControl end",
                                L"App PutMessage begin <exit id=\"#\"/>",
                                L"* engine PutMessage <exit id=\"#\"/> EI #",
                                L"App PutMessage end",
                                L"BeaconOLK EngineInterface Shutdown: #",
                                L"BeaconOLK EngineInterface Shutdown Diconnecting EI: #",
                                L"* engine Disconnect #",
                                L"ShutdownBody gEngineInterface.MDispatch.Disconnect: #",
                                L"EI Disconnect begin",
                                L"EI Disconnect end",
                                L"EI Term begin",
                                L"EI Term end",
                                L"ShutdownBody Done Disconnecting Engine...: #",
                                L"BeaconOLK ControllerInterface Shutdown: #",
                                L"BeaconOLK EngineInterface Shutdown Diconnecting EI: #",
                                L"* controller Disconnect #",
                                L"CI disconnect begin",
                                L"CI disconnect end",
                                L"CI Class_term begin",
                                L"CI Class_term exit shutdown in progress",
                                L"App ShutdownBody end",
                                L"App Shutdown end: #",
                            }));
    EXPECT_FALSE(link.gAppAdapterStarted);
    EXPECT_EQ(link.gControllerInterface, nullptr);
    EXPECT_EQ(link.gEngineInterface, nullptr);
}

TEST_F(ShutDown, WhileIdleOnlyLogs) {
    Application& link = MakeLink();
    EXPECT_FALSE(link.ShutdownBody());
    EXPECT_EQ(NewLines(), (LogLines{L"App ShutdownBody begin: #", L"BeaconOLKApp Shutdown",
                                    L"App ShutdownBody: AppAdapter not started"}));
    EXPECT_FALSE(link.gClosePending);
    link.ShutdownLater();
    EXPECT_EQ(NewLines(), (LogLines{L"App ShutdownLater begin: #", L"App ShutdownLater end: #"}));
    EXPECT_TRUE(link.gClosePending);
    EXPECT_FALSE(link.ShutdownNoEnd());
    EXPECT_FALSE(link.gClosePending);
    NewLines();
    link.FinishInit();
    EXPECT_EQ(NewLines(), (LogLines{L"App FinishInit error 0  ", L"App FinishInit errorhandler end"}));
}

TEST_F(ShutDown, AFailingPeerLeavesItPendingAndTheRetryFinishesIt) {
    for (const wchar_t* call : {L"engine Disconnect", L"controller Disconnect"}) {
        SCOPED_TRACE(com::ToAnsi(call));
        Application& link = StartLink();
        engine_->once[call] = [] { com::Raise(57); };
        EXPECT_FALSE(link.Shutdown());
        const LogLines lines = NewLines();
        EXPECT_THAT(LogLines(lines.end() - 3, lines.end()),
                    ElementsAreArray(LogLines{L"* " + std::wstring(call) + L" #", L"Exception in ShutdownBody: 57",
                                              L"App Shutdown end: #"}));
        EXPECT_TRUE(link.gClosePending);
        EXPECT_TRUE(link.gAppAdapterStarted);
        EXPECT_FALSE(globals::gShutdownInProgress);
        EXPECT_NE(link.gControllerInterface, nullptr);
        EXPECT_TRUE(link.ShutdownNoEnd());
        EXPECT_FALSE(link.gClosePending);
        EXPECT_FALSE(link.gAppAdapterStarted);
        EndLink();
        StopEngine();
    }
}

TEST_F(ShutDown, ADeadPeerIsForgottenSoThatTheRetryGetsThrough) {
    const struct {
        const wchar_t* peer;
        HRESULT answer;
        bool isDead;
    } cases[] = {
        {L"engine", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
        {L"controller", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
        {L"engine", HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), true},
        {L"engine", HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), true},
        {L"engine", RPC_E_DISCONNECTED, true},
        {L"engine", RPC_E_SERVER_DIED, true},
        {L"engine", RPC_E_SERVER_DIED_DNE, true},
        {L"engine", CO_E_OBJNOTCONNECTED, true},
        {L"engine", RPC_E_CALL_REJECTED, false},
        {L"controller", E_FAIL, false},
    };

    for (const auto& [peer, answer, isDead] : cases) {
        SCOPED_TRACE(com::ToAnsi(peer) + " " + std::to_string(answer));
        Application& link = StartLink();
        const std::wstring call = peer + std::wstring(L" Disconnect");
        const std::function<void()> fail = [&, answer = answer] {
            engine_->once[call] = fail;
            throw com::Error(answer, L"no");
        };
        engine_->once[call] = fail;
        EXPECT_FALSE(link.Shutdown());
        EXPECT_TRUE(link.gClosePending && link.gAppAdapterStarted);
        EXPECT_THAT(NewLines(), testing::Contains(L"Exception in ShutdownBody: " + std::to_wstring(answer)));
        EXPECT_EQ(link.ShutdownNoEnd(), isDead);
        EXPECT_EQ(link.gClosePending || link.gAppAdapterStarted, !isDead);
        EXPECT_EQ(engine_->once.contains(call), true);
        engine_->once.clear();
        EndLink();
        StopEngine();
    }
}

TEST_F(ShutDown, UnheardGoodByesDoNotStopIt) {
    Application& link = StartLink();
    engine_->once[L"controller PutControl"] = engine_->once[L"engine PutMessage"] = [] { com::Raise(57); };
    EXPECT_TRUE(link.Shutdown());
    EXPECT_EQ(engine_->controllerSide->peer, nullptr);
    EXPECT_EQ(engine_->engineSide->peer, nullptr);
}

TEST_F(ShutDown, NoticesThatTheUserDeletedTheToolbar) {
    Application& link = MakeLink();
    host_.toolbarWasRemoved = true;
    EXPECT_FALSE(link.ShutdownBody());
    EXPECT_EQ(NewLines(), (LogLines{L"App ShutdownBody begin: #",
                                    L"Application:ShutdownBody: Toolbar has been removed, disabling it",
                                    L"BeaconOLKApp Shutdown", L"App ShutdownBody: AppAdapter not started"}));
    EXPECT_EQ(GetEnableToolbar(), L"0");
}

TEST_F(ShutDown, ALinkThatEndsUnderWayLeavesSinksThatAreDeaf) {
    StartLink();
    const com::ComPtr<ControllerInterface> dropped = link_->gControllerInterface;
    link_->DropControllerInterface();
    const com::ComPtr<EngineInterface> kept = link_->gEngineInterface;
    EndLink();
    NewLines();
    for (MessageSink* sink : {static_cast<MessageSink*>(dropped.Get()), static_cast<MessageSink*>(kept.Get())}) {
        EXPECT_EQ(sink->gApplication(), nullptr);
        EXPECT_EQ(PutControl(sink, L"<EXIT >"), S_OK);
        EXPECT_EQ(PutControl(sink, L"<SET_AUTOUPDATE true>"), S_OK);
        EXPECT_EQ(PutMessage(sink, L"<BUTTON_CLICK >"), S_OK);
        _variant_t ignored;
        EXPECT_EQ(sink->Disconnect(1, &ignored), S_OK);
    }
    for (const std::wstring& line : NewLines()) EXPECT_NE(line.substr(0, 3), L"App") << "no link was asked";
}

}  // namespace
}  // namespace beacon::test
