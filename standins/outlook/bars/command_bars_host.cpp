#include "outlook/bars/command_bars_host.h"

#include <algorithm>

#include "common/journal.h"
#include "common/program.h"

namespace beacon::standin {
namespace {

const wchar_t* TypeName(long type) {
    switch (type) {
        case kButtonControl: return L"button";
        case kComboBoxControl: return L"combo";
        default: return L"popup";
    }
}

std::wstring Description(const BarControl& control, size_t index) {
    std::wstring line = L"  " + std::to_wstring(index) + L" " + TypeName(control.type) + L" " + Quoted(control.caption);
    if (!control.tag.empty()) line += L" tag=" + Quoted(control.tag);
    if (control.type == kComboBoxControl) {
        line += L" text=" + Quoted(control.text) + L" items=";
        for (const std::wstring& item : control.items)
            line += (&item == control.items.data() ? L"" : L",") + Quoted(item);
    }
    if (!control.face.Empty())
        line += L" face=" + std::to_wstring(control.face.width) + L"x" + std::to_wstring(control.face.height);
    if (!control.visible) line += L" hidden";
    if (!control.enabled) line += L" disabled";
    if (control.beginGroup) line += L" group";
    if (control.state == -1) line += L" down";
    return line;
}

std::wstring Description(const Bar& bar, size_t index) {
    std::wstring line =
        L"bar " + std::to_wstring(index) + L" " + Quoted(bar.name) + (bar.visible ? L" visible" : L" hidden");
    if (!bar.enabled) line += L" disabled";
    line += L" position=" + std::to_wstring(bar.position) + L" protection=" + std::to_wstring(bar.protection) +
            L" row=" + std::to_wstring(bar.rowIndex);
    if (bar.builtIn) line += L" built-in";
    if (bar.temporary) line += L" temporary";
    return line;
}

}  // namespace

CommandBarsHost::CommandBarsHost(HWND top, WindowKind kind, BarStore& store)
    : set_(std::make_shared<BarSet>(kind, store)), strip_(std::make_shared<BarStrip>(set_, store)) {
    strip_->Open(top);
    set_->SetView(strip_.get());
}

CommandBarsHost::~CommandBarsHost() {
    set_->Close();
    strip_->Close();
}

std::shared_ptr<BarControl> CommandBarsHost::Find(const std::wstring& caption, bool shownOnly) const {
    const auto& bars = set_->Bars();
    for (auto bar = bars.rbegin(); bar != bars.rend(); ++bar) {  // built-in bars come first
        for (const auto& control : (*bar)->controls) {
            const std::wstring plain = PlainCaption(control->caption);
            if (!SameName(plain, caption) && !SameName((*bar)->name + L"/" + plain, caption)) continue;
            if (!shownOnly || strip_->PlaceOf(*control)) return control;
        }
    }
    return nullptr;
}

BarSet::ControlPointer CommandBarsHost::Need(const std::wstring& caption, long type, bool shownOnly) const {
    const auto control = Find(caption, shownOnly);
    if (control == nullptr)
        Fail((shownOnly ? L"no visible control " : L"no control ") + Quoted(caption) + L" on the command bars");
    if (control->type != type && type != 0) Fail(Quoted(caption) + L" is no " + TypeName(type));
    return control;
}

std::optional<RECT> CommandBarsHost::PlaceOf(const std::wstring& caption) const {
    const auto control = Find(caption, true);
    return control == nullptr ? std::nullopt : strip_->PlaceOf(*control);
}

const BarControl& CommandBarsHost::Button(const std::wstring& caption) const {
    return *Need(caption, kButtonControl, false);
}

const BarControl& CommandBarsHost::ComboBox(const std::wstring& caption) const {
    return *Need(caption, kComboBoxControl, false);
}

std::wstring CommandBarsHost::Describe() const {
    std::wstring text;
    size_t number = 0;
    for (const auto& bar : set_->Bars()) {
        text += Description(*bar, ++number) + L"\n";
        size_t place = 0;
        for (const auto& control : bar->controls) text += Description(*control, ++place) + L"\n";
    }
    return text;
}

void CommandBarsHost::Click(const std::wstring& caption) { PostClick(*Need(caption, 0, true)); }

void CommandBarsHost::PressNow(const std::wstring& caption) {
    const auto set = set_;  // a sink may close the window
    set->RaiseClick(Need(caption, kButtonControl, false));
}

void CommandBarsHost::EnterNow(const std::wstring& caption, const std::wstring& text) {
    const auto set = set_;
    const auto control = Need(caption, kComboBoxControl, false);
    EnterText(*control, text);
    set->RaiseChange(control);
}

HWND CommandBarsHost::PostClick(const BarControl& control) const {
    const RECT place = *strip_->PlaceOf(control);
    const HWND window = strip_->InputOf(control);
    POINT point{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    MapWindowPoints(strip_->Window(), window, &point, 1);
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(point.x, point.y));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(point.x, point.y));
    return window;
}

void CommandBarsHost::Type(const std::wstring& caption, const std::wstring& text) {
    const HWND edit = PostClick(*Need(caption, kComboBoxControl, true));
    PostMessageW(edit, EM_SETSEL, 0, -1);
    PostMessageW(edit, WM_CLEAR, 0, 0);
    for (const wchar_t c : text) PostMessageW(edit, WM_CHAR, c, 1);
    PostMessageW(edit, WM_KEYDOWN, VK_RETURN, 1);
}

void CommandBarsHost::Choose(const std::wstring& caption, const std::wstring& item) {
    const auto combo = Need(caption, kComboBoxControl, true);
    if (std::find(combo->items.begin(), combo->items.end(), item) == combo->items.end())
        Fail(L"no item " + Quoted(item) + L" in the list of " + Quoted(caption));
    strip_->PostChoice(combo, item);
}

void CommandBarsHost::DeleteBar(const std::wstring& name) {
    const auto bar = set_->Find(name);
    if (bar == nullptr) Fail(L"no command bar " + Quoted(name));
    set_->Delete(bar);
}

}  // namespace beacon::standin
