#include "engine/running_controller.h"
#include "link_fixture.h"

namespace beacon::test {
namespace {

class StartUp : public LinkTest {};

TEST_F(StartUp, CallsAndLogsInOrder) {
    FakeEngine& engine = RunEngine();
    Application& link = MakeLink();
    link.gClosePending = true;
    link.StartUp();
    EXPECT_EQ(NewLines(), (LogLines{
                              L"App StartUp begin: #",
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
                              L"App StartUp end",
                          }));
    EXPECT_TRUE(link.gAppAdapterStarted);
    EXPECT_FALSE(link.gClosePending);
    EXPECT_EQ(link.gControllerInterface->ReturnMessageDispatch.Get(), engine.controllerSide.Get());
    EXPECT_EQ(link.gEngineInterface->ReturnMessageDispatch.Get(), engine.engineSide.Get());
}

TEST_F(StartUp, NeedsAWindow) {
    RunEngine();
    for (const long handle : {0L, 1L, HandleToLong(window_)}) {
        if (handle == Handle()) DestroyWindow(window_);
        MakeLink(handle).StartUp();
        const std::wstring number = std::to_wstring(handle);
        EXPECT_EQ(log_.Lines(1), (LogLines{L"App StartUp begin: " + number, L"StartUp: bad gAppHwnd = " + number}));
        log_.Clear();
    }
}

TEST_F(StartUp, OfAStartedLinkOnlyReadsTheDefaultAgain) {
    RunEngine();
    Application& link = MakeLink();
    SetOfUser(L"DefaultAutoUpdate", L"True");
    link.StartUp();
    EXPECT_TRUE(link.gAutoUpdate);
    for (const wchar_t* value : {L"true", L"TRUE", L"1", L""}) {
        SetOfUser(L"DefaultAutoUpdate", value);
        link.gAutoUpdate = true;
        NewLines();
        link.StartUp();
        EXPECT_EQ(NewLines(), LogLines{L"App StartUp begin: #"});
        EXPECT_FALSE(link.gAutoUpdate) << value;
    }
}

TEST_F(StartUp, FindsTheControllerByNameOrElseByClass) {
    constexpr wchar_t kName[] = L"SOFTWARE\\Classes\\BeaconController.Application\\CLSID";
    constexpr wchar_t kOther[] = L"{05F44787-D470-4D95-BE1E-C710C4BFECB1}";
    Application& link = MakeLink();
    link.StartUp();
    EXPECT_EQ(NewLines(),
              (LogLines{L"App StartUp begin: #", L"App Startup: Failed to obtain BeaconController.Application"}));
    EXPECT_FALSE(link.gAppAdapterStarted);
    RunEngine();
    EXPECT_TRUE(RunningController());
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kName, nullptr, REG_SZ, kOther, sizeof kOther);
    EXPECT_FALSE(RunningController()) << "the name stands for another class, which is not running";
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\BeaconController.Application");
}

TEST_F(StartUp, ReportsAFailedCallAndSucceedsAtTheNextAttempt) {
    // The source of a late-bound call's error is the one that its object reports.
    const std::map<std::wstring, std::wstring> sources{{L"controller GetMessageInterface", L"Microsoft Outlook"},
                                                       {L"controller Connect", L"the fake"},
                                                       {L"controller GetEngineInterface", L"Microsoft Outlook"},
                                                       {L"engine GetMessageInterface", L"Microsoft Outlook"},
                                                       {L"engine Connect", L"the fake"},
                                                       {L"host", L"the fake"}};
    RunEngine();
    const auto fail = [] { throw com::Error(57, L"Device I/O error", L"the fake"); };
    for (const auto& [call, source] : sources) {
        SCOPED_TRACE(com::ToAnsi(call));
        Application& link = MakeLink();
        if (call == L"host")
            host_.onReplay = fail;
        else
            engine_->once[call] = fail;
        link.StartUp();
        const LogLines lines = NewLines();
        EXPECT_THAT(lines, Contains(L"App StartUp error 57 " + source + L" Device I/O error"));
        EXPECT_THAT(lines, Contains(L"App ShutdownNoEnd begin: #"));
        EXPECT_EQ(lines.back(), L"App StartUp errorhandler end");
        EXPECT_FALSE(link.gAppAdapterStarted);
        host_.onReplay = {};
        link.StartUp();
        EXPECT_TRUE(link.gAppAdapterStarted);
        link.Shutdown();
    }
    Application& link = MakeLink();
    engine_->once[L"engine PutMessage"] = fail;
    link.StartUp();
    EXPECT_TRUE(link.gAppAdapterStarted) << "a failed hello is not an error";
    EXPECT_EQ(NewLines().back(), L"App StartUp end");
}

TEST_F(StartUp, ASecondAttemptReleasesTheSinkOfTheFirst) {
    RunEngine();
    Application& link = MakeLink();
    engine_->once[L"engine Connect"] = [] { com::Raise(57); };
    link.StartUp();
    const com::ComPtr<ControllerInterface> first = link.gControllerInterface;
    com::ComPtr<IStream> proxy;  // a crashed engine never releases its references
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, first->MDispatch(), &proxy), S_OK);
    link.StartUp();
    EXPECT_EQ(first->References(), 1u);
}

TEST_F(StartUp, ASinkOutlivesTheCallThatConnectsIt) {
    FakeEngine& engine = RunEngine();
    Application& link = MakeLink();
    for (const wchar_t* call : {L"controller Connect", L"engine Connect", L"engine PutMessage"}) {
        engine.once[call] = [&] {
            const com::ComPtr<MessageSink> sink = link.gEngineInterface == nullptr
                                                      ? com::ComPtr<MessageSink>(link.gControllerInterface.Get())
                                                      : com::ComPtr<MessageSink>(link.gEngineInterface.Get());
            _variant_t ignored;
            sink->Disconnect(1, &ignored);
        };
    }
    link.StartUp();
    for (const auto& side : {engine.controllerSide, engine.engineSide}) {
        long id = 0;
        ASSERT_NE(side->peer, nullptr);
        EXPECT_EQ(side->peer->get_id(&id), S_OK);
        EXPECT_EQ(id, Handle());
    }
}

}  // namespace
}  // namespace beacon::test
