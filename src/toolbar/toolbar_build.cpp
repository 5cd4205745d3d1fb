// Building the bar from nothing.
#include "support/error_styles.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/button_faces.h"
#include "toolbar/clipboard_keeper.h"
#include "toolbar/picture.h"
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
    return controls.CallObject(L"Add",
                               {com::FromLong(type), com::Missing(), com::Missing(), com::Missing(), com::Missing()});
}

}  // namespace

std::wstring CToolbar::DefaultToolbarName() {
    std::wstring name;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", name)) name = L"Beacon Toolbar";
    return name;
}

bool CToolbar::AddBeaconToolbar() {
    bool added = false;
    LogOnError(L"Exception in AddBeaconToolbar: ", [&] {
        LogMsg2(L"AddBeaconToolbar Called");
        toolbarConfig_.Create();
        LogMsg2(L"AddBeaconToolbar() Calling GetCommandBar()");
        if (GetCommandBar()) {
            LogMsg2(L"AddBeaconToolbar: Toolbar already installed, not re-adding from scratch");
            return;
        }
        if (!oCommandBars_) return;
        const std::wstring name = DefaultToolbarName();
        LogMsg2(L"AddBeaconToolbar: No toolbar found, installing from scratch");
        LogMsg2(L"AddBeaconToolbar: oCommandBars.Add(Name:=", name, L")");
        const com::Object bar = oCommandBars_.CallObject(
            L"Add", {com::FromText(name), com::Missing(), com::Missing(), com::FromBool(false)});
        oBeaconCmdBar_ = bar;
        bar.Put(L"Position", com::FromLong(kBarTop));
        {
            LogMsg2(L"Saving content of Clipboard");
            ClipboardKeeper keeper;
            AddToolbarButtons();
            LogMsg2(L"Restoring content of Clipboard");
            keeper.Restore();
        }
        bar.Put(L"Protection", com::FromLong(kBarNoCustomize));
        bar.Put(L"Visible", com::FromBool(true));
        bar.Put(L"Enabled", com::FromBool(true));
        added = true;
    });
    return added;
}

STDMETHODIMP CToolbar::AddToolbarButtons() {
    const com::ComPtr<CToolbar> alive(this);
    LogOnError(L"Exception in AddToolbarButtons: ", [&] {
        const long count = toolbarConfig_.ButtonCount();
        for (long i = 0; i < count; ++i) {
            const std::wstring caption = toolbarConfig_.ButtonCaption(i);
            const std::wstring tooltip = toolbarConfig_.ButtonTooltip(i);
            const bool flag = toolbarConfig_.ButtonEnabled(i);
            const com::Object button = AddButtonToToolbar(oBeaconCmdBar_, caption, tooltip, flag, i);
            if (i == kHiddenButton) {
                button.Put(L"Enabled", com::FromBool(false));
                button.Put(L"Visible", com::FromBool(false));
                button.Put(L"BeginGroup", com::FromBool(true));
                const com::Object box = AddComboBoxToToolbar();
                if (toolbarConfig_.ContextMode() != 1) box.Put(L"Visible", com::FromBool(false));
            }
            if (i == kGroupStartButton) button.Put(L"BeginGroup", com::FromBool(true));
        }
    });
    return S_OK;
}

com::Object CToolbar::AddButtonToToolbar(const com::Object& bar, const std::wstring& caption,
                                         const std::wstring& tooltip, bool flag, long index) {
    com::Object result;
    LogOnError(L"Exception in AddButtonToToolbar: ", [&] {
        const com::Object button = AddControl(bar.GetObject(L"Controls"), kControlButton);
        button.Put(L"Caption", com::FromText(caption));
        button.Put(L"Style", com::FromLong(kButtonIconAndCaption));
        button.Put(L"TooltipText", com::FromText(tooltip));
        button.Put(L"DescriptionText", com::FromText(caption));
        button.Put(L"ShortcutText", com::FromText(caption));
        // The number of the button counts from 0; once the bar is synchronised it is the place, which counts from 1.
        const std::wstring window = std::to_wstring(Connect().GetHwnd());
        button.Put(L"Tag", com::FromText(ToolbarTagPrefix + window + L";" + std::to_wstring(index)));
        button.Put(L"Enabled", com::FromBool(flag));
        button.Put(L"Visible", com::FromBool(flag));
        AddImageToButton(button, index, toolbarConfig_.ButtonMaskColor(index));
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
        comboBox_ = AddControl(controls, kControlComboBox);
        comboBox_.Put(L"Width", com::FromLong(kComboWidth));
        comboBox_.Put(L"Style", com::FromLong(kComboNormal));
        comboBox_.Put(L"Tag", com::FromText(ToolbarTagPrefix + std::to_wstring(Connect().GetHwnd())));
        comboBox_.Put(L"Caption", com::FromText(L"Context"));
        comboBox_.Put(L"Text", com::FromText(toolbarConfig_.DefaultContextText()));
        result = comboBox_;
    });
    return result;
}

void CToolbar::AddImageToButton(const com::Object& button, long index, OLE_COLOR maskColor) {
    LogOnError(L"Exception in AddImageToButton: ", [&] {
        const std::wstring path = toolbarConfig_.ButtonBitmapPath(index);
        LogMsg2(L"sBitmapPathEx(", index, L") =", path);
        const com::ComPtr<IPicture> picture = LoadPicture(path);
        if (picture == nullptr) LogMsg(L"LoadPicture(", path, L") failed");
        beacon::CopyBitmapAsButtonFace(picture.Get(), maskColor);
        button.Call(L"PasteFace");
    });
}

void CToolbar::ApplyLayout(const com::Object& bar) {
    LogOnError(L"Exception in ApplyLayout: ", [&] {
        const ConfigClient::Layout layout = toolbarConfig_.LoadLayout(L"Outlook");
        bar.Put(L"Height", com::FromLong(layout.height));
        bar.Put(L"Width", com::FromLong(layout.width));
        bar.Put(L"Left", com::FromLong(layout.left));
        bar.Put(L"Top", com::FromLong(layout.top));
        bar.Put(L"RowIndex", com::FromLong(layout.rowIndex));
        bar.Put(L"Position", com::FromLong(PositionFromName(layout.position)));
    });
}

}  // namespace beacon
