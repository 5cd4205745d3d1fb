#include "link_fixture.h"

namespace beacon::test {
namespace {

class ShutDown : public LinkTest {};

TEST_F(ShutDown, CallsAndLogsInOrder) {
    Application& link = StartLink();
    EXPECT_TRUE(link.Shutdown());
    EXPECT_EQ(NewLines(), (LogLines{L"App Shutdown begin: #",
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
                                    L"App Shutdown end: #"}));
    EXPECT_FALSE(link.gAppAdapterStarted);
}

TEST_F(ShutDown, OfAnIdleLinkOnlyLogsAndDisablesADeletedToolbar) {
    Application& link = MakeLink();
    link.gClosePending = true;
    EXPECT_FALSE(link.ShutdownNoEnd());
    EXPECT_FALSE(link.gClosePending);
    EXPECT_EQ(NewLines(),
              (LogLines{L"App ShutdownNoEnd begin: #", L"App ShutdownBody begin: #", L"BeaconOLKApp Shutdown",
                        L"App ShutdownBody: AppAdapter not started", L"App ShutdownNoEnd end: #"}));
    EXPECT_EQ(GetEnableToolbar(), L"");
    host_.toolbarWasRemoved = true;
    EXPECT_FALSE(link.ShutdownBody());
    EXPECT_EQ(NewLines()[1], L"Application:ShutdownBody: Toolbar has been removed, disabling it");
    EXPECT_EQ(GetEnableToolbar(), L"0");
}

TEST_F(ShutDown, RetriesWithAFailingPeerAndDropsADeadOne) {
    const struct {
        const wchar_t* peer;
        long answer;
        bool isDead;
    } cases[] = {
        {L"engine", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
        {L"controller", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
        {L"engine", RPC_E_CALL_REJECTED, false},
        {L"controller", 57, false},
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
        const LogLines lines = NewLines();
        EXPECT_EQ(LogLines(lines.end() - 3, lines.end()),
                  (LogLines{L"* " + call + L" #", L"Exception in ShutdownBody: " + std::to_wstring(answer),
                            L"App Shutdown end: #"}));
        EXPECT_TRUE(link.gClosePending && link.gAppAdapterStarted);
        EXPECT_NE(link.gControllerInterface, nullptr);
        EXPECT_FALSE(globals::gShutdownInProgress);

        EXPECT_EQ(link.ShutdownNoEnd(), isDead);
        EXPECT_EQ(link.gClosePending || link.gAppAdapterStarted, !isDead);
        engine_->once.clear();
        if (!isDead) EXPECT_TRUE(link.ShutdownNoEnd()) << "as soon as the peer answers";
    }
}

TEST_F(ShutDown, ReleasesASinkThatHasLostItsLinkByItsDefaultMember) {
    Application& link = StartLink();
    link.gEngineInterface->SetApplication(nullptr);
    EXPECT_FALSE(link.Shutdown());
    EXPECT_TRUE(log_.Has(L"Exception in ShutdownBody: 91", 1)) << "it has forgotten its peer as well";
    EXPECT_THAT(NewLines(2), Contains(L"ShutdownBody gEngineInterface.ReturnMessageDispatch: #"));
    link.DropEngineInterface();
    link.gControllerInterface->SetApplication(nullptr);
    EXPECT_TRUE(link.ShutdownNoEnd());
    EXPECT_EQ(link.gControllerInterface, nullptr);
}

}  // namespace
}  // namespace beacon::test
