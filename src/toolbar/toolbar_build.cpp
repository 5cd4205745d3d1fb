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

// The button that is never shown; the context box follows it.
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
    bool added = false;
    LogOnError(L"Exception in AddBeaconToolbar: ", [&] {
        LogMsg2(L"AddBeaconToolbar Called");
        toolbarConfig_.Create();
        NeedWindow(Connect());
        LogMsg2(L"AddBeaconToolbar() Calling GetCommandBar()");
        if (GetCommandBar()) {
            LogMsg2(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch");
            return;
        }
        if (!oCommandBars_ || failedBuilds_ >= kMostFailedBuilds) return;
        const std::wstring name = DefaultToolbarName();
        LogMsg2(L"AddBeaconToolbar: No toolbar found, installing from scratch");
        LogMsg2(L"AddBeaconToolbar: oCommandBars.Add(Name:=", name, L")");
        fresh = oCommandBars_.CallObject(L"Add", {com::FromText(name), com::Missing(), com::Missing(), false});
        oBeaconCmdBar_ = fresh;
        fresh.Put(L"Position", kBarTop);
        LogMsg2(L"Saving content of Clipboard");
        ClipboardKeeper keeper;
        drawsFaces_ = keeper.IsReady();
        if (!drawsFaces_) LogMsg2(L"AddBeaconToolbar: the clipboard is not to be had, leaving out the button faces");
        const bool whole = AddButtons();
        drawsFaces_ = true;
        LogMsg2(L"Restoring content of Clipboard");
        keeper.Restore();
        if (!whole) return;
        fresh.Put(L"Protection", kBarNoCustomize);
        fresh.Put(L"Visible", true);
        fresh.Put(L"Enabled", true);
        added = true;
        deletedBefore_ = BeaconBarsDeleted();
    });
    if (fresh && !added) DiscardBar(fresh);
    return added;
}

/// The bar is permanent: a part of one would be found by its tags, and kept, for good.
void CToolbar::DiscardBar(const com::Object& bar) noexcept {
    ++failedBuilds_;
    comboBox_.Reset();
    oBeaconCmdBar_.Reset();
    GoOnAfterError([&] { DeleteBeaconBar(bar); });
}

STDMETHODIMP CToolbar::AddToolbarButtons() {
    const Held held = Hold();
    AddButtons();
    return S_OK;
}

/// Stops at the first control that cannot be added: with one missing, every later one would stand at a wrong place.
bool CToolbar::AddButtons() {
    bool whole = false;
    LogOnError(L"Exception in AddToolbarButtons: ", [&] {
        const long count = toolbarConfig_->ButtonCount();
        for (long i = 0; i < count; ++i) {
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
        whole = true;
    });
    return whole;
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
        // The number of the button counts from 0; once the bar is synchronised it is the place, which counts from 1.
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
