#include "outlook/bars/control_objects.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

enum Position { kBeacon = 1, kBackpack, kContext, kSearch, kSearchInContext, kFocus, kRefresh };

const Texts kNothing{L"BeginCommand", L"CommandDone 4711"};

/// Waits for the next second of the clock to begin, so that what follows at once happens within one second.
void AwaitNextSecond() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    Sleep(1020u - now.wMilliseconds);  // a Sleep may end a little early
}

class ToolbarCommands : public ToolbarFixture {
protected:
    void SetUp() override {
        ToolbarFixture::SetUp();
        BuildAgain();
    }

    /// Builds a new bar, for a definition that has changed.
    void BuildAgain() {
        DeleteBar();
        StartLaterSession();
    }

    void StartLaterSession() {
        OpenWindow();
        Install();
        log_.Clear();
        config_.calls.clear();
    }

    /// Replays a click on a button of this caption, whether the bar has one or not. Returns the line of its place.
    std::wstring ClickOn(const std::wstring& caption) {
        Late().Put(L"g_sPendingButton", com::FromText(caption));
        Late().Put(L"g_nPendingButton", 1L);
        config_.calls.clear();
        log_.Clear();
        toolbar_->OnConnect();
        return log_.Lines().size() < 2 ? L"" : log_.Lines()[1];
    }

    /// Clicks, presses OK in the warning as soon as it is shown, and returns its text; "" if none was shown.
    std::wstring WarningOf(int position) {
        warning_.clear();
        const UINT_PTR timer = SetTimer(nullptr, 0, 10, PressOk);
        Click(position);
        KillTimer(nullptr, timer);
        return warning_;
    }

private:
    static void CALLBACK PressOk(HWND, UINT, UINT_PTR, DWORD) {
        constexpr int kTextControl = 0xFFFF;
        wchar_t text[100];
        const HWND box = FindWindowW(L"#32770", L"Beacon");
        if (!IsWindowVisible(box) || GetDlgItemTextW(box, kTextControl, text, 100) == 0) return;
        warning_ = text;
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }

    static inline std::wstring warning_;
};

TEST_F(ToolbarCommands, SendOrSearchWithTheContextThatIsShown) {
    const struct {
        const char* what;
        long contextMode;
        const wchar_t* text;  // in the box
        Position button;
        Texts calls;
        Texts contexts;  // of the documents sent
    } cases[] = {
        {"update", 1, L"Sales", kBeacon, kNothing, {L""}},
        {"focus", 1, L"Sales", kFocus, kNothing, {L""}},
        {"refresh", 1, L"Sales", kRefresh, kNothing, {L""}},
        {"search", 1, L"Sales", kSearch, {L"BeginCommand", L"NewSearch 4711 Sales", L"CommandDone 4711"}, {}},
        {"search, box hidden", 0, L"Sales", kSearch, {L"BeginCommand", L"NewSearch 4711 ", L"CommandDone 4711"}, {}},
        {"search in context", 1, L"Sales", kSearchInContext, kNothing, {L"Sales"}},
        {"search in context without one", 1, L"No context", kSearchInContext, kNothing, {L""}},
        {"search in context, box hidden", 0, L"Sales", kSearchInContext, kNothing, {L""}},
        {"the hidden button, which has no handler", 1, L"Sales", kBackpack, {}, {}},
    };

    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        config_.contextMode = one.contextMode;
        BuildAgain();
        host_.contexts.clear();
        host_.updates = 0;
        Control(kContext).text = one.text;
        globals::gUserInterrupt = true;
        const bool isUnhandled = Click(one.button);  // the default action is not cancelled
        EXPECT_EQ(isUnhandled, one.button == kBackpack);
        EXPECT_EQ(globals::gUserInterrupt, isUnhandled);
        EXPECT_EQ(config_.calls, one.calls);
        EXPECT_EQ(host_.contexts, one.contexts);
        EXPECT_EQ(host_.updates, std::ssize(one.contexts));
    }
}

TEST_F(ToolbarCommands, WarnIfTheBoxIsHiddenAndNoContextIsChosen) {
    config_.contextMode = 0;
    for (const wchar_t* text : {L"No context", L""}) {
        BuildAgain();
        // The box of a bar that was built here is known, that of an earlier session is found by its place.
        if (*text == L'\0') StartLaterSession();
        Control(kContext).text = text;
        EXPECT_EQ(WarningOf(kSearchInContext), L"Choose a context before you search in context.");
        EXPECT_EQ(host_.updates, 0);
        EXPECT_EQ(config_.calls, Texts{L"CommandDone 4711"});
    }
    BuildAgain();
    onCall_ = [&](const std::wstring& call) { host_.ended = call == L"ToolbarConfig.ContextWarningTitle"; };
    EXPECT_EQ(WarningOf(kSearchInContext), L"") << "the window has gone";
    host_.ended = false;
}

TEST_F(ToolbarCommands, BelongToTheFirstOfEqualCaptionsWithTheBoxLast) {
    Choose(L"Sales");
    config_.engineState = 1;  // so that no click counts as a repeat
    const int order[] = {kBeacon, kBackpack, kSearch, kSearchInContext, kFocus, kRefresh, kContext};
    for (size_t i = 0; i + 1 < std::size(order); ++i) {
        const std::wstring caption = Control(order[i]).caption;
        SCOPED_TRACE(com::ToAnsi(caption));
        const std::wstring line = ClickOn(caption);
        const std::wstring next = std::exchange(Control(order[i + 1]).caption, caption);
        EXPECT_EQ(ClickOn(caption), line);
        EXPECT_NE(ClickOn(next), line);
        Control(order[i + 1]).caption = next;
    }
}

TEST_F(ToolbarCommands, OfOtherCaptionsThanThoseOfButtons) {
    Choose(L"Sales");
    for (const wchar_t* caption : {L"unknown", L"Backpack"}) {
        ClickOn(caption);
        EXPECT_EQ(config_.calls, kNothing) << com::ToAnsi(caption);
    }
    EXPECT_EQ(ClickOn(L"Context"), L"**** Combo box accessed");
    EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"NewSearch 4711 Sales", L"CommandDone 4711"}));
    config_.contextMode = 2;
    BuildAgain();
    ClickOn(L"Context");
    EXPECT_EQ(config_.calls, kNothing) << "the box is hidden";
    EXPECT_EQ(host_.updates, 0);
}

TEST_F(ToolbarCommands, IgnoreASecondClickWithinTheSameSecond) {
    AwaitNextSecond();
    Click(kBeacon);
    Sleep(200);
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 1);
    toolbar_->SyncToolbar(5);
    host_.others[5] = &host_;
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 2) << "another window";
    Click(kFocus);
    EXPECT_EQ(host_.updates, 3) << "another button";
    Control(kRefresh).caption = L"Focus";
    Control(kRefresh).id = 7;
    Click(kRefresh);
    EXPECT_EQ(host_.updates, 4) << "another number";
    AwaitNextSecond();
    Click(kRefresh);
    EXPECT_EQ(host_.updates, 5) << "another second";
}

TEST_F(ToolbarCommands, AreCarriedOutAndReplayedIfTheEngineIsNotReady) {
    const auto expect = [&](int updates, const wchar_t* caption, long id) {
        EXPECT_EQ(host_.updates, updates);
        EXPECT_EQ(Late().GetText(L"g_sPendingButton"), caption);
        EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), id);
    };
    toolbar_->OnConnect();
    expect(0, L"", 0);
    config_.engineState = 1;
    AwaitNextSecond();
    Click(kFocus);
    Click(kBeacon);
    expect(2, L"Beacon", 1);  // the latest click
    toolbar_->OnConnect();
    expect(3, L"Beacon", 1);  // still not ready
    config_.engineState = 3;
    toolbar_->OnConnect();
    expect(4, L"", 0);
    toolbar_->OnConnect();
    Click(kBeacon);  // the replay counts as a click
    expect(4, L"", 0);
}

TEST_F(ToolbarCommands, OfAWindowWithoutAConnectionAreOnlyLogged) {
    config_.engineState = 0;
    toolbar_->SyncToolbar(99);
    log_.Clear();
    Click(kBeacon);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"In mvargCbbBeacon_Click",
                                          L"FindActiveConnection unable to locate active object for hwnd=99",
                                          L" Unable to locate ActiveConneciton for 99"));
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 0);
    EXPECT_THAT(config_.calls, IsEmpty());
    Choose(L"Sales");
    EXPECT_THAT(host_.contexts, IsEmpty());

    FakeHost other(99);
    host_.others[99] = &other;
    Click(kBeacon);
    Click(kSearch);
    EXPECT_THAT(config_.calls, Contains(L"NewSearch 99 Sales"));
    EXPECT_EQ(std::pair(other.updates, host_.updates), std::pair(1, 0));
    EXPECT_EQ(other.references, 0u);
}

TEST_F(ToolbarCommands, CollectContextsForEveryWindow) {
    const standin::BarControl& box = Control(kContext);
    for (const wchar_t* text : {L"Sales", L"Support", L"sales", L"Sales"}) Choose(text);
    EXPECT_EQ(host_.contexts, (Texts{L"Sales", L"Support", L"sales", L"Sales"}));
    EXPECT_EQ(box.items, (Texts{L"No context", L"Sales", L"Support", L"sales"}));

    host_.contexts.clear();
    Choose(L"No context");
    Choose(L"");
    Control(kContext).caption = L"Renamed";
    Choose(L"Sales");
    Control(kContext).caption = L"Context";
    EXPECT_EQ(host_.contexts, Texts{}) << "no context was chosen";

    toolbar_->SyncToolbar(5);
    EXPECT_EQ(box.items, (Texts{L"sales", L"Support", L"Sales"}));
    EXPECT_EQ(box.listIndex, 3);
    EXPECT_EQ(box.text, L"Sales");

    Late().Put(L"gSharedConextList", true);
    Control(kContext).items = {L"Sales", L"another's"};
    toolbar_->SyncToolbar(6);
    EXPECT_EQ(box.items, (Texts{L"sales", L"Support", L"Sales", L"another's"}));
    EXPECT_EQ(box.listIndex, 3);
}

TEST_F(ToolbarCommands, DoNotAddContextsWhileTheBoxIsRefilled) {
    host_.others[5] = &host_;
    for (const wchar_t* text : {L"Sales", L"Support", L"Research"}) Choose(text);
    onCall_ = [&](const std::wstring& call) {
        if (!call.ends_with(L"Invoke Clear")) return;
        for (const wchar_t* text : {L"Sales", L"Support", L"new"}) Choose(text);
    };
    toolbar_->SyncToolbar(5);
    onCall_ = nullptr;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(Control(kContext).items, (Texts{L"Research", L"Support", L"Sales"}));
    Choose(L"later");
    EXPECT_EQ(Control(kContext).items.back(), L"later");
}

TEST_F(ToolbarCommands, CreateAServerAgainThatHasDied) {
    config_.engineState = 1;  // so that no click counts as a repeat
    for (const HRESULT result : {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                                 HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), RPC_E_DISCONNECTED, RPC_E_SERVER_DIED,
                                 RPC_E_SERVER_DIED_DNE, CO_E_OBJNOTCONNECTED, E_FAIL}) {
        SCOPED_TRACE(result);
        config_.creations = host_.updates = 0;
        failures_[L"EngineState"] = result;
        Click(kBeacon);
        EXPECT_EQ(host_.updates, 0);
        EXPECT_TRUE(log_.Lines().back().starts_with(L"Exception in CommonButton_Click: "));
        Click(kBeacon);
        EXPECT_EQ(host_.updates, 1);
        EXPECT_EQ(config_.creations, result == E_FAIL ? 0 : 1) << "a server that has only failed is kept";
    }
    failures_[L"EngineState"] = RPC_E_SERVER_DIED;
    Click(kBeacon);
    Uninstall();
    Click(kSearch);
    EXPECT_EQ(log_.Lines().back(), L"Exception in CommonButton_Click: ActiveX component can't create object 429");
    EXPECT_TRUE(log_.Lines(1).empty()) << "its own definition must not replace a server that was there before";
    RegisterServer();
    Click(kSearch);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
}

TEST_F(ToolbarCommands, AreReportedAsDoneOnlyToTheServerThatHeardOfThem) {
    failures_[L"NewSearch"] = E_FAIL;
    Click(kSearch);
    EXPECT_EQ(config_.calls, kNothing) << "a failed command is reported";
    config_.calls.clear();
    config_.creations = 0;
    failures_[L"NewSearch"] = RPC_E_SERVER_DIED;
    AwaitNextSecond();
    Click(kSearch);
    EXPECT_EQ(config_.creations, 0) << "no server is created to hear the end of a command";
    EXPECT_EQ(config_.calls, Texts{L"BeginCommand"});
}

}  // namespace
}  // namespace beacon::test
