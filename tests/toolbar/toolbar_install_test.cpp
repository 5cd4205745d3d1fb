#include <set>

#include "toolbar/beacon_bar.h"
#include "toolbar/clipboard.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

using testing::EndsWith;

constexpr int kButtonPlaces[] = {1, 2, 4, 5, 6, 7};
constexpr wchar_t kNotFound[] = L"InstallBeacnToolbar: unable to locate Toolbar";

class ToolbarInstallation : public ToolbarFixture {
protected:
    static bool IsTransparent(std::uint32_t pixel) { return pixel >> 24 == 0; }

    std::wstring LastLine() const { return log_.Lines().back(); }

    /// A bar of another program with one control.
    std::shared_ptr<standin::Bar> AddForeignBar(const wchar_t* tag, long type = 1) {
        const auto bar = bars_->Add(L"Mine", 1, false);
        bars_->AddControl(bar, type, 1, 0, false)->tag = tag;
        return bar;
    }
};

TEST_F(ToolbarInstallation, BuildsTheBarFromScratch) {
    config_.bitmaps = TOOLBAR_BITMAPS;
    config_.buttons[2].maskColor = RGB(0x28, 0x2C, 0x34);  // the outline of its picture
    config_.buttons[3].maskColor = RGB(0x12, 0x34, 0x56);  // not in its picture
    config_.buttons[4].enabled = false;
    if (const ClipboardSession clipboard(nullptr); clipboard.IsOpen()) EmptyClipboard();
    for (int tick = 0; tick < 2; ++tick) Install();
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(host_.timerStops, 1) << "an installed bar is installed again";
    EXPECT_EQ(CountClipboardFormats(), 0) << "a face is left on the clipboard";
    const standin::Bar& bar = Bar();
    EXPECT_EQ((Numbers{bar.position, bar.protection, bar.visible, bar.enabled, bar.temporary}),
              (Numbers{1, 1, true, true, false}));
    std::set<std::vector<std::uint32_t>> faces;
    for (size_t i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const standin::BarControl& button = Control(kButtonPlaces[i]);
        const std::wstring& caption = config_.buttons[i].caption;
        EXPECT_EQ((Texts{button.caption, button.tooltip, button.description, button.shortcut}),
                  (Texts{caption, config_.buttons[i].tooltip, caption, caption}));
        const bool startsGroup = i == 1 || i == 4;
        EXPECT_EQ((Numbers{button.type, button.style, button.enabled, button.visible, button.beginGroup}),
                  (Numbers{1, 3, !startsGroup, !startsGroup, startsGroup}));
        EXPECT_EQ(IsTransparent(button.face.pixels.front()), i != 2 && i != 3) << "the background";
        EXPECT_EQ(std::ranges::any_of(button.face.pixels, IsTransparent), i != 3);
        faces.insert(button.face.pixels);
    }
    EXPECT_EQ(faces.size(), 6u);
    const standin::BarControl& box = Control(3);
    EXPECT_EQ((Numbers{box.type, box.style, box.width, box.visible}), (Numbers{4, 0, 150, true}));
    EXPECT_EQ((Texts{box.caption, box.text}), (Texts{L"Context", L"No context"}));
    EXPECT_EQ(box.items, Texts{L"No context"});
}

TEST_F(ToolbarInstallation, NumbersTheTagsOfButtonsFromZeroUntilTheyAreSynchronised) {
    config_.contextMode = 0;  // synchronising leaves a hidden box alone
    onCall_ = [&](const std::wstring& call) {
        if (call.ends_with(L"Invoke Protection"))
            EXPECT_THAT(Tags(), ElementsAre(EndsWith(L";0"), EndsWith(L";1"), EndsWith(L" 4711"), EndsWith(L";2"),
                                            EndsWith(L";3"), EndsWith(L";4"), EndsWith(L";5")));
    };
    Install();
    Texts synchronised = TagsFor(kWindow);
    synchronised[2] = L"corvantis-beacon 4711";
    EXPECT_EQ(Tags(), synchronised);
    EXPECT_EQ((Numbers{Control(3).visible, Control(3).enabled}), (Numbers{false, true}));
    EXPECT_THAT(Control(3).items, IsEmpty());
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the bar is synchronised, although the box is hidden";
}

TEST_F(ToolbarInstallation, IgnoresTheServersCountAndShortensItsTexts) {
    config_.buttons[0].caption = std::wstring(5'000'000, L'x');
    config_.buttonCount = 1'000'000;
    Install();
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_EQ(Control(1).caption, std::wstring(1024, L'x'));
}

TEST_F(ToolbarInstallation, WaitsForAWindow) {
    outlook_->activeInspector = std::exchange(outlook_->activeExplorer, nullptr);
    Install();
    EXPECT_THAT(log_.Lines(), Contains(L"Application.ActiveExplorer Is Nothing"));
    EXPECT_EQ(LastLine(), kNotFound);
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"SyncToolbar unable to locate Toolbar");
    EXPECT_FALSE(toolbar_->Initialized());
    host_.isInspector = true;
    Install();
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(Tags(), TagsFor(kWindow));
}

TEST_F(ToolbarInstallation, RebindsABarOfAnEarlierSessionWithTheSameHandle) {
    Install();
    const size_t count = bars_->Bars().size();
    OpenWindow();
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    ASSERT_THAT(Control(3).items, IsEmpty()) << "the earlier toolbar has cleared it";
    Install();
    EXPECT_EQ(bars_->Bars().size(), count);
    EXPECT_EQ(Control(3).items, Texts{L"No context"});
    Click(7);
    Choose(L"Sales");
    EXPECT_EQ(host_.contexts, (Texts{L"", L"Sales"}));
}

TEST_F(ToolbarInstallation, FollowsTheActiveOneOfTwoWindowsThatShareTheBar) {
    Install();
    Choose(L"Sales");
    FakeHost other(-5);
    other.outlook = host_.outlook;
    NewToolbar(other)->InstallBeaconToolbar(VARIANT_FALSE);
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
    const auto foreign = AddForeignBar(L"");
    bars_->AddControl(foreign, 1, 1, 0, false)->tag = L"some CORVANTIS-Beacon thing";
    Install();
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(foreign->controls[1]->tag, L"corvantis-beacon 4711;2");
    EXPECT_EQ(bars_->Bars().back(), foreign) << "no other bar is built, and this one is not deleted for what it lacks";
}

TEST_F(ToolbarInstallation, LeavesControlsOfOtherTypesAlone) {
    const auto foreign = AddForeignBar(L"corvantis-beacon", standin::kPopupControl);
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(LastLine(), L"Exception in SyncToolbar: Type mismatch 13");
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon");
}

TEST_F(ToolbarInstallation, LeavesNoPartialBarWhenACallFails) {
    const size_t before = bars_->Bars().size();
    for (const wchar_t* call : {L"ButtonCount", L"ButtonTooltip", L"ButtonMaskColor", L"DefaultContextText",
                                L"ContextMode", L"CommandBars.Invoke Add", L"Invoke Position", L"Invoke TooltipText"}) {
        SCOPED_TRACE(com::ToAnsi(call));
        InstallWithFailure(call);
        EXPECT_EQ(bars_->Bars().size(), before);
        EXPECT_EQ(LastLine(), kNotFound);
        EXPECT_TRUE(toolbar_->CommandBarExists()) << "the user has deleted nothing";
        Install();
        EXPECT_EQ(Tags(), TagsFor(kWindow));
        DeleteBar();
        OpenWindow();
    }
    InstallWithFailure(L"ButtonBitmapPath");
    EXPECT_NE(BeaconBar(), nullptr) << "a missing face is no failure";
}

TEST_F(ToolbarInstallation, GivesUpAfterThreeFailedBuilds) {
    for (const wchar_t* call : {L"ButtonTooltip", L"CommandBars.Invoke Add", L"ButtonTooltip"}) {
        EXPECT_EQ(host_.timerStops, 0);
        InstallWithFailure(call);
    }
    EXPECT_EQ(host_.timerStops, 1);
    Install();
    EXPECT_EQ(BeaconBar(), nullptr);
}

TEST_F(ToolbarInstallation, DeletesAPartialBarLaterIfItCannotBeDeletedAtOnce) {
    failures_[L"Delete"] = failures_[L"Invoke Delete"] = E_FAIL;
    InstallWithFailure(L"ButtonTooltip");
    EXPECT_TRUE(toolbar_->CommandBarExists());
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_FALSE(toolbar_->Initialized());
    Install();
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
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_EQ(Control(1).caption, L"Beacon") << "the server's";
}

TEST_F(ToolbarInstallation, WaitsForABusyClipboardAndThenBuildsWithoutFaces) {
    config_.bitmaps = TOOLBAR_BITMAPS;
    const ClipboardOwner other = MakeClipboardOwner();
    const auto installWhileBusy = [&](int ticks) {
        const ClipboardSession busy(other.get());
        for (int tick = 0; tick < ticks; ++tick) Install();
    };
    installWhileBusy(10);
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_EQ(LastLine(), kNotFound);
    Install();
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_FALSE(Control(1).face.Empty());

    DeleteBar();
    OpenWindow();
    log_.Clear();
    installWhileBusy(11);
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_TRUE(Control(1).face.Empty());
    EXPECT_THAT(log_.Lines(), Not(Contains(HasSubstr(L"sBitmapPathEx"))));
}

TEST_F(ToolbarInstallation, TakesOnlyADeletionByTheUserForTheUsersWish) {
    const auto removeAgain = [&] {
        OpenWindow();
        toolbar_->InstallBeaconToolbar(VARIANT_TRUE);
        EXPECT_EQ(BeaconBar(), nullptr);
    };

    const struct {
        const char* what;
        std::function<void()> end;
        bool exists;
    } cases[] = {
        {"nothing ends", [] {}, true},
        {"the user deletes the bar", [&] { DeleteBar(); }, false},
        {"the window closes", [&] { bars_->Close(); }, true},
        {"another window's toolbar deletes the bar", [&] { DeleteBeaconBar(toolbar_->GetCommandBar()); }, true},
        {"the next session removes the bar", removeAgain, true},
    };

    for (const auto& [what, end, exists] : cases) {
        SCOPED_TRACE(what);
        OpenWindow();
        Install();
        end();
        EXPECT_EQ(toolbar_->CommandBarExists(), exists);
        toolbar_->SyncToolbar(5);  // must not crash
    }
    toolbar_ = NewToolbar(host_);
    toolbar_->RemoveBeaconToolbar();
    EXPECT_EQ(LastLine(), L"Exception in RemoveBeaconToolbar() Object variable or With block variable not set 91");
}

TEST_F(ToolbarInstallation, DoesNotConfuseAFailedBuildWithTheUsersWish) {
    Install();
    DeleteBar();
    const auto user = std::exchange(toolbar_, NewToolbar(host_));
    InstallWithFailure(L"ButtonTooltip");
    EXPECT_FALSE(user->CommandBarExists()) << "the user has deleted the bar before";

    const auto finder = NewToolbar(host_);
    onCall_ = [&](const std::wstring& call) {
        if (call == L"ToolbarConfig.ContextMode") EXPECT_TRUE(finder->GetCommandBar());
    };
    InstallWithFailure(L"ContextMode");
    onCall_ = nullptr;
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(finder->CommandBarExists()) << "the bar that it has found was deleted by its builder";
}

TEST_F(ToolbarInstallation, SavesTheLayout) {
    Install();
    standin::Bar& bar = Bar();
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
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    EXPECT_THAT(Control(3).items, IsEmpty());
    Click(1);
    EXPECT_EQ(host_.updates, 0);
}

}  // namespace
}  // namespace beacon::test
