#include <algorithm>
#include <thread>

#include "support/globals.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

using Calls = std::vector<std::wstring>;

constexpr int kBeacon = 1;
constexpr int kSearch = 4;
constexpr int kSearchInContext = 5;
constexpr int kFocus = 6;
constexpr int kRefresh = 7;

class ToolbarCommands : public ToolbarFixture {
protected:
    void SetUp() override {
        ToolbarFixture::SetUp();
        Install();
    }

    void Install() {
        toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
        log_.Clear();
        config_.calls.clear();
    }

    /// A new bar for a definition that has changed.
    void Reinstall() {
        toolbar_.Reset();
        bars_->Delete(BeaconBar());
        toolbar_ = NewToolbar(host_);
        Install();
    }

    com::Object Late() const { return com::Object(toolbar_.Get()); }
};

TEST_F(ToolbarCommands, UpdatingButtonsSendAgainWithoutContext) {
    Choose(L"Sales");
    const std::pair<int, const wchar_t*> buttons[] = {{kBeacon, L"Beacon"}, {kFocus, L"Focus"}, {kRefresh, L"Refresh"}};
    for (const auto& [position, name] : buttons) {
        SCOPED_TRACE(position);
        host_.updates = 0;
        config_.calls.clear();
        log_.Clear();
        globals::gUserInterrupt = true;
        EXPECT_FALSE(Click(position)) << "the default is cancelled";
        EXPECT_FALSE(globals::gUserInterrupt);
        EXPECT_EQ(host_.updates, 1);
        EXPECT_EQ(host_.contexts.back(), L"");
        EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"CommandDone 4711"}));
        const std::wstring text = name;
        const std::vector<std::wstring> expected = {
            L"In mvargCbb" + text + L"_Click", L"**** CommonButton_Click with Caption: " + text + L" ID: 1",
            L"**** " + text + L" button clicked", L"***** CToolbar OnUpdate with text: <>"};
        EXPECT_EQ(log_.Lines(), expected);
    }
}

TEST_F(ToolbarCommands, SearchGoesToTheEngineWithTheBoxesText) {
    Choose(L"Sales");
    Click(kSearch);
    EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"NewSearch 4711 <Sales>", L"CommandDone 4711"}));
    EXPECT_EQ(host_.updates, 0);
    EXPECT_TRUE(log_.Has(L"**** New search button clicked with text <Sales>"));
    config_.contextMode = 0;
    config_.calls.clear();
    toolbar_->SyncToolbar(5);  // another window, so no repeat
    host_.others[5] = &host_;
    Click(kSearch);
    EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"NewSearch 5 <>", L"CommandDone 5"}));
}

TEST_F(ToolbarCommands, SearchInContextSendsTheChosenContext) {
    Choose(L"Sales");
    Click(kSearchInContext);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(host_.contexts.back(), L"Sales");
    EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"CommandDone 4711"}));
    EXPECT_TRUE(log_.Has(L"**** Search in context button clicked"));
    EXPECT_TRUE(log_.Has(L"***** CToolbar OnUpdate with text: <Sales>"));

    toolbar_->SyncToolbar(5);
    host_.others[5] = &host_;
    Control(3).text = L"No context";
    Click(kSearchInContext);
    EXPECT_EQ(host_.updates, 2) << "with the box shown it always sends";
    EXPECT_EQ(host_.contexts.back(), L"");
}

struct Warning {
    std::wstring text;
    bool seen = false;
};

/// Presses OK on the box as soon as it is there.
void PressOk(Warning& warning) {
    for (int i = 0; i < 300 && !warning.seen; ++i) {
        Sleep(10);
        const HWND box = FindWindowW(L"#32770", L"A title nobody else has");
        if (box == nullptr || !IsWindowVisible(box)) continue;
        constexpr int kTextControl = 0xFFFF;
        wchar_t text[100] = L"";
        GetDlgItemTextW(box, kTextControl, text, 100);
        warning.text = text;
        warning.seen = true;
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }
}

TEST_F(ToolbarCommands, SearchInContextWarnsWhenTheBoxIsHiddenAndNothingIsChosen) {
    config_.contextMode = 0;
    Reinstall();
    for (const wchar_t* text : {L"No context", L""}) {
        AwaitNextSecond();
        Control(3).text = text;
        config_.calls.clear();
        Warning warning;
        std::thread user(PressOk, std::ref(warning));
        Click(kSearchInContext);
        user.join();
        EXPECT_TRUE(warning.seen);
        EXPECT_EQ(warning.text, L"Choose first");
        EXPECT_EQ(host_.updates, 0);
        EXPECT_EQ(config_.calls, (Calls{L"CommandDone 4711"}));
    }
    AwaitNextSecond();
    Control(3).text = L"Sales";
    config_.calls.clear();
    Click(kSearchInContext);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(host_.contexts.back(), L"") << "the hidden box gives no context";
    EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"CommandDone 4711"}));
}

TEST_F(ToolbarCommands, CommandsGoByTheCaptionOfTheMoment) {
    Control(kRefresh).caption = L"Search";
    Click(kRefresh);
    EXPECT_EQ(config_.calls.at(1), L"NewSearch 4711 <No context>") << "the first of two equal captions wins";
    EXPECT_EQ(host_.updates, 0);

    Control(kSearch).caption = L"Context";
    config_.calls.clear();
    Click(kSearch);  // now the place of that caption before the box's
    EXPECT_EQ(config_.calls.at(1), L"NewSearch 4711 <No context>");

    Control(kBeacon).caption = L"Backpack";
    config_.calls.clear();
    Click(2);  // hidden, and nobody listens
    EXPECT_TRUE(config_.calls.empty());
    Late().Put(L"g_sPendingButton", com::FromText(L"nobody's"));
    Late().Put(L"g_nPendingButton", com::FromLong(1));
    toolbar_->OnConnect();
    EXPECT_EQ(config_.calls, (Calls{L"BeginCommand", L"CommandDone 4711"}));
}

TEST_F(ToolbarCommands, ASecondClickInTheSameSecondIsDropped) {
    AwaitNextSecond();
    Click(kBeacon);
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 1);
    Click(kFocus);
    EXPECT_EQ(host_.updates, 2);
    AwaitNextSecond();
    Click(kFocus);
    EXPECT_EQ(host_.updates, 3);
}

TEST_F(ToolbarCommands, AClickBeforeTheEngineIsReadyIsCarriedOutAndReplayed) {
    config_.engineState = 1;
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(Late().GetText(L"g_sPendingButton"), L"Beacon");
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 1);
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 2);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 1) << "still not ready";
    config_.engineState = 3;
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 3);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 0);
    toolbar_->OnConnect();
    EXPECT_EQ(host_.updates, 3);
}

TEST_F(ToolbarCommands, AClickForAWindowThatNobodyWatchesIsLoggedOnly) {
    config_.engineState = 0;
    toolbar_->SyncToolbar(99);
    log_.Clear();
    Click(kBeacon);
    const std::vector<std::wstring> expected = {L"In mvargCbbBeacon_Click",
                                                L"FindActiveConnection unable to locate active object for hwnd=99",
                                                L" Unable to locate ActiveConneciton for 99"};
    EXPECT_EQ(log_.Lines(), expected);
    EXPECT_EQ(Late().GetLong(L"g_nPendingButton"), 0);
    EXPECT_TRUE(config_.calls.empty());

    FakeHost other(99);
    host_.others[99] = &other;
    Click(kBeacon);
    EXPECT_EQ(other.updates, 1);
    EXPECT_EQ(host_.updates, 0);
    EXPECT_EQ(other.references, 0u);
}

TEST_F(ToolbarCommands, ContextsAreCollectedAndFollowTheWindows) {
    for (const wchar_t* text : {L"Sales", L"Support", L"sales", L"Sales"}) Choose(text);
    EXPECT_EQ(host_.contexts, (Calls{L"Sales", L"Support", L"sales", L"Sales"}));
    EXPECT_EQ(Control(3).items, (Calls{L"No context", L"Sales", L"Support", L"sales"}));
    EXPECT_TRUE(log_.Has(L"mvargCboContext_Change with text Support"));

    const size_t before = host_.contexts.size();
    Choose(L"No context");
    Choose(L"");
    EXPECT_EQ(host_.contexts.size(), before) << "neither is a context";

    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Control(3).items, (Calls{L"sales", L"Support", L"Sales"}));
    EXPECT_EQ(Control(3).listIndex, 3);
    EXPECT_EQ(Control(3).text, L"Sales");

    Late().Put(L"gSharedConextList", com::FromBool(true));
    Control(3).items = {L"another's", L"Support"};
    toolbar_->SyncToolbar(6);
    EXPECT_EQ(Control(3).items, (Calls{L"sales", L"Sales", L"another's", L"Support"}));
    EXPECT_EQ(Control(3).listIndex, 2);
}

TEST_F(ToolbarCommands, OnlyTheContextBoxIsListenedTo) {
    Control(3).caption = L"Renamed";
    Choose(L"Sales");
    EXPECT_TRUE(host_.contexts.empty());
}

TEST_F(ToolbarCommands, TheToolbarMayEndInsideItsOwnCommand) {
    config_.onNewSearch = [&] {
        toolbar_->SetConnect(nullptr);
        toolbar_.Reset();
    };
    Click(kSearch);
    EXPECT_EQ(toolbar_, nullptr);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
    EXPECT_EQ(host_.references, 0u);

    toolbar_ = NewToolbar(host_);
    Install();
    host_.onUpdate = [&] { bars_->Delete(BeaconBar()); };
    Click(kRefresh);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
}

TEST_F(ToolbarCommands, AServerThatHasDiedIsLookedForAgain) {
    const int created = config_.created;
    config_.engineStateFailure = HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 0);
    EXPECT_EQ(log_.Lines().back().substr(0, 33), L"Exception in CommonButton_Click: ");
    Click(kBeacon);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(config_.created, created + 1);
}

TEST_F(ToolbarCommands, TheBoxCanBeReadSetAndBoundFromOutside) {
    const com::Object box = Late().GetObject(L"gCboContext");
    EXPECT_EQ(box.GetText(L"Caption"), L"Context");
    Late().Put(L"gCboContext", com::FromText(L"renamed"));
    EXPECT_EQ(Control(3).caption, L"renamed") << "the control's default value";
}

}  // namespace
}  // namespace beacon::test
