#include <set>

#include "toolbar/beacon_bar.h"
#include "toolbar/clipboard.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

constexpr int kButtonPlaces[] = {1, 2, 4, 5, 6, 7};

class InstallingTheToolbar : public ToolbarFixture {
protected:
    std::wstring LastLine() const { return log_.Lines().back(); }

    std::shared_ptr<standin::Bar> AddForeignBar() { return bars_->Add(L"Mine", 1, false); }
};

TEST_F(InstallingTheToolbar, BuildsTheBarFromScratch) {
    config_.buttons[4].enabled = false;
    Install();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(host_.timerStops, 1);
    const standin::Bar& bar = *BeaconBar();
    EXPECT_EQ(bar.position, 1);
    EXPECT_EQ(bar.protection, 1);
    EXPECT_TRUE(bar.visible && bar.enabled && !bar.temporary);
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const standin::BarControl& button = Control(kButtonPlaces[i]);
        const auto& [caption, tooltip, enabled, mask] = config_.buttons[static_cast<size_t>(i)];
        EXPECT_EQ(button.type, 1);
        EXPECT_EQ(button.style, 3);
        EXPECT_EQ((Texts{button.caption, button.tooltip, button.description, button.shortcut}),
                  (Texts{caption, tooltip, caption, caption}));
        const bool first = i == 1 || i == 4;  // of a group
        EXPECT_EQ(button.enabled, !first);
        EXPECT_EQ(button.visible, !first);
        EXPECT_EQ(button.beginGroup, first);
    }
    const standin::BarControl& box = Control(3);
    EXPECT_EQ(box.type, 4);
    EXPECT_EQ(box.width, 150);
    EXPECT_EQ(box.style, 0);
    EXPECT_EQ((Texts{box.caption, box.text}), (Texts{L"Context", L"No context"}));
    EXPECT_TRUE(box.visible);
    EXPECT_EQ(box.items, Texts{L"No context"});
}

TEST_F(InstallingTheToolbar, MakesEachButtonsOwnColourTransparent) {
    config_.buttons[2].maskColor = RGB(0x28, 0x2C, 0x34);  // the outline of its picture
    config_.buttons[3].maskColor = RGB(0x12, 0x34, 0x56);  // no pixel's
    Install();
    std::set<std::vector<std::uint32_t>> pictures;
    for (int i = 0; i < 6; ++i) {
        const auto& pixels = Control(kButtonPlaces[i]).face.pixels;
        const auto isTransparent = [](std::uint32_t pixel) { return pixel >> 24 == 0; };
        EXPECT_EQ(std::ranges::any_of(pixels, isTransparent), i != 3) << i;
        EXPECT_EQ(isTransparent(pixels.front()), i != 2 && i != 3) << "the background of " << i;
        pictures.insert(pixels);
    }
    EXPECT_EQ(pictures.size(), 6u);
}

TEST_F(InstallingTheToolbar, LogsEachStep) {
    config_.buttons.clear();
    Install();
    const LogLines expected = {
        L"InstallBeaconToolbar: ",
        L"InstallBeaconToolbar: About to add toolbar",
        L"AddBeaconToolbar Called",
        L"AddBeaconToolbar() Calling GetCommandBar()",
        L"GetCommandBar() Called",
        L"GetCommandBars() called",
        L"GetCommandBar() is Nothing",
        L"AddBeaconToolbar: No toolbar found, installing from scratch",
        L"AddBeaconToolbar: oCommandBars.Add(Name:=Beacon Toolbar)",
        L"Saving content of Clipboard",
        L"Restoring content of Clipboard",
        L"GetCommandBar() Called",
        L"SyncToolbar: hWnd=4711",
        L"GetCommandBar() Called",
        L"Exception in SyncToolbar: Subscript out of range 9",
        L"InstallBeaconToolbar: tmrToolbar is disabled",
    };
    EXPECT_EQ(log_.Lines(), expected);
    log_.Clear();
    Install();
    EXPECT_EQ(log_.Lines(), LogLines{L"InstallBeaconToolbar: "});
}

TEST_F(InstallingTheToolbar, ButtonsAreNumberedFromZeroUntilTheyAreSynchronised) {
    config_.buttons.resize(8);  // two more than SyncToolbar knows
    config_.contextMode = 0;    // and a box that it leaves alone
    Install();
    EXPECT_EQ(Control(8).tag, L"corvantis-beacon 4711;6");
    EXPECT_EQ(Control(9).tag, L"corvantis-beacon 4711;7");
    EXPECT_EQ(Control(3).tag, L"corvantis-beacon 4711");
    EXPECT_FALSE(Control(3).visible);
    EXPECT_TRUE(Control(3).enabled);
    EXPECT_TRUE(Control(3).items.empty());
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the hidden box is no reason to go through all places again";
}

TEST_F(InstallingTheToolbar, WaitsForAWindow) {
    const auto window = std::exchange(outlook_->activeExplorer, nullptr);
    Install();
    EXPECT_FALSE(toolbar_->Initialized());
    EXPECT_TRUE(log_.Has(L"Application.ActiveExplorer Is Nothing"));
    EXPECT_EQ(LastLine(), L"InstallBeacnToolbar: unable to locate Toolbar");
    EXPECT_EQ(host_.timerStops, 0);
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"SyncToolbar unable to locate Toolbar");
    host_.isInspector = true;
    Install();
    EXPECT_TRUE(log_.Has(L"Application.ActiveInspector Is Nothing"));
    outlook_->activeInspector = window;
    Install();
    EXPECT_TRUE(toolbar_->Initialized());
}

TEST_F(InstallingTheToolbar, TakesUpABarThatALaterSessionFindsUnderTheSameHandle) {
    Install();
    const size_t count = bars_->Bars().size();
    OpenWindow();
    ASSERT_EQ(Tags(), TagsFor(kWindow));
    ASSERT_TRUE(Control(3).items.empty()) << "the earlier toolbar has emptied it";
    Install();
    EXPECT_EQ(bars_->Bars().size(), count);
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch"));
    EXPECT_EQ(Control(3).items, Texts{L"No context"});
    Click(7);
    EXPECT_EQ(host_.updates, 1);
    Choose(L"Sales");
    EXPECT_EQ(host_.contexts.back(), L"Sales");
}

TEST_F(InstallingTheToolbar, FollowsTheWindowsThatShareTheBar) {
    Install();
    Choose(L"Sales");
    FakeHost other(-5);
    other.outlook = host_.outlook;
    auto second = NewToolbar(other);
    second->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(Tags(), TagsFor(-5));
    EXPECT_EQ(CToolbar::LastSynchronisedWindow(), -5);
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_EQ(CToolbar::LastSynchronisedWindow(), kWindow);
    EXPECT_EQ(Control(3).items, Texts{L"Sales"});
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the same window again";
    config_.failures[L"ContextMode"] = E_FAIL;
    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Control(7).tag, L"corvantis-beacon 5;7");
    EXPECT_EQ(Control(3).tag, L"corvantis-beacon 4711;3");
    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Tags(), TagsFor(5)) << "what could not be finished is done again";
}

TEST_F(InstallingTheToolbar, TakesAnyBarWithTheMarkerInAnyCapitals) {
    const auto foreign = AddForeignBar();
    bars_->AddControl(foreign, 1, 1, 0, false);
    bars_->AddControl(foreign, 1, 1, 0, false)->tag = L"some CORVANTIS-Beacon thing";
    Install();
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon 4711;1");
    EXPECT_EQ(foreign->controls[1]->tag, L"corvantis-beacon 4711;2");
    EXPECT_EQ(bars_->Find(L"Mine"), foreign) << "a bar that was found is never judged";
    bars_->Delete(foreign);
    EXPECT_FALSE(toolbar_->CommandBarExists());
}

TEST_F(InstallingTheToolbar, ABarOfOtherControlsIsNotHarmed) {
    const auto foreign = AddForeignBar();
    bars_->AddControl(foreign, standin::kPopupControl, 1, 0, false)->tag = L"corvantis-beacon";
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"Exception in SyncToolbar: Type mismatch 13");
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon");
}

TEST_F(InstallingTheToolbar, IsBuiltEvenWithoutBitmaps) {
    config_.bitmaps = L"C:\\nowhere";
    Install();
    ASSERT_EQ(BeaconBar()->controls.size(), 7u);
    EXPECT_TRUE(Control(7).face.Empty());
    EXPECT_TRUE(log_.Has(L"LoadPicture(C:\\nowhere\\button5.bmp) failed", 1));
    EXPECT_TRUE(log_.Has(L"sBitmapPathEx(5) =C:\\nowhere\\button5.bmp"));
    EXPECT_TRUE(log_.Has(L"CopyBitmapAsButtonFace() failed:  0"));
    EXPECT_TRUE(log_.Has(L"Exception in AddImageToButton: Invalid picture 481"));
}

TEST_F(InstallingTheToolbar, OneFailingCallLeavesNoPartOfABar) {
    config_.bitmaps = L"C:\\nowhere";
    const size_t before = bars_->Bars().size();
    for (const wchar_t* member : {L"ButtonCount", L"ButtonCaption", L"ButtonTooltip", L"ButtonEnabled",
                                  L"ButtonMaskColor", L"DefaultContextText", L"ContextMode"}) {
        SCOPED_TRACE(com::ToAnsi(member));
        config_.failures[member] = E_FAIL;
        Install();
        EXPECT_TRUE(config_.failures.empty()) << "it is not called at all";
        EXPECT_EQ(bars_->Bars().size(), before);
        EXPECT_FALSE(toolbar_->Initialized());
        EXPECT_EQ(LastLine(), L"InstallBeacnToolbar: unable to locate Toolbar");
        EXPECT_TRUE(toolbar_->CommandBarExists()) << "nothing that the user could have deleted";
        Install();
        ASSERT_NE(BeaconBar(), nullptr);
        EXPECT_EQ(Tags(), TagsFor(kWindow));
        bars_->Delete(BeaconBar());
        EXPECT_FALSE(toolbar_->CommandBarExists());
        OpenWindow();
    }
    config_.failures[L"ButtonBitmapPath"] = E_FAIL;
    Install();
    EXPECT_NE(BeaconBar(), nullptr) << "a face that fails does not count";
}

TEST_F(InstallingTheToolbar, GivesUpAfterThreeBuildsThatFail) {
    for (int build = 1; build <= 3; ++build) {
        EXPECT_EQ(host_.timerStops, 0) << build;
        config_.failures[L"ButtonTooltip"] = E_FAIL;
        Install();
        EXPECT_EQ(BeaconBar(), nullptr);
    }
    EXPECT_EQ(host_.timerStops, 1) << "no more ticks for nothing";
    config_.failures.clear();
    Install();
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->CommandBarExists());
}

TEST_F(InstallingTheToolbar, ATickInsideItsOwnInstallationDoesNothing) {
    config_.onCall = [&](const std::wstring& member) {
        if (member == L"ButtonEnabled") Install();
    };
    Install();
    config_.onCall = nullptr;
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_EQ(host_.timerStops, 1);
    EXPECT_EQ(bars_->Find(L"Beacon Toolbar"), bars_->Bars().back());
}

TEST_F(InstallingTheToolbar, UsesItsOwnDefinitionWhereNoServerIsInstalled) {
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    for (const long code : {0L, ERROR_FILE_NOT_FOUND, ERROR_MOD_NOT_FOUND}) {
        SCOPED_TRACE(code);
        if (code == 0) Uninstall();
        config_.refusal = HRESULT_FROM_WIN32(code);
        Install();
        const auto bar = bars_->Find(L"Lamp");
        ASSERT_NE(bar, nullptr);
        ASSERT_EQ(bar->controls.size(), 7u);
        for (size_t i = 0; i < 7; ++i) EXPECT_EQ(bar->controls[i]->face.Empty(), i == 2) << i;
        EXPECT_EQ(bar->controls[0]->caption, L"Beacon");
        EXPECT_EQ(bar->controls[6]->caption, L"Refresh");
        bars_->Delete(bar);
        OpenWindow();
        if (code == 0) RegisterServer();
    }
}

TEST_F(InstallingTheToolbar, AsksAServerThatCannotBeCreatedAgainWhenTheUserDoesSomething) {
    config_.refusal = CO_E_SERVER_EXEC_FAILURE;
    for (int tick = 0; tick < 3; ++tick) Install();
    EXPECT_EQ(config_.asked, 1) << "the timer does not ask again";
    EXPECT_EQ(BeaconBar(), nullptr);
    toolbar_->SyncToolbar(kWindow);
    Install();
    EXPECT_EQ(config_.asked, 2);
    config_.refusal = S_OK;
    Install();
    EXPECT_EQ(config_.asked, 2);
    toolbar_->SyncToolbar(kWindow);
    Install();
    EXPECT_EQ(config_.asked, 3);
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_EQ(Control(1).caption, config_.buttons[0].caption);
}

TEST_F(InstallingTheToolbar, LeavesAClipboardAloneThatIsNotToBeHad) {
    const ClipboardOwner other;
    ASSERT_TRUE(OpenClipboard(other.Window()));
    Install();
    CloseClipboard();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_EQ(Control(1).face.width, 0);
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: the clipboard is not to be had, leaving out the button faces"));
    EXPECT_THAT(log_.Lines(), Not(Contains(HasSubstr(L"sBitmapPathEx"))));
}

TEST_F(InstallingTheToolbar, KnowsWhetherTheUserHasDeletedTheBar) {
    Install();
    EXPECT_TRUE(toolbar_->CommandBarExists());
    bars_->Delete(BeaconBar());
    EXPECT_FALSE(toolbar_->CommandBarExists());
    toolbar_->SyncToolbar(kWindow);  // must survive it
    EXPECT_TRUE(LastLine().starts_with(L"Exception in SyncToolbar: "));
    Install();
    EXPECT_EQ(BeaconBar(), nullptr) << "the bar stays away";
}

TEST_F(InstallingTheToolbar, DoesNotTakeAClosedWindowOrItsOwnRemovalForTheUsersWish) {
    Install();
    bars_->Close();
    log_.Clear();
    EXPECT_TRUE(toolbar_->CommandBarExists());
    EXPECT_EQ(log_.Lines(), LogLines{L"GetCommandBar() Called"});

    OpenWindow();
    Install();
    DeleteBeaconBar(toolbar_->GetCommandBar());
    EXPECT_TRUE(toolbar_->CommandBarExists()) << "another window's toolbar has deleted it";
    OpenWindow();
    Install();
    OpenWindow();
    toolbar_->InstallBeaconToolbar(VARIANT_TRUE);
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->CommandBarExists());
    EXPECT_TRUE(log_.Has(L"InstallBeaconToolbar: Removing old toolbar"));
    EXPECT_TRUE(log_.Has(L"RemoveBeaconToolbar() called"));
    toolbar_ = NewToolbar(host_);
    toolbar_->RemoveBeaconToolbar();
    EXPECT_EQ(LastLine(), L"Exception in RemoveBeaconToolbar() Object variable or With block variable not set 91");
}

TEST_F(InstallingTheToolbar, SavesTheLayout) {
    Install();
    standin::Bar& bar = *BeaconBar();
    bar.left = 12;
    bar.top = 34;
    bar.width = 560;
    bar.height = 26;
    bar.position = 4;
    bar.rowIndex = 3;
    toolbar_->g_tmrLayoutSaver_Timer();
    EXPECT_EQ(config_.calls.back(), L"SaveLayout Outlook 26 560 12 34 3 Floating");
}

TEST_F(InstallingTheToolbar, LeavesTheBarButEmptiesTheBoxAtTheEnd) {
    NewToolbar(host_).Reset();
    EXPECT_EQ(config_.asked, 0) << "the end is no reason to start a server";
    Install();
    Choose(L"Sales");
    config_.contextMode = 0;
    OpenWindow();
    EXPECT_EQ(Control(3).items.size(), 2u) << "a box that is not used is left alone";
    config_.contextMode = 1;
    Install();
    toolbar_.Reset();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(Control(3).items.empty());
    Click(1);
    EXPECT_EQ(host_.updates, 0);
}

}  // namespace
}  // namespace beacon::test
