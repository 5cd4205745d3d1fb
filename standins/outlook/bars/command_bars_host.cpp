#include "outlook/bars/command_bars_host.h"

#include <windowsx.h>

#include <stdexcept>
#include <utility>

#include "com/error.h"
#include "com/module.h"
#include "com/text.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kClass[] = L"Stand-in command bars";

RECT ArrowPlace(const RECT& combo) { return {combo.right - 2 - kArrowWidth, combo.top, combo.right, combo.bottom}; }

const wchar_t* KindOf(const BarControl& control) {
    switch (control.type) {
        case kComboBoxControl: return L"combo";
        case kPopupControl: return L"popup";
        default: return L"button";
    }
}

std::wstring Quoted(const std::wstring& text) { return L"\"" + text + L"\""; }

}  // namespace

CommandBarsHost::CommandBarsHost(HWND top, WindowKind kind, BarStore& store, std::function<void()> resized)
    : top_(top), set_(std::make_shared<BarSet>(kind, store)), resized_(std::move(resized)), font_(MenuFont()) {
    WNDCLASSW description{};
    description.lpfnWndProc = &WindowProcedure;
    description.hInstance = com::ModuleInstance();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = kClass;
    RegisterClassW(&description);  // fails harmlessly for all but the first
    window_ = CreateWindowExW(0, kClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0, top, nullptr,
                              com::ModuleInstance(), nullptr);
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    set_->SetView(this);
    LayOutAgain();
}

CommandBarsHost::~CommandBarsHost() {
    set_->Close();
    if (IsWindow(window_)) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        DestroyWindow(window_);
    }
    if (font_ != nullptr) DeleteObject(font_);
}

void CommandBarsHost::LayOutAgain() {
    const HDC dc = GetDC(window_);
    layout_ = LayOut(set_->Bars(), dc, font_, width_);
    ReleaseDC(window_, dc);
    InvalidateRect(window_, nullptr, FALSE);
}

void CommandBarsHost::Resize(int width) {
    width_ = width;
    LayOutAgain();
    MoveWindow(window_, 0, 0, width, layout_.height, TRUE);
}

void CommandBarsHost::BarsChanged() {
    const int before = layout_.height;
    LayOutAgain();
    if (layout_.height != before) resized_();
}

std::optional<RECT> CommandBarsHost::PlaceOf(const Bar& bar) {
    for (const BarPlace& entry : layout_.bars) {
        if (entry.bar.get() == &bar) return entry.place;
    }
    return std::nullopt;
}

std::optional<RECT> CommandBarsHost::PlaceOf(const BarControl& control) {
    const ControlPlace* const found = layout_.Find(control);
    return found == nullptr ? std::nullopt : std::optional<RECT>(found->place);
}

// ---- the window ----

LRESULT CALLBACK CommandBarsHost::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const host = reinterpret_cast<CommandBarsHost*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (host == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    LRESULT result = 0;
    com::Method([&] { result = host->Handle(message, wParam, lParam); });
    return result;
}

LRESULT CommandBarsHost::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: Paint(); return 0;
        case WM_LBUTTONDOWN: Press(point); return 0;
        case WM_LBUTTONUP: Release(point); return 0;
        case WM_MOUSEMOVE: Hover(point); return 0;
        case WM_MOUSELEAVE:
            hot_.reset();
            InvalidateRect(window_, nullptr, FALSE);
            return 0;
        case WM_CAPTURECHANGED:
            pressed_.reset();
            InvalidateRect(window_, nullptr, FALSE);
            return 0;
        default: return DefWindowProcW(window_, message, wParam, lParam);
    }
}

void CommandBarsHost::Paint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    RECT area;
    GetClientRect(window_, &area);
    PaintBars(dc, area, layout_, {hot_.get(), pressed_.get()}, font_);
    EndPaint(window_, &paint);
}

void CommandBarsHost::Press(POINT point) {
    CloseEdit(true);
    const ControlPlace* const at = layout_.At(point);
    if (at == nullptr || !at->control->enabled) return;
    const BarSet::ControlPointer control = at->control;
    if (control->type == kComboBoxControl) {
        const RECT arrow = ArrowPlace(at->place);
        if (PtInRect(&arrow, point)) {
            OpenMenu(control);
        } else {
            OpenEdit(control);
        }
        return;
    }
    hot_ = control;
    SetCapture(window_);
    pressed_ = control;
    InvalidateRect(window_, nullptr, FALSE);
}

void CommandBarsHost::Release(POINT point) {
    const BarSet::ControlPointer control = std::exchange(pressed_, nullptr);
    if (GetCapture() == window_) ReleaseCapture();
    InvalidateRect(window_, nullptr, FALSE);
    if (control == nullptr) return;
    const ControlPlace* const at = layout_.At(point);
    if (at == nullptr || at->control != control) return;
    const auto set = set_;  // a sink may close the window, and this host with it
    set->RaiseClick(control);
}

void CommandBarsHost::Hover(POINT point) {
    const ControlPlace* const at = layout_.At(point);
    BarSet::ControlPointer control = at == nullptr ? nullptr : at->control;
    if (control == hot_) return;
    hot_ = std::move(control);
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, window_, 0};
    TrackMouseEvent(&track);
    InvalidateRect(window_, nullptr, FALSE);
}

// ---- combo boxes ----

void CommandBarsHost::OpenEdit(const BarSet::ControlPointer& combo) {
    CloseEdit(true);
    const auto place = PlaceOf(*combo);
    if (!place) return;
    const RECT area = ComboTextPlace(*place);
    edit_ = CreateWindowExW(0, L"EDIT", combo->text.c_str(), WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, area.left, area.top,
                            area.right - area.left, area.bottom - area.top, window_, nullptr, com::ModuleInstance(), nullptr);
    if (edit_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    edited_ = combo;
    SetWindowLongPtrW(edit_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    editProcedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(edit_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&EditProcedure)));
    SendMessageW(edit_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    SendMessageW(edit_, EM_SETSEL, 0, -1);
    SetFocus(edit_);
}

LRESULT CALLBACK CommandBarsHost::EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const host = reinterpret_cast<CommandBarsHost*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const WNDPROC original = host->editProcedure_;
    if (message == WM_CHAR && (wParam == VK_RETURN || wParam == VK_ESCAPE)) {
        com::Method([&] { host->CloseEdit(wParam == VK_RETURN); });
        return 0;
    }
    if (message == WM_KILLFOCUS) com::Method([&] { host->CloseEdit(true); });
    return CallWindowProcW(original, window, message, wParam, lParam);
}

void CommandBarsHost::CloseEdit(bool take) {
    const HWND edit = std::exchange(edit_, nullptr);
    if (edit == nullptr) return;
    const BarSet::ControlPointer combo = std::exchange(edited_, nullptr);
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(edit, text.data(), static_cast<int>(text.size()))));
    DestroyWindow(edit);
    if (!take || text == combo->text) return;
    SetComboText(combo, text, 0);
}

void CommandBarsHost::OpenMenu(const BarSet::ControlPointer& combo) {
    const auto place = PlaceOf(*combo);
    if (!place || combo->items.empty()) return;
    const HMENU menu = CreatePopupMenu();
    for (size_t i = 0; i < combo->items.size(); ++i) AppendMenuW(menu, MF_STRING, i + 1, combo->items[i].c_str());
    POINT corner{place->left, place->bottom};
    ClientToScreen(window_, &corner);
    const int chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_LEFTALIGN, corner.x, corner.y, 0, window_, nullptr);
    DestroyMenu(menu);
    if (chosen > 0) TakeItem(combo, static_cast<size_t>(chosen - 1));
}

void CommandBarsHost::TakeItem(const BarSet::ControlPointer& combo, size_t index) {
    if (index >= combo->items.size()) return;
    const std::wstring text = combo->items[index];
    SetComboText(combo, text, static_cast<long>(index) + 1);
}

void CommandBarsHost::SetComboText(const BarSet::ControlPointer& combo, const std::wstring& text, long listIndex) {
    const auto set = set_;
    combo->text = text;
    combo->listIndex = listIndex;
    set->Changed(*combo);
    set->RaiseChange(combo);
}

// ---- scripts ----

const ControlPlace& CommandBarsHost::Visible(const std::wstring& caption) {
    for (const ControlPlace& entry : layout_.controls) {
        if (SameName(PlainCaption(entry.control->caption), caption)) return entry;
    }
    throw std::invalid_argument("no visible control \"" + com::ToAnsi(caption) + "\"");
}

void CommandBarsHost::Click(const std::wstring& caption) {
    const RECT place = Visible(caption).place;
    const LPARAM middle = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    PostMessageW(window_, WM_LBUTTONDOWN, MK_LBUTTON, middle);
    PostMessageW(window_, WM_LBUTTONUP, 0, middle);
}

void CommandBarsHost::Type(const std::wstring& caption, const std::wstring& text) {
    OpenEdit(Visible(caption).control);
    for (const wchar_t character : text) PostMessageW(edit_, WM_CHAR, character, 1);
    if (text.empty()) PostMessageW(edit_, WM_CHAR, VK_BACK, 1);
    PostMessageW(edit_, WM_KEYDOWN, VK_RETURN, 1);  // its WM_CHAR comes from the message loop
}

void CommandBarsHost::Choose(const std::wstring& caption, const std::wstring& item) {
    const BarSet::ControlPointer combo = Visible(caption).control;
    for (size_t i = 0; i < combo->items.size(); ++i) {
        if (combo->items[i] == item) return TakeItem(combo, i);
    }
    throw std::invalid_argument("the list has no \"" + com::ToAnsi(item) + "\"");
}

void CommandBarsHost::DeleteBar(const std::wstring& name) {
    const BarSet::BarPointer bar = set_->Find(name);
    if (bar == nullptr) throw std::invalid_argument("no bar \"" + com::ToAnsi(name) + "\"");
    set_->Delete(bar);
}

std::vector<std::wstring> CommandBarsHost::Describe() const {
    std::vector<std::wstring> lines;
    for (const auto& bar : set_->Bars()) {
        lines.push_back(L"bar " + Quoted(bar->name) + L" position " + std::to_wstring(bar->position) + L" protection " +
                        std::to_wstring(bar->protection) + (bar->visible ? L" visible" : L" hidden"));
        size_t number = 0;
        for (const auto& control : bar->controls) {
            std::wstring line = L"bar " + Quoted(bar->name) + L" " + std::to_wstring(++number) + L" " + KindOf(*control) +
                                L" " + Quoted(control->caption) + L" tag " + Quoted(control->tag);
            line += control->visible ? L" visible" : L" hidden";
            line += control->enabled ? L" enabled" : L" disabled";
            if (control->beginGroup) line += L" group";
            if (control->type == kButtonControl) line += control->face.Empty() ? L" no face" : L" face";
            if (control->type == kComboBoxControl) {
                line += L" text " + Quoted(control->text) + L" index " + std::to_wstring(control->listIndex) + L" list";
                for (const std::wstring& item : control->items) line += L" " + Quoted(item);
            }
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

}  // namespace beacon::standin
