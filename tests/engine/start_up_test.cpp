#include "engine/running_controller.h"
#include "link_fixture.h"

namespace beacon::test {
namespace {

class StartUp : public LinkTest {};

TEST_F(StartUp, CallsAndLogsInOrder) {
    Application& link = MakeLink();
    link.gClosePending = true;
    host_.onReplay = [&] { link.StartUp(); };  // does nothing inside itself
    link.StartUp();
    EXPECT_EQ(NewLines(), (LogLines{L"App StartUp begin: #",
                                    L"App Startup: Obtained BeaconController.Application",
                                    L"* controller GetMessageInterface AppToController #",
                                    L"CI Class_init",
                                    L"CI connect begin",
                                    L"CI connect rmd is nothing",
                                    L"CI connect end",
                                    L"* controller Connect ControllerToApp CI #",
                                    L"* controller GetEngineInterface AppToEngine #",
                                    L"* engine GetMessageInterface AppToEngine #",
                                    L"EI init",
                                    L"EI Connect begin",
                                    L"EI rmd is nothing",
                                    L"EI Connect end",
                                    L"* engine Connect AppToEngine EI #",
                                    L"App PutMessage begin <hello id=\"#\"/>",
                                    L"* engine PutMessage <hello id=\"#\"/> nothing #",
                                    L"App PutMessage end",
                                    L"* host replays",
                                    L"* host hooks",
                                    L"App StartUp end"}));
    EXPECT_TRUE(link.gAppAdapterStarted);
    EXPECT_FALSE(link.gClosePending);
    EXPECT_EQ(link.gControllerInterface->ReturnMessageDispatch.Get(), engine_->controllerSide.Get());
    EXPECT_EQ(link.gEngineInterface->ReturnMessageDispatch.Get(), engine_->engineSide.Get());
    EXPECT_EQ(engine_->controllerSide->peer.Get(), link.gControllerInterface->MDispatch());
    EXPECT_EQ(engine_->engineSide->peer.Get(), link.gEngineInterface->MDispatch());
}

TEST_F(StartUp, OfAStartedLinkOnlyReadsTheDefaultAgain) {
    Application& link = StartLink();
    for (const bool automatic : {true, false}) {
        SetOfUser(L"DefaultAutoUpdate", automatic ? L"True" : L"");
        link.gAutoUpdate = !automatic;
        link.StartUp();
        EXPECT_EQ(NewLines(), LogLines{L"App StartUp begin: #"});
        EXPECT_EQ(link.gAutoUpdate, automatic);
    }
}

TEST_F(StartUp, FindsTheControllerByNameOrElseByClass) {
    constexpr wchar_t kName[] = L"SOFTWARE\\Classes\\BeaconController.Application\\CLSID";
    constexpr wchar_t kOther[] = L"{05F44787-D470-4D95-BE1E-C710C4BFECB1}";
    EXPECT_TRUE(RunningController());
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kName, nullptr, REG_SZ, kOther, sizeof kOther);
    EXPECT_FALSE(RunningController()) << "the name stands for another class, which is not running";
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\BeaconController.Application");
    engine_.reset();
    MakeLink().StartUp();
    EXPECT_EQ(NewLines(),
              (LogLines{L"App StartUp begin: #", L"App Startup: Failed to obtain BeaconController.Application"}));
    EXPECT_FALSE(link_->gAppAdapterStarted);
}

TEST_F(StartUp, ReportsAFailedCallAndSucceedsAtTheNextAttempt) {
    // The source of a late-bound call's error is the one that its object reports.
    const std::pair<const wchar_t*, const wchar_t*> callsAndSources[] = {
        {L"controller GetMessageInterface", L"Microsoft Outlook"},
        {L"controller Connect", L"the fake"},
        {L"controller GetEngineInterface", L"Microsoft Outlook"},
        {L"engine GetMessageInterface", L"Microsoft Outlook"},
        {L"engine Connect", L"the fake"},
        {L"host", L"the fake"}};
    for (const auto& [call, source] : callsAndSources) {
        SCOPED_TRACE(com::ToAnsi(call));
        Application& link = MakeLink();
        if (call == std::wstring_view(L"host"))
            host_.onReplay = &Fail;
        else
            engine_->once[call] = &Fail;
        link.StartUp();
        const LogLines lines = NewLines();
        EXPECT_THAT(lines, Contains(std::wstring(L"App StartUp error 57 ") + source + L" Device I/O error"));
        EXPECT_THAT(lines, Contains(L"App ShutdownNoEnd begin: #"));
        EXPECT_EQ(lines.back(), L"App StartUp errorhandler end");
        EXPECT_FALSE(link.gAppAdapterStarted);
        host_.onReplay = {};
        link.StartUp();
        EXPECT_TRUE(link.gAppAdapterStarted);
    }
    engine_->once[L"engine PutMessage"] = &Fail;
    MakeLink().StartUp();
    EXPECT_TRUE(link_->gAppAdapterStarted) << "a failed hello is not an error";
    EXPECT_EQ(NewLines().back(), L"App StartUp end");
}

TEST_F(StartUp, ASecondAttemptReleasesTheSinkOfTheFirst) {
    Application& link = MakeLink();
    engine_->once[L"engine Connect"] = &Fail;
    link.StartUp();
    const com::ComPtr<ControllerInterface> first = link.gControllerInterface;
    com::ComPtr<IStream> proxy;  // a crashed engine never releases its references
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, first->MDispatch(), &proxy), S_OK);
    link.StartUp();
    EXPECT_EQ(first->References(), 1u);
}

TEST_F(StartUp, ASinkOutlivesTheCallThatConnectsIt) {
    Application& link = MakeLink();
    const auto disconnect = [&] {
        MessageSink* const engineSink = link.gEngineInterface.Get();
        MessageSink* const sink = engineSink == nullptr ? link.gControllerInterface.Get() : engineSink;
        const com::ComPtr<MessageSink> alive(sink);
        sink->Disconnect(1, nullptr);
    };
    for (const wchar_t* call : {L"controller Connect", L"engine Connect", L"engine PutMessage"})
        engine_->once[call] = disconnect;
    link.StartUp();
    for (const auto& side : {engine_->controllerSide, engine_->engineSide}) {
        long id = 0;
        ASSERT_NE(side->peer, nullptr);
        EXPECT_EQ(side->peer->get_id(&id), S_OK);
        EXPECT_EQ(id, Handle());
    }
}

}  // namespace
}  // namespace beacon::test
