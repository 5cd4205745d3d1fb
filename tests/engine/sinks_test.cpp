#include "link_fixture.h"

namespace beacon::test {
namespace {

class Sinks : public LinkTest {};

TEST_F(Sinks, CarryOutTheControllersVerbs) {
    struct Case {
        const wchar_t* text;
        bool before;
        bool after;
        LogLines lines;  // after the line with the text
    };

    const LogLines end{L"CI PutControl end"};
    const LogLines reSendAndEnd{L"* host re-sends 0", L"CI PutControl end"};
    const Case cases[] = {
        {L"<set_autoupdate True>", false, true, reSendAndEnd},
        {L"<SET_AUTOUPDATE true>", true, true, end},
        {L"<SET_AUTOUPDATE off>", true, false, end},
        {L"<SET_AUTOUPDATE off>", false, false, end},
        {L"<UNKNOWN true>", false, false, end},
        {L"<EXIT/>", true, true, {}},
    };
    Application& link = StartLink();
    for (const Case& one : cases) {
        SCOPED_TRACE(com::ToAnsi(one.text));
        link.gAutoUpdate = one.before;
        EXPECT_EQ(PutControl(link.gControllerInterface.Get(), one.text), S_OK);
        EXPECT_EQ(link.gAutoUpdate, one.after);
        LogLines lines = NewLines();
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.front(), L"CI PutControl begin " + std::wstring(one.text));
        lines.erase(lines.begin());
        EXPECT_EQ(lines, one.lines);
        EXPECT_TRUE(link.gAppAdapterStarted);
    }
    link.DropEngineInterface();
    link.gAutoUpdate = false;
    NewLines();
    PutControl(link.gControllerInterface.Get(), L"<SET_AUTOUPDATE true>");
    EXPECT_TRUE(link.gAutoUpdate);
    EXPECT_THAT(NewLines(), ElementsAre(L"CI PutControl begin <SET_AUTOUPDATE true>", L"CI PutControl end"))
        << "without an engine nothing is sent again";
}

TEST_F(Sinks, AButtonClickForcesAnUpdateAndOtherMessagesDoNothing) {
    Application& link = StartLink();
    ControllerInterface* const sink = link.gControllerInterface.Get();
    PutMessage(sink, L"<BUTTON_CLICK id=\"3\"/>");
    PutMessage(sink, L"<BUTTON_CLICK/>");
    PutMessage(sink, L"<OTHER >");
    EXPECT_THAT(NewLines(), ElementsAre(L"CI PutMessage begin <BUTTON_CLICK id=\"3\"/>", L"* host forces",
                                        L"CI PutMessage end", L"CI PutMessage begin <BUTTON_CLICK/>",
                                        L"CI PutMessage begin <OTHER >", L"CI PutMessage end"));
    EngineInterface* const engine = link.gEngineInterface.Get();
    const _bstr_t text(L"<EXIT >");
    for (const auto& call : std::initializer_list<std::function<HRESULT(VARIANT*)>>{
             [&](VARIANT* result) { return engine->PutMessage(text, nullptr, 0, result); },
             [&](VARIANT* result) { return engine->PutControl(text, nullptr, 0, result); },
             [&](VARIANT* result) { return engine->Status(text, nullptr, 0, result); },
             [&](VARIANT* result) { return sink->Status(text, nullptr, 0, result); }}) {
        VARIANT result;
        result.vt = VT_BSTR;  // [out] arguments are not initialised before the call
        EXPECT_EQ(call(&result), S_OK);
        EXPECT_EQ(result.vt, VT_EMPTY);
        EXPECT_EQ(call(nullptr), S_OK);
    }
    EXPECT_THAT(NewLines(), IsEmpty());
    EXPECT_TRUE(link.gAppAdapterStarted);
}

TEST_F(Sinks, AcceptMissingAndHugeArguments) {
    Application& link = StartLink();
    const std::wstring megabyte(1 << 20, L'x');
    for (MessageSink* const sink :
         std::initializer_list<MessageSink*>{link.gControllerInterface.Get(), link.gEngineInterface.Get()}) {
        EXPECT_EQ(sink->PutControl(nullptr, nullptr, 0, nullptr), S_OK);
        EXPECT_EQ(sink->PutMessage(nullptr, sink->MDispatch(), 0, nullptr), S_OK);
        EXPECT_EQ(sink->Connect(nullptr, nullptr, -7, nullptr), S_OK);
        EXPECT_EQ(sink->Connect(_bstr_t(megabyte.c_str()), nullptr, -7, nullptr), S_OK);
        EXPECT_EQ(sink->Status(nullptr, nullptr, 0, nullptr), S_OK);
        EXPECT_EQ(PutControl(sink, (L"<" + megabyte + L" true>").c_str()), S_OK);
        EXPECT_EQ(PutControl(sink, (L"<SET_AUTOUPDATE " + megabyte).c_str()), S_OK);
    }
    EXPECT_TRUE(link.gAppAdapterStarted);
}

TEST_F(Sinks, ExitShutsTheLinkDownWithoutAnEndLine) {
    Application& link = StartLink();
    // As the peer, which holds a reference during its call.
    const com::ComPtr<ControllerInterface> sink = link.gControllerInterface;
    PutControl(sink.Get(), L"<exit now");
    EXPECT_FALSE(link.gAppAdapterStarted);
    const LogLines lines = NewLines();
    EXPECT_EQ(lines[0], L"CI PutControl begin <exit now");
    EXPECT_EQ(lines[1], L"App ShutdownNoEnd begin: #");
    EXPECT_EQ(lines.back(), L"App ShutdownNoEnd end: #");
}

TEST_F(Sinks, KeepTheirFirstPeer) {
    Application& link = StartLink();
    const auto stranger = com::MakeObject<FakeDispatcher>();
    _variant_t result(1L);
    EXPECT_EQ(link.gControllerInterface->Connect(_bstr_t(L"x"), stranger.Get(), 5, &result), S_OK);
    EXPECT_EQ(result.vt, VT_EMPTY);
    EXPECT_EQ(link.gEngineInterface->Connect(_bstr_t(L"x"), stranger.Get(), 5, &result), S_OK);
    EXPECT_THAT(NewLines(),
                ElementsAre(L"CI connect begin", L"CI connect end", L"EI Connect begin", L"EI Connect end"));
    EXPECT_EQ(link.gControllerInterface->ReturnMessageDispatch.Get(), engine_->controllerSide.Get());
    EXPECT_EQ(link.gEngineInterface->ReturnMessageDispatch.Get(), engine_->engineSide.Get());
    long id = 0;
    link.gEngineInterface->get_id(&id);
    EXPECT_EQ(id, Handle());
    EXPECT_EQ(link.gEngineInterface->idText, std::to_wstring(Handle()));
}

TEST_F(Sinks, WhenOneSideDisconnectsTheOtherIsToldAndTheLinkEnds) {
    for (const bool isEngine : {true, false}) {
        SCOPED_TRACE(isEngine);
        Application& link = StartLink();
        _variant_t result(1L);
        MessageSink* const sink =
            isEngine ? static_cast<MessageSink*>(link.gEngineInterface.Get()) : link.gControllerInterface.Get();
        EXPECT_EQ(sink->Disconnect(Handle() + 1, &result), S_OK) << "the id does not matter";
        EXPECT_EQ(result, isEngine ? _variant_t(0L) : _variant_t());
        EXPECT_EQ(NewLines(), isEngine ? (LogLines{L"EI Disconnect begin", L"EI Disconnect end"})
                                       : (LogLines{L"CI disconnect begin", L"CI disconnect end"}));
        EXPECT_EQ(link.gEngineInterface == nullptr, isEngine);
        EXPECT_EQ(link.gControllerInterface == nullptr, !isEngine);
        EXPECT_EQ(sink->ReturnMessageDispatch, nullptr) << "a dropped sink must not hold its peer";
        EXPECT_TRUE(link.gAppAdapterStarted) << "the peer still holds the sink";

        (isEngine ? engine_->engineSide : engine_->controllerSide)->peer.Reset();
        const LogLines lines = NewLines();
        EXPECT_EQ(lines[0], isEngine ? L"EI Term begin" : L"CI Class_term begin");
        EXPECT_EQ(lines[1], L"App ShutdownNoEnd begin: #");
        EXPECT_THAT(lines, Contains(isEngine ? L"* controller PutControl <exit id=\"#\"/> CI #"
                                             : L"* engine PutMessage <exit id=\"#\"/> EI #"));
        EXPECT_THAT(lines, Contains(isEngine ? L"* controller Disconnect #" : L"* engine Disconnect #"));
        EXPECT_EQ(lines.back(), isEngine ? L"EI Term end" : L"CI Class_term end");
        EXPECT_FALSE(link.gAppAdapterStarted || link.gClosePending);
    }
}

TEST_F(Sinks, IgnoreCallsAfterTheEndOfTheirLink) {
    StartLink();
    const com::ComPtr<ControllerInterface> controller = link_->gControllerInterface;
    const com::ComPtr<EngineInterface> engine = link_->gEngineInterface;
    link_->DropControllerInterface();
    EndLink();
    NewLines();
    for (MessageSink* const sink :
         {static_cast<MessageSink*>(controller.Get()), static_cast<MessageSink*>(engine.Get())}) {
        EXPECT_EQ(sink->gApplication(), nullptr);
        EXPECT_EQ(PutControl(sink, L"<EXIT >"), S_OK);
        EXPECT_EQ(PutControl(sink, L"<SET_AUTOUPDATE true>"), S_OK);
        EXPECT_EQ(PutMessage(sink, L"<BUTTON_CLICK >"), S_OK);
        EXPECT_EQ(sink->Disconnect(1, nullptr), S_OK) << "a caller need not take a result";
    }
    EXPECT_THAT(NewLines(), Not(Contains(StartsWith(L"App")))) << "no link was asked";
}

TEST_F(Sinks, CanBeCalledByName) {
    Application& link = StartLink();
    const com::Object sink(link.gControllerInterface->MDispatch());
    EXPECT_EQ(sink.GetLong(L"id"), Handle());
    sink.Call(L"PutControl", {com::FromText(L"<SET_AUTOUPDATE true>"), com::FromObject(nullptr), com::FromLong(1)});
    const com::Object late(&link);
    EXPECT_NE(com::ToLong(late.Get(L"gAutoUpdate")), 0);
    EXPECT_NE(com::ToLong(late.Get(L"gAppAdapterStarted")), 0);
    EXPECT_EQ(late.GetLong(L"gAppHwnd"), Handle());
    late.Put(L"gButtonClicked", com::FromBool(true));
    EXPECT_TRUE(link.gButtonClicked);
    EXPECT_EQ(late.GetObject(L"gControllerInterface").Get(), sink.Get());
}

}  // namespace
}  // namespace beacon::test
