// Building the bar from nothing.
#include "support/error_styles.h"
#include "support/log.h"
#include "support/numbers.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/button_faces.h"
#include "toolbar/clipboard.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

// Office's own numbers.
constexpr long kControlButton = 1;
constexpr long kControlComboBox = 4;
constexpr long kBarTop = 1;
constexpr long kBarNoCustomize = 1;
constexpr long kButtonIconAndCaption = 3;
constexpr long kComboNormal = 0;
constexpr long kComboWidth = 150;

constexpr long kButtons = 6;
// The button that is always hidden; the context box follows it.
constexpr long kHiddenButton = 1;
constexpr long kGroupStartButton = 4;

com::Object AddControl(const com::Object& controls, long type) {
    return controls.CallObject(L"Add", {type, com::Missing(), com::Missing(), com::Missing(), com::Missing()});
}

}  // namespace

std::wstring CToolbar::DefaultToolbarName() {
    std::wstring name;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineToolbarKey, setting::kDisplayName, name))
        name = setting::kDefaultDisplayName;
    return name;
}

bool CToolbar::AddBeaconToolbar() {
    com::Object fresh;
    bool isBegun = false;
    bool added = false;
    LogOnError(L"Exception in AddBeaconToolbar: ", [&] {
        LogMsg2(L"AddBeaconToolbar Called");
        toolbarConfig_.Get();
        NeedWindow(Connect());
        LogMsg2(L"AddBeaconToolbar() Calling GetCommandBar()");
        if (GetCommandBar()) {
            LogMsg2(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch");
            return;
        }
        if (!oCommandBars_ || partialBar_ || failedBuilds_ >= kMostFailedBuilds) return;
        const std::wstring name = DefaultToolbarName();
        LogMsg2(L"AddBeaconToolbar: No toolbar found, installing from scratch");
        ClipboardBackup backup;
        if (!backup.IsTaken() && clipboardWaits_ < kMostClipboardWaits) {
            ++clipboardWaits_;
            LogMsg2(L"AddBeaconToolbar: the clipboard is unavailable, waiting for the next try");
            return;
        }
        LogMsg2(L"AddBeaconToolbar: oCommandBars.Add(Name:=", name, L")");
        isBegun = true;
        foundBefore_ = BeaconBarsFound();
        fresh = oCommandBars_.CallObject(L"Add", {com::FromText(name), com::Missing(), com::Missing(), false});
        oBeaconCmdBar_ = fresh;
        fresh.Put(L"Position", kBarTop);
        LogMsg2(L"Saving content of Clipboard");
        drawsFaces_ = backup.IsTaken();
        if (!drawsFaces_) LogMsg2(L"AddBeaconToolbar: the clipboard is not to be had, leaving out the button faces");
        const bool isComplete = AddButtons();
        drawsFaces_ = true;
        LogMsg2(L"Restoring content of Clipboard");
        if (!backup.Restore()) LogMsg2(L"AddBeaconToolbar: the clipboard is unavailable, its picture is lost");
        if (!isComplete) return;
        fresh.Put(L"Protection", kBarNoCustomize);
        fresh.Put(L"Visible", true);
        fresh.Put(L"Enabled", true);
        added = true;
        deletedBefore_ = BeaconBarsDeleted();
    });
    if (isBegun && !added) DiscardBar(fresh);
    return added;
}

/// Outlook persists the bar: a partial bar would be found again by its tags and never repaired.
void CToolbar::DiscardBar(const com::Object& bar) noexcept {
    ++failedBuilds_;
    comboBox_.Reset();
    oBeaconCmdBar_.Reset();
    partialBar_ = bar;
    GoOnAfterError([&] { DeletePartialBar(); });
}

void CToolbar::DeletePartialBar() {
    if (!partialBar_) return;
    // Another window's toolbar that found the bar must not take its end for the user's wish. A bar that nobody found
    // does not count, so that other windows still notice what the user deletes.
    if (BeaconBarsFound() != foundBefore_)
        DeleteBeaconBar(partialBar_);
    else
        partialBar_.Call(L"Delete");
    partialBar_.Reset();
}

STDMETHODIMP CToolbar::AddToolbarButtons() {
    const KeepAlive alive = Hold();
    AddButtons();
    return S_OK;
}

/// Stops at the first control that cannot be added: without it, all later controls would be in wrong places. Always
/// adds six buttons, because the commands expect six: the definition's count is read and ignored.
bool CToolbar::AddButtons() {
    bool isComplete = false;
    LogOnError(L"Exception in AddToolbarButtons: ", [&] {
        toolbarConfig_->ButtonCount();
        for (long i = 0; i < kButtons; ++i) {
            const std::wstring caption = toolbarConfig_->ButtonCaption(i);
            const std::wstring tooltip = toolbarConfig_->ButtonTooltip(i);
            const bool flag = toolbarConfig_->ButtonEnabled(i);
            const com::Object button = AddButtonToToolbar(oBeaconCmdBar_, caption, tooltip, flag, i);
            if (!button) return;
            if (i == kHiddenButton) {
                button.Put(L"Enabled", false);
                button.Put(L"Visible", false);
                button.Put(L"BeginGroup", true);
                const com::Object box = AddComboBoxToToolbar();
                if (!box) return;
                if (!ContextBoxIsShown()) box.Put(L"Visible", false);
            }
            if (i == kGroupStartButton) button.Put(L"BeginGroup", true);
        }
        isComplete = true;
    });
    return isComplete;
}

com::Object CToolbar::AddButtonToToolbar(const com::Object& bar, const std::wstring& caption,
                                         const std::wstring& tooltip, bool flag, long index) {
    com::Object result;
    LogOnError(L"Exception in AddButtonToToolbar: ", [&] {
        const std::wstring window = DecimalText(Connect().GetHwnd());
        const com::Object button = AddControl(bar.GetObject(L"Controls"), kControlButton);
        button.Put(L"Caption", com::FromText(caption));
        button.Put(L"Style", kButtonIconAndCaption);
        button.Put(L"TooltipText", com::FromText(tooltip));
        button.Put(L"DescriptionText", com::FromText(caption));
        button.Put(L"ShortcutText", com::FromText(caption));
        // The button's number from 0; synchronising the bar replaces it by the place, counted from 1.
        button.Put(L"Tag", com::FromText(ToolbarTagPrefix + window + L";" + DecimalText(index)));
        button.Put(L"Enabled", flag);
        button.Put(L"Visible", flag);
        AddImageToButton(button, index, toolbarConfig_->ButtonMaskColor(index));
        result = button;
    });
    return result;
}

com::Object CToolbar::AddComboBoxToToolbar() {
    com::Object result;
    LogOnError(L"Exception in AddComboBoxToToolbar: ", [&] {
        if (!oBeaconCmdBar_) {
            LogMsg2(L"AddComboBoxToToolbar() - Invalid oBeaconCmdBar");
            return;
        }
        const com::Object controls = oBeaconCmdBar_.GetObject(L"Controls");
        if (!controls) {
            LogMsg2(L"AddComboBoxToToolbar() - Invalid oBeaconCmdBar.Controls");
            return;
        }
        if (gConnect_ == nullptr) {
            LogMsg2(L"AddComboBoxToToolbar() - Invalid gConnect");
            return;
        }
        const std::wstring tag = ToolbarTagPrefix + DecimalText(Connect().GetHwnd());
        comboBox_ = AddControl(controls, kControlComboBox);
        comboBox_.Put(L"Width", kComboWidth);
        comboBox_.Put(L"Style", kComboNormal);
        comboBox_.Put(L"Tag", com::FromText(tag));
        comboBox_.Put(L"Caption", L"Context");
        comboBox_.Put(L"Text", com::FromText(toolbarConfig_->DefaultContextText()));
        result = comboBox_;
    });
    return result;
}

void CToolbar::AddImageToButton(const com::Object& button, long index, OLE_COLOR maskColor) {
    if (!drawsFaces_) return;
    LogOnError(L"Exception in AddImageToButton: ", [&] {
        const std::wstring path = toolbarConfig_->ButtonBitmapPath(index);
        LogMsg2(L"sBitmapPathEx(", index, L") =", path);
        const com::ComPtr<IPicture> picture = LoadPicture(path);
        if (picture == nullptr) LogMsg(L"LoadPicture(", path, L") failed");
        beacon::CopyBitmapAsButtonFace(picture.Get(), maskColor);
        button.Call(L"PasteFace");
    });
}

}  // namespace beacon
