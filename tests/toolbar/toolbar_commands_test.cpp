#include "outlook/bars/control_objects.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

enum Position { kBeacon = 1, kBackpack, kContext, kSearch, kSearchInContext, kFocus, kRefresh };

/// Waits for the next second of the clock to begin, so that what follows at once happens within one second.
void AwaitNextSecond() {
    SYSTEMTIME start;
    SYSTEMTIME now;
    GetLocalTime(&start);
    do {
        Sleep(5);
        GetLocalTime(&now);
    } while (now.wSecond == start.wSecond);
}

class ToolbarCommands : public ToolbarFixture {
protected:
    void SetUp() override {
        ToolbarFixture::SetUp();
        config_.bitmaps = L"C:\\nowhere";
        BuildAgain();
    }

    /// Builds a new bar, for a definition that has changed.
    void BuildAgain() {
        if (BeaconBar() != nullptr) bars_->Delete(BeaconBar());
        StartLaterSession();
    }

    void StartLaterSession() {
        OpenWindow();
        Install();
        log_.Clear();
        config_.calls.clear();
    }

    /// Replays a click on a button of this caption, whether the bar has one or not.
    void ClickOn(const std::wstring& caption) {
        Late().Put(L"g_sPendingButton", com::FromText(caption));
        Late().Put(L"g_nPendingButton", 1L);
        config_.calls.clear();
        toolbar_->OnConnect();
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
        const HWND box = FindWindowW(L"#32770", L"Beacon");
        if (box == nullptr || !IsWindowVisible(box)) return;
        constexpr int kTextControl = 0xFFFF;
        wchar_t text[100] = L"";
        GetDlgItemTextW(box, kTextControl, text, 100);
        warning_ = text;
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }

    static inline std::wstring warning_;
};

TEST_F(ToolbarCommands, UpdatingButtonsSendAgainWithoutContext) {
    Choose(L"Sales");
    for (const int position : {kBeacon, kFocus, kRefresh}) {
        SCOPED_TRACE(position);
        config_.calls.clear();
        log_.Clear();
        globals::gUserInterrupt = true;
        const int updates = host_.updates;
        EXPECT_FALSE(Click(position)) << "the default action must be cancelled";
        EXPECT_FALSE(globals::gUserInterrupt);
        EXPECT_EQ(host_.updates, updates + 1);
        EXPECT_EQ(host_.contexts.back(), L"");
        EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"CommandDone 4711"}));
        const std::wstring text = Control(position).caption;
        EXPECT_EQ(
            log_.Lines(),
            (LogLines{L"In mvargCbb" + text + L"_Click", L"**** CommonButton_Click with Caption: " + text + L" ID: 1",
                      L"**** " + text + L" button clicked", L"***** CToolbar OnUpdate with text: <>"}));
    }
}

// The end-to-end tests search with a context.
TEST_F(ToolbarCommands, SearchWithoutAContext) {
    host_.others[5] = &host_;
    toolbar_->SyncToolbar(5);
    Control(kContext).text = L"No context";
    Click(kSearchInContext);
    EXPECT_EQ(host_.updates, 1) << "it always sends while the box is shown";
    EXPECT_EQ(host_.contexts.back(), L"");

    config_.contextMode = 0;
    Choose(L"Sales");
    config_.calls.clear();
    Click(kSearch);
    EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"NewSearch 5 ", L"CommandDone 5"}));
    EXPECT_EQ(host_.updates, 1);
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
    onCall_ = nullptr;
    host_.ended = false;

    BuildAgain();
    Control(kContext).text = L"Sales";
    Click(kSearchInContext);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(host_.contexts.back(), L"") << "a hidden box gives no context";
    EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"CommandDone 4711"}));
}

TEST_F(ToolbarCommands, BelongToTheFirstOfEqualCaptionsWithTheBoxLast) {
    Choose(L"Sales");
    const std::tuple<int, int, const wchar_t*> cases[] = {
        {kBackpack, kBeacon, L"**** Beacon button clicked"},
        {kSearch, kBackpack, L"**** Backpack button clicked"},
        {kSearchInContext, kSearch, L"**** New search button clicked with text <Sales>"},
        {kContext, kSearch, L"**** New search button clicked with text <Sales>"},
        {kFocus, kSearchInContext, L"**** Search in context button clicked"},
        {kRefresh, kFocus, L"**** Focus button clicked"},
        {kContext, kRefresh, L"**** Refresh button clicked"}};
    config_.engineState = 1;  // so that no click counts as a repeat
    for (const auto& [renamed, like, line] : cases) {
        SCOPED_TRACE(renamed);
        const std::wstring caption = std::exchange(Control(renamed).caption, Control(like).caption);
        log_.Clear();
        ClickOn(Control(like).caption);
        EXPECT_TRUE(log_.Has(line));
        Control(renamed).caption = caption;
    }
}

TEST_F(ToolbarCommands, OfOtherCaptionsThanThoseOfButtons) {
    Choose(L"Sales");
    const Texts nothing{L"BeginCommand", L"CommandDone 4711"};
    for (const wchar_t* caption : {L"unknown", L"Backpack"}) {
        ClickOn(caption);
        EXPECT_EQ(config_.calls, nothing) << com::ToAnsi(caption);
    }
    ClickOn(L"Context");
    EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"NewSearch 4711 Sales", L"CommandDone 4711"}));
    EXPECT_TRUE(log_.Has(L"**** Combo box accessed"));
    config_.contextMode = 2;
    BuildAgain();
    ClickOn(L"Context");
    EXPECT_EQ(config_.calls, nothing) << "the box is hidden";
    EXPECT_EQ(host_.updates, 0);
    Click(kBackpack);
    EXPECT_FALSE(log_.Has(L"In mvargCbbBackpack_Click")) << "the hidden button has no handler";
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
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 0) << "no click is stored";
    config_.engineState = 1;
    AwaitNextSecond();
    Click(kFocus);
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 2);
    EXPECT_EQ(Late().GetText(L"g_sPendingButton"), L"Beacon") << "the latest click is stored";
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 1);
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 3);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 1) << "still not ready";
    config_.engineState = 3;
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 4);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 0);
    EXPECT_EQ(Late().GetText(L"g_sPendingButton"), L"");
    toolbar_->OnConnect();
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 4) << "the replay counts as a click";
}

TEST_F(ToolbarCommands, OfAWindowWithoutAConnectionAreOnlyLogged) {
    config_.engineState = 0;
    toolbar_->SyncToolbar(99);
    log_.Clear();
    Click(kBeacon);
    const LogLines expected = {L"In mvargCbbBeacon_Click",
                               L"FindActiveConnection unable to locate active object for hwnd=99",
                               L" Unable to locate ActiveConneciton for 99"};
    EXPECT_EQ(log_.Lines(), expected);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 0);
    EXPECT_TRUE(config_.calls.empty());
    Choose(L"Sales");
    EXPECT_TRUE(host_.contexts.empty());

    FakeHost other(99);
    host_.others[99] = &other;
    Click(kBeacon);
    EXPECT_EQ(other.updates, 1);
    EXPECT_EQ(host_.updates, 0);
    EXPECT_EQ(other.references, 0u);
}

TEST_F(ToolbarCommands, CollectContextsForEveryWindow) {
    for (const wchar_t* text : {L"Sales", L"Support", L"sales", L"Sales"}) Choose(text);
    EXPECT_EQ(host_.contexts, (Texts{L"Sales", L"Support", L"sales", L"Sales"}));
    EXPECT_EQ(Control(kContext).items, (Texts{L"No context", L"Sales", L"Support", L"sales"}));
    EXPECT_TRUE(log_.Has(L"mvargCboContext_Change with text Support"));

    const size_t before = host_.contexts.size();
    Choose(L"No context");
    Choose(L"");
    Control(kContext).caption = L"Renamed";
    Choose(L"Sales");
    Control(kContext).caption = L"Context";
    EXPECT_EQ(host_.contexts.size(), before) << "no context was chosen";

    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Control(kContext).items, (Texts{L"sales", L"Support", L"Sales"}));
    EXPECT_EQ(Control(kContext).listIndex, 3);
    EXPECT_EQ(Control(kContext).text, L"Sales");

    Late().Put(L"gSharedConextList", true);
    Control(kContext).items = {L"Sales", L"another's"};
    toolbar_->SyncToolbar(6);
    EXPECT_EQ(Control(kContext).items, (Texts{L"sales", L"Support", L"Sales", L"another's"}));
    EXPECT_EQ(Control(kContext).listIndex, 3);
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
    for (const HRESULT death : {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                                HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), RPC_E_DISCONNECTED, RPC_E_SERVER_DIED,
                                RPC_E_SERVER_DIED_DNE, CO_E_OBJNOTCONNECTED}) {
        const int creations = config_.creations;
        const int updates = host_.updates;
        failures_[L"EngineState"] = death;
        Click(kBeacon);
        EXPECT_EQ(host_.updates, updates);
        EXPECT_TRUE(log_.Lines().back().starts_with(L"Exception in CommonButton_Click: "));
        Click(kBeacon);
        EXPECT_EQ(host_.updates, updates + 1);
        EXPECT_EQ(config_.creations, creations + 1);
    }
    const int creations = config_.creations;
    failures_[L"EngineState"] = E_FAIL;
    Click(kBeacon);
    Click(kBeacon);
    EXPECT_EQ(config_.creations, creations) << "the server has failed, but not died";

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
    EXPECT_EQ(config_.calls, (Texts{L"BeginCommand", L"CommandDone 4711"})) << "a failed command is reported";
    config_.calls.clear();
    const int creations = config_.creations;
    failures_[L"NewSearch"] = RPC_E_SERVER_DIED;
    AwaitNextSecond();
    Click(kSearch);
    EXPECT_EQ(config_.creations, creations) << "no server is created to hear the end of a command";
    EXPECT_EQ(config_.calls, Texts{L"BeginCommand"});
}

TEST_F(ToolbarCommands, LetCallersReadSetAndBindTheContextBox) {
    const com::Object box = Late().GetObject(L"gCboContext");
    EXPECT_EQ(box.GetText(L"Caption"), L"Context");
    const auto another = bars_->AddControl(BeaconBar(), 4, 1, 0, false);
    another->caption = L"Context";
    const com::Object eighth = toolbar_->GetCommandBar().GetObject(L"Controls").GetObject(L"Item", {8L});
    EXPECT_EQ(toolbar_->putref_gCboContext(com::FromObject(eighth.Get())), S_OK);
    Choose(L"ignored");
    standin::EnterText(*another, L"Sales");
    bars_->RaiseChange(another);
    EXPECT_EQ(host_.contexts, Texts{L"Sales"});
    Late().Put(L"gCboContext", L"renamed");
    EXPECT_EQ(another->caption, L"renamed") << "the control's default value";
}

}  // namespace
}  // namespace beacon::test
