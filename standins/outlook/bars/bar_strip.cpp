#include "outlook/bars/bar_strip.h"

#include <algorithm>
#include <utility>

#include "com/module.h"

namespace beacon::standin {
namespace {

// The class of Office's dock at the top of a window.
constexpr wchar_t kClass[] = L"MsoCommandBarDock";
constexpr wchar_t kTitle[] = L"MsoDockTop";
constexpr UINT kRefresh = WM_USER + 1;
constexpr UINT kPosted = WM_USER + 2;
constexpr int kEntered = 0x100;  // own notification code: return key in a closed combo box

}  // namespace

BarStrip::BarStrip(std::shared_ptr<BarSet> set, BarStore& store) : set_(std::move(set)), store_(&store) {}

BarStrip::~BarStrip() { Close(); }

void BarStrip::Open(HWND top) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    WNDCLASSW description{};
    description.lpfnWndProc = &BarStrip::WindowProcedure;
    description.hInstance = com::ModuleInstance();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.hbrBackground = GetSysColorBrush(COLOR_3DFACE);
    description.lpszClassName = kClass;
    RegisterClassW(&description);  // fails if it is registered already
    RECT area{};
    GetClientRect(top, &area);
    window_ = CreateWindowExW(0, kClass, kTitle, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                              top, nullptr, com::ModuleInstance(), nullptr);
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    Resize(area.right);
}

void BarStrip::Close() {
    store_ = nullptr;
    heightChanged_ = nullptr;
    posted_.clear();
    if (window_ != nullptr) DestroyWindow(window_);
}

const std::vector<std::unique_ptr<ToolBar>>& BarStrip::ToolBars() {
    if (!std::exchange(stale_, false) || window_ == nullptr) return toolBars_;
    std::vector<BarSet::BarPointer> shown;
    for (const auto& bar : set_->Bars())
        if (bar->visible && bar->position != kPopupPosition) shown.push_back(bar);
    std::stable_sort(shown.begin(), shown.end(), [](const BarSet::BarPointer& left, const BarSet::BarPointer& right) {
        return left->rowIndex < right->rowIndex;
    });
    std::vector<std::unique_ptr<ToolBar>> toolBars;
    toolBars.reserve(shown.size());
    for (const auto& bar : shown) toolBars.push_back(TakeOrMake(bar));
    for (auto& left : toolBars_) {
        if (left == nullptr) continue;
        ShowWindow(left->Window(), SW_HIDE);
        outdated_.push_back(std::move(left));
    }
    toolBars_ = std::move(toolBars);
    for (const auto& toolBar : toolBars_) toolBar->Update();
    LayOut();
    return toolBars_;
}

std::unique_ptr<ToolBar> BarStrip::TakeOrMake(const BarSet::BarPointer& bar) {
    for (auto& toolBar : toolBars_)
        if (toolBar != nullptr && toolBar->IsOf(*bar)) return std::move(toolBar);
    return std::make_unique<ToolBar>(window_, bar, &BarStrip::EditProcedure, reinterpret_cast<DWORD_PTR>(this));
}

void BarStrip::LayOut() {
    int x = 0;
    int top = 0;
    height_ = 0;
    const Bar* before = nullptr;
    for (const auto& toolBar : toolBars_) {
        const Bar& bar = toolBar->Shown();
        if (before != nullptr && before->rowIndex != bar.rowIndex) {
            top = height_;
            x = 0;
        }
        before = &bar;
        const SIZE size = toolBar->Size();
        SetWindowPos(toolBar->Window(), nullptr, x, top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        x += size.cx;
        height_ = std::max<int>(height_, top + size.cy);
    }
}

int BarStrip::Height() {
    ToolBars();
    return height_;
}

void BarStrip::Resize(int width) {
    SetWindowPos(window_, nullptr, 0, 0, width, Height(), SWP_NOZORDER | SWP_NOACTIVATE);
}

void BarStrip::BarsChanged() {
    stale_ = true;
    // One refresh for a whole series of changes.
    if (window_ != nullptr && !refreshPosted_) refreshPosted_ = PostMessageW(window_, kRefresh, 0, 0) != FALSE;
}

void BarStrip::Refresh() {
    refreshPosted_ = false;
    const bool entering = IsChild(window_, GetFocus()) != FALSE;
    ToolBars();
    outdated_.clear();
    const HWND focus = GetFocus();
    if (entering && (!IsWindowVisible(focus) || !IsWindowEnabled(focus))) GiveFocusBack();
    if (store_ != nullptr) store_->Save();
    RECT area{};
    GetClientRect(window_, &area);
    if (area.bottom == Height()) return;
    Resize(area.right);
    if (heightChanged_) heightChanged_();
}

ToolBar* BarStrip::ToolBarOf(const BarControl& control) {
    for (const auto& toolBar : ToolBars())
        if (toolBar->PlaceOf(control)) return toolBar.get();
    return nullptr;
}

std::optional<RECT> BarStrip::PlaceOf(const Bar& bar) {
    for (const auto& toolBar : ToolBars()) {
        if (&toolBar->Shown() != &bar) continue;
        RECT place{};
        GetWindowRect(toolBar->Window(), &place);
        MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    return std::nullopt;
}

std::optional<RECT> BarStrip::PlaceOf(const BarControl& control) {
    const ToolBar* const toolBar = ToolBarOf(control);
    return toolBar == nullptr ? std::nullopt : toolBar->PlaceOf(control);
}

HWND BarStrip::InputOf(const BarControl& control) {
    const ToolBar* const toolBar = ToolBarOf(control);
    if (toolBar == nullptr) return nullptr;
    const HWND combo = toolBar->ComboOf(control);
    return combo == nullptr ? toolBar->Window() : EditOf(combo);
}

void BarStrip::Post(std::function<void()> work) {
    posted_.push_back(std::move(work));
    if (PostMessageW(window_, kPosted, 0, 0) == FALSE) posted_.pop_back();
}

void BarStrip::PostChoice(BarSet::ControlPointer control, std::wstring item) {
    Post([this, control = std::move(control), item = std::move(item)] { Choose(control, item); });
}

void BarStrip::Choose(const BarSet::ControlPointer& control, const std::wstring& item) {
    SetFocus(InputOf(*control));
    // Activation events may have changed the bar.
    const HWND edit = InputOf(*control);
    const auto found = std::find(control->items.begin(), control->items.end(), item);
    if (edit == nullptr || found == control->items.end()) return GiveFocusBack();
    const HWND combo = GetParent(edit);
    SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(found - control->items.begin()), 0);
    SendMessageW(combo, WM_KEYDOWN, VK_RETURN, 1);
}

void BarStrip::Enter(const BarSet::ControlPointer& control, const std::wstring& text) {
    EnterText(*control, text);
    GiveFocusBack();
    set_->Changed(*control);
    set_->RaiseChange(control);
}

void BarStrip::GiveFocusBack() {
    const HWND before = std::exchange(focusBefore_, nullptr);
    const HWND now = GetFocus();
    if (now != nullptr && now != window_ && !IsChild(window_, now)) return;  // the focus is elsewhere already
    SetFocus(before != nullptr && IsWindow(before) ? before : GetAncestor(window_, GA_ROOT));
}

void BarStrip::Command(int code, int command, HWND sender) {
    BarSet::ControlPointer control;
    for (const auto& toolBar : toolBars_)
        if (toolBar->Window() == sender || toolBar->Window() == GetParent(sender))
            control = toolBar->ControlOf(command);
    if (control == nullptr) return;
    // Posted, because sinks may destroy the tool bar.
    if (control->type == kButtonControl) return Post([this, control] { set_->RaiseClick(control); });
    if (control->type != kComboBoxControl) return;
    if (code == CBN_KILLFOCUS) return BarsChanged();  // discards uncommitted text
    if (code != CBN_SELENDOK && code != kEntered) return;
    const auto selected = code == kEntered ? CB_ERR : SendMessageW(sender, CB_GETCURSEL, 0, 0);
    const std::wstring text = selected == CB_ERR ? EditTextOf(sender) : ItemOf(sender, selected);
    Post([this, control, text] { Enter(control, text); });
}

void BarStrip::Tip(NMTBGETINFOTIPW& tip) {
    for (const auto& toolBar : toolBars_) {
        if (toolBar->Window() != tip.hdr.hwndFrom) continue;
        const auto control = toolBar->ControlOf(tip.iItem);
        if (control != nullptr) lstrcpynW(tip.pszText, control->tooltip.c_str(), tip.cchTextMax);
    }
}

LRESULT CALLBACK BarStrip::EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                         DWORD_PTR data) {
    auto* const strip = reinterpret_cast<BarStrip*>(data);
    const HWND combo = GetParent(window);
    if (message == WM_SETFOCUS) {
        const auto before = reinterpret_cast<HWND>(wParam);
        const bool ours = GetAncestor(before, GA_ROOT) == GetAncestor(window, GA_ROOT);
        if (!IsChild(strip->window_, before)) strip->focusBefore_ = ours ? before : nullptr;
    }
    if (message == WM_KEYDOWN && wParam == VK_RETURN && SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) == FALSE) {
        const int command = GetDlgCtrlID(combo);
        return SendMessageW(strip->window_, WM_COMMAND, MAKEWPARAM(command, kEntered), reinterpret_cast<LPARAM>(combo));
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

LRESULT CALLBACK BarStrip::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const strip = reinterpret_cast<BarStrip*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (strip == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    try {
        const auto self = strip->weak_from_this().lock();  // null in its destructor
        return strip->Handle(message, wParam, lParam);
    } catch (...) {
        return 0;
    }
}

LRESULT BarStrip::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND window = window_;
    switch (message) {
        case kRefresh: Refresh(); return 0;
        case kPosted:
            if (!posted_.empty()) {
                const std::function<void()> work = std::move(posted_.front());
                posted_.pop_front();
                work();
            }
            return 0;
        case WM_COMMAND: Command(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam)); return 0;
        case WM_NOTIFY:
            if (reinterpret_cast<NMHDR*>(lParam)->code == TBN_GETINFOTIPW)
                Tip(*reinterpret_cast<NMTBGETINFOTIPW*>(lParam));
            return 0;
        case WM_DESTROY:  // also if the top-level window is destroyed first
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            window_ = nullptr;
            toolBars_.clear();
            outdated_.clear();
            return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

}  // namespace beacon::standin
