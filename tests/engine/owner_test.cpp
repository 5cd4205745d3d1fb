#include "link_fixture.h"

namespace beacon::test {
namespace {

/// A link whose owner ends during its start-up, its shutdown, or the shutdown of another link.
class Owner : public LinkTest {
protected:
    void ExpectDisconnected(const Application& link) {
        EXPECT_TRUE(engine_->KnowsNobody());
        EXPECT_EQ(link.gControllerInterface, nullptr);
        EXPECT_EQ(link.gEngineInterface, nullptr);
        EXPECT_FALSE(link.gAppAdapterStarted || link.gClosePending);
        EXPECT_EQ(link.gBeaconConnection, nullptr);
    }
};

const LogLines kSinksEnd{L"* engine Disconnect #", L"* controller Disconnect #",
                         L"CI Class_term begin",   L"CI Class_term end",
                         L"EI Term begin",         L"EI Term end"};

TEST_F(Owner, EndsWhileAPendingClickIsReplayed) {
    Application& link = MakeLink();
    host_.onReplay = [&] { link.OwnerHasEnded(); };
    link.StartUp();
    ExpectDisconnected(link);
    EXPECT_THAT(NewLines(), Not(Contains(L"* host hooks")));
}

TEST_F(Owner, DropsALinkThatFailedToShutDown) {
    for (const wchar_t* call : {L"engine Disconnect", L"controller Disconnect"}) {
        SCOPED_TRACE(com::ToAnsi(call));
        Application& link = StartLink();
        engine_->once[call] = &Fail;
        EXPECT_FALSE(link.Shutdown());
        engine_->once[L"engine Disconnect"] = &Fail;
        const com::ComPtr<ControllerInterface> kept = link.gControllerInterface;
        NewLines();
        link.OwnerHasEnded();
        const LogLines lines = NewLines();
        EXPECT_THAT(lines, Contains(L"* controller Disconnect #"))
            << "one failure must not keep the other from being told";
        EXPECT_THAT(lines, Not(Contains(StartsWith(L"App "))));
        EXPECT_EQ(engine_->controllerSide->peer, nullptr);
        EXPECT_EQ(kept->ReturnMessageDispatch, nullptr) << "a sink that lives on must not hold its peer";
    }
}

TEST_F(Owner, DropsALinkThatIsUp) {
    StartLink();
    link_.Reset();
    EXPECT_EQ(NewLines(), kSinksEnd) << "the engine must not know a window that nobody follows";
}

TEST_F(Owner, EndsInsideAShutdownThatFails) {
    Application& link = StartLink();
    engine_->once[L"controller PutControl"] = [&] { link.OwnerHasEnded(); };
    engine_->once[L"engine Disconnect"] = &Fail;
    EXPECT_FALSE(link.Shutdown());
    ExpectDisconnected(link);
    EXPECT_EQ(NewLines().back(), L"App Shutdown end: #");
}

/// Two links of one engine. The owner of the second one ends during the shutdown of the first.
class TwoLinks : public Owner {
protected:
    void SetUp() override {
        Owner::SetUp();
        StartLink();
        other_ = com::MakeObject<Application>();
        other_->Init(HandleToLong(otherWindow_), &otherHost_);
        other_->StartUp();
        ASSERT_TRUE(other_->gAppAdapterStarted);
        engine_->once[L"engine Disconnect"] = [&] {
            EXPECT_FALSE(other_->Shutdown()) << "one at a time";
            EXPECT_TRUE(other_->gClosePending);
            other_->OwnerHasEnded();
            other_.Reset();
            EXPECT_FALSE(link_->Shutdown());
            NewLines();
        };
    }

    void TearDown() override {
        other_.Reset();
        Owner::TearDown();
    }

    std::wstring Other(const wchar_t* text) const { return text + std::to_wstring(HandleToLong(otherWindow_)); }

    /// The log from this line on.
    LogLines After(const wchar_t* line) {
        LogLines lines = NewLines();
        lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), line));
        return lines;
    }

    const HWND otherWindow_ = GetDesktopWindow();
    FakeHost otherHost_;
    com::ComPtr<Application> other_;
};

TEST_F(TwoLinks, TheSecondIsShutDownAfterTheFirst) {
    EXPECT_TRUE(link_->Shutdown());
    const LogLines lines = After(L"App Shutdown end: #");
    ASSERT_GT(lines.size(), 3u);
    EXPECT_EQ(lines[1], Other(L"App ShutdownNoEnd begin: "));
    EXPECT_THAT(lines, Contains(L"App PutMessage begin <exit id=\"" + Other(L"") + L"\"/>"));
    EXPECT_THAT(lines, Contains(Other(L"* engine Disconnect ")));
    EXPECT_THAT(lines, Contains(Other(L"* controller Disconnect ")));
    EXPECT_EQ(lines.back(), Other(L"App ShutdownNoEnd end: "));
}

TEST_F(TwoLinks, TheSecondIsShutDownEvenIfTheFirstFails) {
    engine_->once[L"controller Disconnect"] = [&] {
        engine_->once[L"engine Disconnect"] = &Fail;  // of the second link
        com::Raise(57);
    };
    EXPECT_FALSE(link_->ShutdownNoEnd());
    const LogLines lines = After(L"App ShutdownNoEnd end: #");
    ASSERT_GT(lines.size(), 3u);
    EXPECT_EQ(lines[1], Other(L"App ShutdownNoEnd begin: "));
    EXPECT_THAT(lines, Contains(L"Exception in ShutdownBody: 57"));
    EXPECT_THAT(lines, Contains(Other(L"* controller Disconnect "))) << "nobody will try again";
    EXPECT_TRUE(link_->ShutdownNoEnd());
}

TEST_F(TwoLinks, TheSecondIsLeftToItsOwnerIfItHasOne) {
    engine_->once[L"engine Disconnect"] = [&] { EXPECT_FALSE(other_->ShutdownNoEnd()); };
    EXPECT_TRUE(link_->Shutdown());
    EXPECT_EQ(After(L"App Shutdown end: #").size(), 1u);
    EXPECT_TRUE(other_->gClosePending && other_->gAppAdapterStarted);
    other_->OwnerHasEnded();
    ExpectDisconnected(*other_.Get());
}

TEST_F(TwoLinks, ASecondThatNeverStartedIsDisconnectedAtOnce) {
    engine_->once[L"engine Disconnect"] = [&] {
        other_->gAppAdapterStarted = false;
        other_->OwnerHasEnded();
        ExpectDisconnected(*other_.Get());
    };
    EXPECT_TRUE(link_->Shutdown());
    EXPECT_EQ(After(L"App Shutdown end: #").size(), 1u);
}

}  // namespace
}  // namespace beacon::test
