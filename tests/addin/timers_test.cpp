#include "form_fixture.h"

namespace beacon::test {
namespace {

TEST_F(Timers, SendOnceADelayAfterTheLastOfSeveralRequests) {
    const long delay = 250;
    SetDelay(delay);
    Load(false);
    SetWindowLongPtrW(FormWindow(), GWLP_USERDATA, 0x10);  // any process can
    ULONGLONG sent = 0;
    listener_.onSend = [&] { sent = GetTickCount64(); };
    for (int i = 0; i < 2; ++i) {
        form_->Send();
        Pump(delay / 2 + 20);
        EXPECT_EQ(listener_.sends, 0);
    }
    form_->Send();
    const ULONGLONG requested = GetTickCount64();
    ExpectSends(1, delay * 10);
    EXPECT_GE(sent - requested, ULONGLONG{delay - 16});
    EXPECT_LE(sent - requested, ULONGLONG{delay * 3});
    EXPECT_THAT(log_.Lines(), ElementsAre(L"StartAnalysis ShouldSend=True", L"Timer Send"));
    form_->SetUpdateCountThreshold(0);
    Pump(delay * 2);
    EXPECT_EQ(listener_.sends, 1) << "only inspectors send again";
    EXPECT_EQ(log_.Lines().size(), 2u);
}

TEST_F(Timers, SendAtOnceAfterTheUpdateButtonAndThenUseTheDelayAgain) {
    SetDelay(400);
    Load(false);
    globals::gSendNow = true;
    form_->Send();
    EXPECT_FALSE(globals::gSendNow);
    EXPECT_EQ(form_->StartAnalysisInterval(), 1);
    ExpectSends(1, 200);
    EXPECT_EQ(form_->StartAnalysisInterval(), 400);
    form_->Send();
    Pump(200);
    EXPECT_EQ(listener_.sends, 1);
    ExpectSends(2, 800);
}

TEST_F(Timers, PostponeASendByOneIntervalAfterInputButNotAfterAClick) {
    Load(false);
    form_->Send();
    globals::gUserInterrupt = true;
    Pump(kDelay * 10, [] { return !globals::gUserInterrupt; });
    EXPECT_FALSE(globals::gUserInterrupt);
    EXPECT_EQ(listener_.sends, 0);
    Pump(kDelay / 2);
    EXPECT_EQ(listener_.sends, 0);
    ExpectSends(1, kDelay * 10);
    EXPECT_THAT(log_.Lines(),
                ElementsAre(L"StartAnalysis ShouldSend=True", L"StartAnalysis ShouldSend=True", L"Timer Send"));

    link_->gButtonClicked = true;
    link_->gAutoUpdate = false;
    form_->Send();
    globals::gUserInterrupt = true;
    Pump(kDelay * 10, [] { return !globals::gUserInterrupt; });
    EXPECT_EQ(listener_.sends, 2);
    EXPECT_FALSE(globals::gUserInterrupt);
}

TEST_F(Timers, DropARequestWithoutAutomaticUpdate) {
    Load(false);
    link_->gAutoUpdate = false;
    form_->Send();
    Pump(kDelay * 10, [&] { return !log_.Lines().empty(); });
    link_->gAutoUpdate = true;
    Pump(kDelay * 3);
    EXPECT_EQ(listener_.sends, 0);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"StartAnalysis ShouldSend=True"));
}

TEST_F(Timers, KeepARequestUntilTheLinkIsUp) {
    form_ = frmHidden::Load(false);
    form_->Send();
    Pump(kDelay * 2);
    form_->SetConnection(sender_.Get());
    link_->gAppAdapterStarted = false;
    Pump(kDelay * 2);
    link_->gAppAdapterStarted = link_->gClosePending = true;
    Pump(kDelay * 2);
    EXPECT_EQ(listener_.sends, 0);
    link_->gClosePending = false;
    ExpectSends(1, kDelay * 10);
}

TEST_F(Timers, SendTheItemOfAnInspectorAgainAfterTheThreshold) {
    SetDelay(40);
    Load(true);
    link_->gAutoUpdate = false;
    form_->SetUpdateCountThreshold(2);
    Pump(2000, [&] { return !log_.Lines().empty(); });
    EXPECT_THAT(log_.Lines(), ElementsAre(L"StartAnalysis sending uninterrupted"));
    EXPECT_EQ(listener_.sends, 0);
    log_.Clear();

    link_->gAutoUpdate = true;
    globals::gUserInterrupt = true;
    form_->SetUpdateCountThreshold(0);
    Pump(2000, [] { return !globals::gUserInterrupt; });
    EXPECT_EQ(listener_.sends, 0) << "after input, a tick only clears the flag";
    ExpectSends(1, 2000);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"StartAnalysis sending uninterrupted"));
    Pump(400);
    EXPECT_EQ(listener_.sends, 1) << "the next period is two minutes";
}

TEST_F(Timers, CountTicksFromTheLastRequestedSend) {
    SetDelay(40);
    Load(true);
    Pump(400);
    form_->Send();
    ExpectSends(1, 2000);
    const ULONGLONG start = GetTickCount64();
    form_->SetUpdateCountThreshold(5);
    ExpectSends(2, 4000);
    EXPECT_GE(GetTickCount64() - start, 6u * 40 - 20) << "the ticks before the send do not count";
}

TEST_F(Timers, CloseTheListenerUntilTheFormIsUnloaded) {
    Load(false);
    ULONGLONG first = 0;
    listener_.onClose = [&] {
        if (listener_.closes == 1) {
            first = GetTickCount64();
            Pump(700);  // as a message box does
            EXPECT_EQ(listener_.closes, 1) << "a tick does not run inside itself";
        } else {
            const HWND window = FormWindow();
            EndForm();
            EXPECT_FALSE(IsWindow(window));
        }
    };
    const ULONGLONG start = GetTickCount64();
    form_->StartDisconnectTimer();
    Pump(3000, [&] { return listener_.closes == 2; });
    EXPECT_EQ(listener_.closes, 2);
    EXPECT_GE(first - start, 484u);
    EXPECT_LE(first - start, 1500u);
    Pump(700);
    EXPECT_EQ(listener_.closes, 2);
}

TEST_F(Timers, WithstandMessagesThatAnyProcessCanSend) {
    Load(false);
    SendMessageW(FormWindow(), WM_CLOSE, 0, 0);
    SendMessageW(FormWindow(), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_NE(FormWindow(), nullptr);
    form_->Send();
    form_->StartDisconnectTimer();
    for (const WPARAM unknownTimer : {WPARAM{5}, WPARAM{1} << 28})
        EXPECT_EQ(SendMessageW(FormWindow(), WM_TIMER, unknownTimer, 0), 0);
    EXPECT_EQ(listener_.sends + listener_.closes, 0);
    SendMessageW(FormWindow(), WM_TIMER, 3, 0);
    EXPECT_EQ(listener_.closes, 1);
    ExpectSends(1, kDelay * 10);
}

TEST_F(Timers, DoNothingAfterTheFormIsUnloaded) {
    Load(true);
    form_->Send();
    form_->StartDisconnectTimer();
    form_->StartToolbarTimer();
    const auto other = frmHidden::Load(false);
    form_->Unload();
    EXPECT_EQ(sender_->References(), 1u);
    EXPECT_NE(FormWindow(), nullptr) << "the class is still in use";
    form_->Send();
    form_->SetUpdateCountThreshold(0);
    form_->StartDisconnectTimer();
    form_->SetConnection(sender_.Get());
    Pump(700);
    EXPECT_EQ(listener_.sends, 0);
    EXPECT_EQ(listener_.closes, 0);
    other->Unload();
    Sleep(2 * kDelay);
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE)) << "a timer without a form";
}

}  // namespace
}  // namespace beacon::test
