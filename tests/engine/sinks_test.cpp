#include "common/threads.h"
#include "link_fixture.h"

namespace beacon::test {
namespace {

class Sinks : public LinkTest {
protected:
    static void PutControl(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        EXPECT_EQ(sink->PutControl(_bstr_t(text), nullptr, 0, &result), S_OK);
    }

    static void PutMessage(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        EXPECT_EQ(sink->PutMessage(_bstr_t(text), nullptr, 0, &result), S_OK);
    }

    using SinkPointer = com::ComPtr<MessageSink>;

    std::vector<SinkPointer> Both() const {
        return {SinkPointer(link_->gControllerInterface.Get()), SinkPointer(link_->gEngineInterface.Get())};
    }
};

TEST_F(Sinks, CarryOutTheControllersVerbs) {
    const LogLines end{L"CI PutControl end"};
    const LogLines reSendAndEnd{L"* host re-sends 0", L"CI PutControl end"};

    const struct {
        const wchar_t* text;
        bool before;
        bool after;
        LogLines lines;  // after the line with the text
    } cases[] = {
        {L"<set_autoupdate True>", false, true, reSendAndEnd},
        {L"<SET_AUTOUPDATE true>", true, true, end},
        {L"<SET_AUTOUPDATE off>", true, false, end},
        {L"<UNKNOWN true>", false, false, end},
        {L"<EXIT/>", true, true, {}},
    };

    Application& link = StartLink();
    const auto put = [&](const wchar_t* text) {
        PutControl(link.gControllerInterface.Get(), text);
        LogLines lines = NewLines();
        EXPECT_EQ(lines.front(), std::wstring(L"CI PutControl begin ") + text);
        lines.erase(lines.begin());
        return lines;
    };
    for (const auto& [text, before, after, lines] : cases) {
        link.gAutoUpdate = before;
        EXPECT_EQ(put(text), lines) << text;
        EXPECT_EQ(link.gAutoUpdate, after) << text;
        EXPECT_TRUE(link.gAppAdapterStarted) << text;
    }
    link.DropEngineInterface();
    link.gAutoUpdate = false;
    NewLines();
    EXPECT_EQ(put(L"<SET_AUTOUPDATE true>"), end) << "without an engine nothing is sent again";
    EXPECT_TRUE(link.gAutoUpdate);
}

TEST_F(Sinks, AButtonClickForcesAnUpdateAndOtherMessagesDoNothing) {
    Application& link = StartLink();
    ControllerInterface* const sink = link.gControllerInterface.Get();
    for (const wchar_t* text : {L"<BUTTON_CLICK id=\"3\"/>", L"<BUTTON_CLICK/>", L"<OTHER >"}) PutMessage(sink, text);
    EXPECT_THAT(NewLines(), ElementsAre(L"CI PutMessage begin <BUTTON_CLICK id=\"3\"/>", L"* host forces",
                                        L"CI PutMessage end", L"CI PutMessage begin <BUTTON_CLICK/>",
                                        L"CI PutMessage begin <OTHER >", L"CI PutMessage end"));
}

TEST_F(Sinks, ExitShutsTheLinkDownWithoutAnEndLine) {
    Application& link = StartLink();
    const com::ComPtr<ControllerInterface> sink = link.gControllerInterface;  // as the peer holds it during its call
    PutControl(sink.Get(), L"<exit now");
    EXPECT_FALSE(link.gAppAdapterStarted);
    const LogLines lines = NewLines();
    EXPECT_EQ(lines[1], L"App ShutdownNoEnd begin: #");
    EXPECT_EQ(lines.back(), L"App ShutdownNoEnd end: #");
}

TEST_F(Sinks, KeepTheirFirstPeer) {
    StartLink();
    const auto stranger = com::MakeObject<FakeDispatcher>();
    for (const auto& sink : Both()) {
        _variant_t result(1L);
        EXPECT_EQ(sink->Connect(_bstr_t(L"x"), stranger.Get(), 5, &result), S_OK);
        EXPECT_EQ(result.vt, VT_EMPTY);
        long id = 0;
        sink->get_id(&id);
        EXPECT_EQ(id, Handle());
    }
    EXPECT_THAT(NewLines(),
                ElementsAre(L"CI connect begin", L"CI connect end", L"EI Connect begin", L"EI Connect end"));
    EXPECT_EQ(stranger->References(), 1u);
}

TEST_F(Sinks, WhenOneSideDisconnectsTheOtherIsToldAndTheLinkEnds) {
    for (const bool isEngine : {true, false}) {
        SCOPED_TRACE(isEngine);
        Application& link = StartLink();
        _variant_t result(1L);
        MessageSink* const sink = Both()[isEngine ? 1 : 0].Get();  // not held
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

TEST_F(Sinks, DoNothingWhenAnotherThreadReleasesThem) {
    Application& link = StartLink();
    Both()[0]->Disconnect(Handle(), nullptr);
    NewLines();
    const auto thread = standin::StartThread([this] { engine_->controllerSide->peer.Reset(); });
    WaitForSingleObject(thread.get(), INFINITE);
    EXPECT_EQ(NewLines(), LogLines{});
    EXPECT_TRUE(link.gAppAdapterStarted);
}

TEST_F(Sinks, IgnoreCallsAfterTheEndOfTheirLink) {
    StartLink();
    const auto sinks = Both();
    link_->DropControllerInterface();
    link_.Reset();
    NewLines();
    for (const auto& sink : sinks) {
        EXPECT_EQ(sink->gApplication(), nullptr);
        for (const wchar_t* text : {L"<EXIT >", L"<SET_AUTOUPDATE true>"}) PutControl(sink.Get(), text);
        PutMessage(sink.Get(), L"<BUTTON_CLICK >");
        EXPECT_EQ(sink->Disconnect(1, nullptr), S_OK) << "a caller need not take a result";
    }
    EXPECT_THAT(NewLines(), Not(Contains(StartsWith(L"App")))) << "no link was asked";
}

}  // namespace
}  // namespace beacon::test
