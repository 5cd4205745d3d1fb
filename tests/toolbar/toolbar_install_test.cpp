#include <algorithm>

#include "com/text.h"
#include "outlook/bars/bar_set.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/picture.h"
#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

using testing::Test;

std::vector<std::wstring> TagsFor(long window) {
    std::vector<std::wstring> tags;
    for (int position = 1; position <= 7; ++position)
        tags.push_back(L"corvantis-beacon " + std::to_wstring(window) + L";" + std::to_wstring(position));
    return tags;
}

class InstallingTheToolbar : public ToolbarFixture {};

TEST_F(InstallingTheToolbar, BuildsTheBarFromScratch) {
    config_.enabled[4] = false;
    EXPECT_FALSE(toolbar_->Initialized());
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(host_.timerStops, 1);
    const standin::Bar& bar = *BeaconBar();
    EXPECT_EQ(bar.position, 1);
    EXPECT_EQ(bar.protection, 1);
    EXPECT_TRUE(bar.visible);
    EXPECT_TRUE(bar.enabled);
    EXPECT_FALSE(bar.temporary);
    ASSERT_EQ(bar.controls.size(), 7u);
    EXPECT_EQ(Tags(), TagsFor(kWindow));
    const int places[] = {1, 2, 4, 5, 6, 7};
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const standin::BarControl& button = Control(places[i]);
        const std::wstring& caption = config_.captions[i];
        EXPECT_EQ(button.type, 1);
        EXPECT_EQ(button.style, 3);
        EXPECT_EQ(button.caption, caption);
        EXPECT_EQ(button.tooltip, L"tip " + caption);
        EXPECT_EQ(button.description, caption);
        EXPECT_EQ(button.shortcut, caption);
        const bool shown = i != 1 && i != 4;
        EXPECT_EQ(button.enabled, shown);
        EXPECT_EQ(button.visible, shown);
        EXPECT_EQ(button.beginGroup, i == 1 || i == 4);
    }
    const standin::BarControl& box = Control(3);
    EXPECT_EQ(box.type, 4);
    EXPECT_EQ(box.width, 150);
    EXPECT_EQ(box.caption, L"Context");
    EXPECT_EQ(box.text, L"No context");
    EXPECT_TRUE(box.visible);
    EXPECT_EQ(box.items, std::vector<std::wstring>{L"No context"});
}

TEST_F(InstallingTheToolbar, GivesEachButtonItsFace) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    const int places[] = {1, 2, 4, 5, 6, 7};
    const HDC dc = CreateCompatibleDC(nullptr);
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const standin::ButtonFace& face = Control(places[i]).face;
        ASSERT_EQ(face.width, 16);
        ASSERT_EQ(face.height, 16);
        const auto picture = LoadPicture(config_.bitmapFolder + L"\\button" + std::to_wstring(i) + L".bmp");
        ASSERT_NE(picture, nullptr);
        OLE_HANDLE handle = 0;
        picture->get_Handle(&handle);
        const HGDIOBJ earlier = SelectObject(dc, LongToHandle(static_cast<LONG>(handle)));
        int transparent = 0;
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x) {
                const COLORREF colour = GetPixel(dc, x, y);
                const std::uint32_t opaque =
                    0xFF000000u |
                    static_cast<std::uint32_t>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
                const bool seeThrough = colour == RGB(0xFF, 0, 0xFF);
                transparent += seeThrough ? 1 : 0;
                ASSERT_EQ(face.At(x, y) >> 24, seeThrough ? 0u : 0xFFu) << x << ", " << y;
                if (seeThrough) continue;
                ASSERT_EQ(face.At(x, y), opaque) << x << ", " << y;
            }
        }
        EXPECT_GT(transparent, 20);
        SelectObject(dc, earlier);
    }
    DeleteDC(dc);
}

TEST_F(InstallingTheToolbar, LogsEachStep) {
    config_.buttonCount = 0;
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    const std::vector<std::wstring> expected = {
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
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(log_.Lines(), std::vector<std::wstring>{L"InstallBeaconToolbar: "});
}

TEST_F(InstallingTheToolbar, ButtonsAreNumberedFromZeroUntilTheyAreSynchronised) {
    config_.buttonCount = 8;  // two more than SyncToolbar knows
    config_.contextMode = 0;  // and a box that it leaves alone
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(Control(8).tag, L"corvantis-beacon 4711;6");
    EXPECT_EQ(Control(9).tag, L"corvantis-beacon 4711;7");
    EXPECT_EQ(Control(3).tag, L"corvantis-beacon 4711");
    EXPECT_FALSE(Control(3).visible);
    EXPECT_TRUE(Control(3).enabled);
    EXPECT_TRUE(Control(3).items.empty());
}

TEST_F(InstallingTheToolbar, WaitsForAWindow) {
    outlook_->explorer = nullptr;
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_FALSE(toolbar_->Initialized());
    EXPECT_TRUE(log_.Has(L"Application.ActiveExplorer Is Nothing"));
    EXPECT_EQ(log_.Lines().back(), L"InstallBeacnToolbar: unable to locate Toolbar");
    EXPECT_EQ(host_.timerStops, 0);
    host_.isInspector = true;
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_TRUE(log_.Has(L"Application.ActiveInspector Is Nothing"));
    outlook_->inspector = bars_;
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_TRUE(toolbar_->Initialized());
}

TEST_F(InstallingTheToolbar, UsesTheBarOfAnEarlierRun) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    const size_t count = bars_->Bars().size();
    toolbar_ = NewToolbar(host_);
    log_.Clear();
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(bars_->Bars().size(), count);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_TRUE(log_.Has(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch"));
    host_.updates = 0;
    Click(1);
    EXPECT_EQ(host_.updates, 1) << "tagged for this window already, but the new toolbar must hear the buttons";
    Choose(L"Sales");
    EXPECT_EQ(host_.contexts.back(), L"Sales");
}

TEST_F(InstallingTheToolbar, TakesAnyBarWithTheMarkerInAnyCapitals) {
    const auto foreign = bars_->Add(L"Mine", 1, false);
    bars_->AddControl(foreign, 1, 1, 0, false);
    bars_->AddControl(foreign, 1, 1, 0, false)->tag = L"some CORVANTIS-Beacon thing";
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->Initialized());
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon 4711;1");
    EXPECT_EQ(foreign->controls[1]->tag, L"corvantis-beacon 4711;2");
}

TEST_F(InstallingTheToolbar, ABarOfOtherControlsIsNotHarmed) {
    const auto foreign = bars_->Add(L"Mine", 1, false);
    bars_->AddControl(foreign, standin::kPopupControl, 1, 0, false)->tag = L"corvantis-beacon";
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(log_.Lines().back(), L"Exception in SyncToolbar: Type mismatch 13");
    EXPECT_EQ(foreign->controls[0]->tag, L"corvantis-beacon");
}

TEST_F(InstallingTheToolbar, FollowsItsWindows) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    barChanges_ = 0;
    toolbar_->SyncToolbar(kWindow);
    EXPECT_EQ(barChanges_, 0) << "the same window again";
    EXPECT_EQ(CToolbar::LastSynchronisedWindow(), kWindow);
    toolbar_->SyncToolbar(-5);
    EXPECT_EQ(Tags(), TagsFor(-5));
    EXPECT_EQ(CToolbar::LastSynchronisedWindow(), -5);
}

TEST_F(InstallingTheToolbar, IsBuiltEvenWithoutBitmaps) {
    config_.bitmapFolder = L"C:\\nowhere";
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    ASSERT_EQ(BeaconBar()->controls.size(), 7u);
    EXPECT_TRUE(Control(7).face.Empty());
    EXPECT_TRUE(log_.Has(L"LoadPicture(C:\\nowhere\\button5.bmp) failed", 1));
    EXPECT_TRUE(log_.Has(L"sBitmapPathEx(5) =C:\\nowhere\\button5.bmp"));
    EXPECT_TRUE(log_.Has(L"CopyBitmapAsButtonFace() failed:  0"));
    EXPECT_TRUE(log_.Has(L"Exception in AddImageToButton: Invalid picture 481"));
}

TEST_F(InstallingTheToolbar, UsesItsOwnDefinitionWhenTheServerCannotBeCreated) {
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    config_.refuse = true;
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    const auto bar = bars_->Find(L"Lamp");
    ASSERT_NE(bar, nullptr);
    ASSERT_EQ(bar->controls.size(), 7u);
    for (size_t i = 0; i < 7; ++i) EXPECT_EQ(bar->controls[i]->face.Empty(), i == 2) << i;
}

TEST_F(InstallingTheToolbar, KnowsWhetherTheUserHasDeletedTheBar) {
    EXPECT_TRUE(toolbar_->CommandBarExists()) << "not installed yet";
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_TRUE(toolbar_->CommandBarExists());
    bars_->Delete(BeaconBar());
    EXPECT_FALSE(toolbar_->CommandBarExists());
    EXPECT_TRUE(toolbar_->GetCommandBar()) << "the reference is kept";
    toolbar_->SyncToolbar(kWindow);  // must survive it
    EXPECT_EQ(log_.Lines().back().substr(0, 26), L"Exception in SyncToolbar: ");
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    EXPECT_EQ(BeaconBar(), nullptr) << "the bar stays away";
}

TEST_F(InstallingTheToolbar, DoesNotTakeAClosedWindowOrItsOwnRemovalForTheUsersWish) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    bars_->Close();
    EXPECT_TRUE(toolbar_->CommandBarExists());

    bars_ = std::make_shared<standin::BarSet>(standin::WindowKind::Explorer, store_);
    outlook_->explorer = bars_;
    toolbar_ = NewToolbar(host_);
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    toolbar_->RemoveBeaconToolbar();
    EXPECT_EQ(BeaconBar(), nullptr);
    EXPECT_TRUE(toolbar_->CommandBarExists());
}

TEST_F(InstallingTheToolbar, RemovingWithoutABarIsLogged) {
    toolbar_->RemoveBeaconToolbar();
    EXPECT_EQ(log_.Lines().back(),
              L"Exception in RemoveBeaconToolbar() Object variable or With block variable not set 91");
}

TEST_F(InstallingTheToolbar, SavesTheLayout) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    BeaconBar()->left = 12;
    BeaconBar()->top = 34;
    BeaconBar()->width = 560;
    BeaconBar()->height = 26;
    BeaconBar()->position = 4;
    BeaconBar()->rowIndex = 3;
    toolbar_->g_tmrLayoutSaver_Timer();
    EXPECT_EQ(config_.calls.back(), L"SaveLayout Outlook 26 560 12 34 3 Floating");
}

TEST_F(InstallingTheToolbar, LeavesTheBarButEmptiesTheBoxAtTheEnd) {
    toolbar_->InstallBeaconToolbar(VARIANT_FALSE);
    Choose(L"Sales");
    ASSERT_EQ(Control(3).items.size(), 2u);
    toolbar_.Reset();
    ASSERT_NE(BeaconBar(), nullptr);
    EXPECT_TRUE(Control(3).items.empty());
    host_.updates = 0;
    Click(1);
    EXPECT_EQ(host_.updates, 0);
}

}  // namespace
}  // namespace beacon::test
