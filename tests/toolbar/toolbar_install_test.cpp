#include <set>

#include "toolbar/beacon_bar.h"
#include "toolbar/clipboard.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

constexpr int kButtonPlaces[] = {1, 2, 4, 5, 6, 7};

class ToolbarInstallation : public ToolbarFixture {
protected:
    std::wstring LastLine() const { return log_.Lines().back(); }

    std::shared_ptr<standin::Bar> AddForeignBar() { return bars_->Add(L"Mine", 1, false); }

    void DeleteBarAndOpenWindow() {
        bars_->Delete(BeaconBar());
        OpenWindow();
        log_.Clear();
    }

    /// Tries to install while the next call of this name fails.
    void InstallWithFailure(const wchar_t* call) {
        failures_[call] = E_FAIL;
        Install();
        EXPECT_TRUE(failures_.empty()) << com::ToAnsi(call) << " is not called";
    }
};

TEST_F(ToolbarInstallation, BuildsTheBarFromScratch) {
    config_.buttons[4].enabled = false;
    Install();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(host_.timerStops, 1);
    const standin::Bar& bar = *BeaconBar();
    EXPECT_EQ((std::vector<long>{bar.position, bar.protection, bar.visible, bar.enabled, bar.temporary}),
              (std::vector<long>{1, 1, true, true, false}));
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    for (size_t i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const standin::BarControl& button = Control(kButtonPlaces[i]);
        const std::wstring& caption = config_.buttons[i].caption;
        EXPECT_EQ((Texts{button.caption, button.tooltip, button.description, button.shortcut}),
                  (Texts{caption, config_.buttons[i].tooltip, caption, caption}));
        const bool startsGroup = i == 1 || i == 4;
        EXPECT_EQ((std::vector<long>{button.type, button.style, button.enabled, button.visible, button.beginGroup}),
                  (std::vector<long>{1, 3, !startsGroup, !startsGroup, startsGroup}));
    }
    const standin::BarControl& box = Control(3);
    EXPECT_EQ((std::vector<long>{box.type, box.style, box.width, box.visible}), (std::vector<long>{4, 0, 150, true}));
    EXPECT_EQ((Texts{box.caption, box.text}), (Texts{L"Context", L"No context"}));
    EXPECT_EQ(box.items, Texts{L"No context"});
}

TEST_F(ToolbarInstallation, MakesTheMaskColourOfEachButtonTransparent) {
    config_.buttons[2].maskColor = RGB(0x28, 0x2C, 0x34);  // the outline of its picture
    config_.buttons[3].maskColor = RGB(0x12, 0x34, 0x56);  // not in its picture
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

TEST_F(ToolbarInstallation, BuildsAndLogsABarWithoutBitmaps) {
    config_.bitmaps = L"C:\\nowhere";
    Install();
    LogLines expected = {
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
    };
    for (const wchar_t digit : std::wstring(L"012345")) {
        expected.push_back(std::wstring(L"sBitmapPathEx(") + digit + L") =C:\\nowhere\\button" + digit + L".bmp");
        expected.push_back(L"CopyBitmapAsButtonFace() failed:  0");
        expected.push_back(L"Exception in AddImageToButton: Invalid picture 481");
    }
    for (const wchar_t* line : {L"Restoring content of Clipboard", L"GetCommandBar() Called", L"SyncToolbar: hWnd=4711",
                                L"GetCommandBar() Called", L"InstallBeaconToolbar: tmrToolbar is disabled"})
        expected.push_back(line);
    EXPECT_EQ(log_.Lines(), expected);
    EXPECT_TRUE(log_.Has(L"LoadPicture(C:\\nowhere\\button5.bmp) failed", 1));
    log_.Clear();
    Install();
    EXPECT_EQ(log_.Lines(), LogLines{L"InstallBeaconToolbar: "}) << "it is installed";
}

TEST_F(ToolbarInstallation, NumbersTheTagsOfButtonsFromZeroUntilTheyAreSynchronised) {
    config_.contextMode = 0;  // synchronising leaves a hidden box alone
    Texts tags;
    onCall_ = [&](const std::wstring& call) {
        if (call.ends_with(L"Invoke Protection")) tags = Tags();
    };
    Install();
    const std::wstring prefix = L"corvantis-beacon 4711";
    EXPECT_EQ(tags, (Texts{prefix + L";0", prefix + L";1", prefix, prefix + L";2", prefix + L";3", prefix + L";4",
                           prefix + L";5"}));
    EXPECT_EQ(Control(7).tag, prefix + L";7");
    EXPECT_EQ(Control(3).tag, prefix);
    EXPECT_TRUE(!Control(3).visible && Control(3).enabled && Control(3).items.empty());
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the bar is synchronised, although the box is hidden";
}

TEST_F(ToolbarInstallation, BoundsCountsAndTextsOfTheServer) {
    config_.buttons[0].caption = std::wstring(5'000'000, L'x');
    for (const long count : {0L, -1L, 3L, 9L, 1'000'000L}) {
        SCOPED_TRACE(count);
        config_.buttonCount = count;
        Install();
        ASSERT_NE(BeaconBar(), nullptr);
        EXPECT_EQ(Tags(), TagsFor(kWindow));
        EXPECT_EQ(Control(1).caption, std::wstring(1024, L'x'));
        DeleteBarAndOpenWindow();
    }
}

TEST_F(ToolbarInstallation, WaitsForAWindow) {
    const auto window = std::exchange(outlook_->activeExplorer, nullptr);
    Install();
    EXPECT_TRUE(log_.Has(L"Application.ActiveExplorer Is Nothing"));
    EXPECT_EQ(LastLine(), L"InstallBeacnToolbar: unable to locate Toolbar");
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"SyncToolbar unable to locate Toolbar");
    host_.isInspector = true;
    Install();
    EXPECT_TRUE(log_.Has(L"Application.ActiveInspector Is Nothing"));
    EXPECT_FALSE(toolbar_->Initialized());
    outlook_->activeInspector = window;
    Install();
    EXPECT_TRUE(toolbar_->Initialized());
}

TEST_F(ToolbarInstallation, RebindsABarOfAnEarlierSessionWithTheSameHandle) {
    Install();
    const size_t count = bars_->Bars().size();
    OpenWindow();
    ASSERT_NE(BeaconBar(), nullptr);
    ASSERT_EQ(Tags(), TagsFor(kWindow));
    ASSERT_TRUE(Control(3).items.empty()) << "the earlier toolbar has cleared it";
    Install();
    EXPECT_EQ(bars_->Bars().size(), count);
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch"));
    EXPECT_EQ(Control(3).items, Texts{L"No context"});
    Click(7);
    EXPECT_EQ(host_.updates, 1);
    Choose(L"Sales");
    EXPECT_EQ(host_.contexts.back(), L"Sales");
}

TEST_F(ToolbarInstallation, FollowsTheActiveOneOfTwoWindowsThatShareTheBar) {
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
    EXPECT_EQ(Control(3).items, Texts{L"Sales"});
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the same window again";
    failures_[L"ContextMode"] = E_FAIL;
    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Control(3).tag, L"corvantis-beacon 4711;3");
    toolbar_->SyncToolbar(5);
    EXPECT_EQ(Tags(), TagsFor(5)) << "a synchronisation that failed is repeated";
}

TEST_F(ToolbarInstallation, TakesAnyBarWithTheMarkerInAnyCase) {
    const auto foreign = AddForeignBar();
    bars_->AddControl(foreign, 1, 1, 0, false);
    bars_->AddControl(foreign, 1, 1, 0, false)->tag = L"some CORVANTIS-Beacon thing";
    Install();
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(foreign->controls[1]->tag, L"corvantis-beacon 4711;2");
    EXPECT_EQ(bars_->Find(L"Mine"), foreign) << "a bar that was found is not deleted for missing controls";
    bars_->Delete(foreign);
    EXPECT_FALSE(toolbar_->CommandBarExists());
}

TEST_F(ToolbarInstallation, LeavesControlsOfOtherTypesAlone) {
    const auto foreign = AddForeignBar();
    bars_->AddControl(foreign, standin::kPopupControl, 1, 0, false)->tag = L"corvantis-beacon";
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"Exception in SyncToolbar: Type mismatch 13");
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon");
}

TEST_F(ToolbarInstallation, LeavesNoPartialBarWhenACallFails) {
    config_.bitmaps = L"C:\\nowhere";
    const size_t before = bars_->Bars().size();
    for (const wchar_t* call : {L"ButtonCount", L"ButtonCaption", L"ButtonTooltip", L"ButtonEnabled",
                                L"ButtonMaskColor", L"DefaultContextText", L"ContextMode", L"CommandBars.Invoke Add",
                                L"Invoke Position", L"Invoke TooltipText"}) {
        SCOPED_TRACE(com::ToAnsi(call));
        InstallWithFailure(call);
        EXPECT_EQ(bars_->Bars().size(), before);
        EXPECT_EQ(LastLine(), L"InstallBeacnToolbar: unable to locate Toolbar");
        EXPECT_TRUE(toolbar_->CommandBarExists()) << "the user has deleted nothing";
        Install();
        ASSERT_NE(BeaconBar(), nullptr);
        EXPECT_EQ(Tags(), TagsFor(kWindow));
        DeleteBarAndOpenWindow();
    }
    InstallWithFailure(L"ButtonBitmapPath");
    EXPECT_NE(BeaconBar(), nullptr) << "a missing face is no failure";
}

TEST_F(ToolbarInstallation, GivesUpAfterThreeFailedBuilds) {
    for (const wchar_t* call : {L"ButtonTooltip", L"CommandBars.Invoke Add"}) {
        SCOPED_TRACE(com::ToAnsi(call));
        OpenWindow();
        host_.timerStops = 0;
        for (int build = 1; build <= 3; ++build) {
            EXPECT_EQ(host_.timerStops, 0) << build;
            InstallWithFailure(call);
        }
        EXPECT_EQ(host_.timerStops, 1);
        Install();
        EXPECT_EQ(BeaconBar(), nullptr);
        EXPECT_TRUE(toolbar_->CommandBarExists());
    }
}

TEST_F(ToolbarInstallation, DeletesAPartialBarLaterIfItCannotBeDeletedAtOnce) {
    failures_[L"Invoke Delete"] = E_FAIL;
    InstallWithFailure(L"ButtonTooltip");
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_FALSE(toolbar_->Initialized());
    Install();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_EQ(Tags(), TagsFor(kWindow));
}

TEST_F(ToolbarInstallation, IgnoresATickInsideItself) {
    onCall_ = [&](const std::wstring& call) {
        if (call == L"ToolbarConfig.ButtonEnabled") Install();
    };
    Install();
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_EQ(host_.timerStops, 1);
    EXPECT_EQ(bars_->Find(L"Beacon Toolbar"), bars_->Bars().back());
}

TEST_F(ToolbarInstallation, UsesItsOwnDefinitionIfNoServerIsInstalled) {
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    for (const HRESULT result :
         {HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND), REGDB_E_CLASSNOTREG}) {
        SCOPED_TRACE(result);
        config_.creationResult = result;
        if (result == REGDB_E_CLASSNOTREG) Uninstall();
        Install();
        const auto bar = bars_->Find(L"Lamp");
        ASSERT_NE(bar, nullptr);
        ASSERT_EQ(bar->controls.size(), 7u);
        for (size_t i = 0; i < 7; ++i) EXPECT_EQ(bar->controls[i]->face.Empty(), i == 2) << i;
        EXPECT_EQ(bar->controls[6]->caption, L"Refresh");
        bars_->Delete(bar);
        OpenWindow();
    }
}

TEST_F(ToolbarInstallation, RetriesAServerThatCannotBeCreatedOnlyWhenTheUserActs) {
    config_.creationResult = CO_E_SERVER_EXEC_FAILURE;
    for (int tick = 0; tick < 3; ++tick) Install();
    EXPECT_EQ(config_.creations, 1);
    EXPECT_EQ(BeaconBar(), nullptr);
    config_.creationResult = S_OK;
    toolbar_->SyncToolbar(kWindow);
    Install();
    EXPECT_EQ(config_.creations, 2);
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_EQ(Control(1).caption, config_.buttons[0].caption);
}

TEST_F(ToolbarInstallation, WaitsForABusyClipboardAndThenBuildsWithoutFaces) {
    const ClipboardOwner other;
    const auto installWhileBusy = [&](int ticks) {
        ASSERT_TRUE(OpenClipboard(other.Window()));
        for (int tick = 0; tick < ticks; ++tick) Install();
        CloseClipboard();
    };
    installWhileBusy(2);
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: the clipboard is unavailable, waiting for the next try"));
    Install();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_FALSE(Control(1).face.Empty());

    DeleteBarAndOpenWindow();
    installWhileBusy(11);
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(Control(1).face.Empty());
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: the clipboard is not to be had, leaving out the button faces"));
    EXPECT_THAT(log_.Lines(), Not(Contains(HasSubstr(L"sBitmapPathEx"))));
}

TEST_F(ToolbarInstallation, NoticesThatTheUserHasDeletedTheBar) {
    Install();
    EXPECT_TRUE(toolbar_->CommandBarExists());
    bars_->Delete(BeaconBar());
    EXPECT_FALSE(toolbar_->CommandBarExists());
    toolbar_->SyncToolbar(kWindow);  // must not crash
    EXPECT_TRUE(LastLine().starts_with(L"Exception in SyncToolbar: "));
    Install();
    EXPECT_EQ(BeaconBar(), nullptr) << "it is not built again";
}

TEST_F(ToolbarInstallation, TakesOnlyADeletionByTheUserForTheUsersWish) {
    Install();
    bars_->Close();
    log_.Clear();
    EXPECT_TRUE(toolbar_->CommandBarExists()) << "the window is closed";
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
    EXPECT_TRUE(toolbar_->CommandBarExists()) << "this toolbar has removed it";
    EXPECT_TRUE(log_.Has(L"InstallBeaconToolbar: Removing old toolbar"));
    toolbar_ = NewToolbar(host_);
    toolbar_->RemoveBeaconToolbar();
    EXPECT_EQ(LastLine(), L"Exception in RemoveBeaconToolbar() Object variable or With block variable not set 91");
}

TEST_F(ToolbarInstallation, DoesNotConfuseAFailedBuildWithTheUsersWish) {
    Install();
    bars_->Delete(BeaconBar());
    const auto builder = NewToolbar(host_);
    failures_[L"ButtonTooltip"] = E_FAIL;
    builder->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_FALSE(toolbar_->CommandBarExists()) << "the user has deleted the bar before";

    const auto finder = NewToolbar(host_);
    onCall_ = [&](const std::wstring& call) {
        if (call == L"ToolbarConfig.ContextMode") EXPECT_TRUE(finder->GetCommandBar());
    };
    failures_[L"ContextMode"] = E_FAIL;
    builder->InstallBeaconToolbar(VARIANT_FALSE);
    onCall_ = nullptr;
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(finder->CommandBarExists()) << "the bar that it has found was deleted by its builder";
}

TEST_F(ToolbarInstallation, SavesTheLayout) {
    Install();
    standin::Bar& bar = *BeaconBar();
    std::tie(bar.height, bar.width, bar.left, bar.top, bar.rowIndex, bar.position) = std::tuple(26, 560, 12, 34, 3, 4);
    toolbar_->g_tmrLayoutSaver_Timer();
    EXPECT_EQ(config_.calls.back(), L"SaveLayout Outlook 26 560 12 34 3 Floating");
}

TEST_F(ToolbarInstallation, LeavesTheBarButClearsTheBoxAtTheEnd) {
    NewToolbar(host_).Reset();
    EXPECT_EQ(config_.creations, 0) << "a server must not be started only to end";
    Install();
    Choose(L"Sales");
    config_.contextMode = 0;
    OpenWindow();
    EXPECT_EQ(Control(3).items.size(), 2u) << "a hidden box is left alone";
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
