#include "outlook/bars/bar_strip.h"

#include <windowsx.h>

#include <utility>

#include "com/module.h"
#include "outlook/bars/bar_paint.h"
#include "outlook/bars/control_objects.h"

namespace beacon::standin {
namespace {

// The names that Office gives to its dock at the top of a window.
constexpr wchar_t kClass[] = L"MsoCommandBarDock";
constexpr wchar_t kTitle[] = L"MsoDockTop";
constexpr UINT kRefresh = WM_USER + 1;
constexpr UINT kSelect = WM_USER + 3;
constexpr UINT kFocusLost = WM_USER + 2;  // lParam: the edit box that lost it, 0 for the strip itself

POINT PointOf(LPARAM lParam) { return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }

/// Whether the focus goes to another window of this program. When another program comes to the front, what is being
/// entered stays.
bool GoesElsewhere(WPARAM newFocus) { return newFocus != 0; }

}  // namespace

BarStrip::BarStrip(std::shared_ptr<BarSet> set, BarStore& store)
    : set_(std::move(set)), store_(&store), font_(MenuFont()) {}

BarStrip::~BarStrip() {
    Close();
    DeleteObject(font_);
}

void BarStrip::Open(HWND top) {
    WNDCLASSW description{};
    description.lpfnWndProc = &BarStrip::WindowProcedure;
    description.hInstance = com::ModuleInstance();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = kClass;
    RegisterClassW(&description);  // fails when it is registered already
    RECT area{};
    GetClientRect(top, &area);
    width_ = area.right;
    heightTold_ = Height();
    window_ = CreateWindowExW(0, kClass, kTitle, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0,
                              width_, heightTold_, top, nullptr, com::ModuleInstance(), nullptr);
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

void BarStrip::Close() {
    list_.Close();
    store_ = nullptr;
    heightChanged_ = nullptr;
    if (window_ == nullptr) return;
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    edit_ = nullptr;
    DestroyWindow(std::exchange(window_, nullptr));
}

const BarLayout& BarStrip::Layout() {
    if (stale_) {
        stale_ = false;
        const HDC dc = GetDC(window_);
        layout_ = LayOut(set_->Bars(), dc, font_, width_);
        ReleaseDC(window_, dc);
    }
    return layout_;
}

int BarStrip::Height() { return Layout().height; }

void BarStrip::Resize(int width) {
    width_ = width;
    stale_ = true;
    heightTold_ = Height();
    if (window_ == nullptr) return;
    SetWindowPos(window_, nullptr, 0, 0, width_, heightTold_, SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(window_, nullptr, FALSE);
}

void BarStrip::BarsChanged() {
    stale_ = true;
    if (window_ == nullptr || refreshPosted_) return;
    // One refresh for a whole series of changes.
    refreshPosted_ = PostMessageW(window_, kRefresh, 0, 0) != FALSE;
}

void BarStrip::Refresh() {
    refreshPosted_ = false;
    DropWhatIsGone();
    InvalidateRect(window_, nullptr, FALSE);
    if (store_ != nullptr) store_->Save();
    if (Height() == heightTold_) return;
    Resize(width_);
    if (heightChanged_) heightChanged_();
}

void BarStrip::DropWhatIsGone() {
    const BarLayout& layout = Layout();
    if (hot_ != nullptr && layout.Find(*hot_) == nullptr) hot_ = nullptr;
    if (pressed_ != nullptr && layout.Find(*pressed_) == nullptr) pressed_ = nullptr;
    if (entered_ != nullptr && (layout.Find(*entered_) == nullptr || !entered_->enabled)) {
        CloseEntry();
        GiveFocusBack();
    }
}

std::optional<RECT> BarStrip::PlaceOf(const Bar& bar) {
    for (const BarPlace& entry : Layout().bars)
        if (entry.bar.get() == &bar) return entry.place;
    return std::nullopt;
}

std::optional<RECT> BarStrip::PlaceOf(const BarControl& control) {
    const ControlPlace* const entry = Layout().Find(control);
    return entry == nullptr ? std::nullopt : std::optional(entry->place);
}

void BarStrip::Paint() {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(window_, &paint);
    RECT area{};
    GetClientRect(window_, &area);
    PaintBars(dc, area, Layout(), {hot_.get(), pressed_.get()}, font_);
    EndPaint(window_, &paint);
}

void BarStrip::SetHot(const BarSet::ControlPointer& control) {
    if (hot_ == control) return;
    hot_ = control;
    InvalidateRect(window_, nullptr, FALSE);
}

void BarStrip::MouseMove(POINT point) {
    const ControlPlace* const entry = Layout().At(point);
    SetHot(entry == nullptr ? nullptr : entry->control);
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, window_, 0};
    TrackMouseEvent(&track);
}

void BarStrip::ButtonDown(POINT point) {
    const BarSet::ControlPointer listOf = list_.IsOpen() ? entered_ : nullptr;
    if (entered_ != nullptr) {
        CloseEntry();
        GiveFocusBack();
    }
    const ControlPlace* entry = Layout().At(point);
    if (entry == nullptr || !entry->control->enabled) return;
    const BarSet::ControlPointer control = entry->control;
    if (control->type == kComboBoxControl) {
        // First, because it can activate the window, and then anything may change.
        TakeFocus();
        entry = Layout().Find(*control);
        if (entry == nullptr || !control->enabled || window_ == nullptr) return;
        const bool arrow = point.x >= entry->place.right - 2 - kArrowWidth;
        if (!arrow) return OpenEdit(*entry);
        if (control == listOf) return GiveFocusBack();  // a second click on the arrow closes the list
        return OpenList(*entry);
    }
    pressed_ = control;
    hot_ = control;
    SetCapture(window_);
    InvalidateRect(window_, nullptr, FALSE);
}

void BarStrip::ButtonUp(POINT point) {
    const BarSet::ControlPointer pressed = std::exchange(pressed_, nullptr);
    if (GetCapture() == window_) ReleaseCapture();
    if (pressed == nullptr) return;
    InvalidateRect(window_, nullptr, FALSE);
    const ControlPlace* const entry = Layout().At(point);
    if (entry == nullptr || entry->control != pressed || !pressed->enabled) return;
    if (pressed->type == kButtonControl) set_->RaiseClick(pressed);  // may end this window
}

void BarStrip::TakeFocus() {
    const HWND before = GetFocus();
    const HWND top = GetAncestor(window_, GA_ROOT);
    if (before != window_) focusBefore_ = GetAncestor(before, GA_ROOT) == top ? before : nullptr;
    SetFocus(window_);
}

void BarStrip::GiveFocusBack() {
    const HWND before = std::exchange(focusBefore_, nullptr);
    const HWND now = GetFocus();
    if (window_ == nullptr || (now != nullptr && now != window_)) return;  // it has gone elsewhere already
    SetFocus(before != nullptr && IsWindow(before) ? before : GetAncestor(window_, GA_ROOT));
}

void BarStrip::PostSelect(std::wstring item) {
    toSelect_.push_back(std::move(item));
    if (PostMessageW(window_, kSelect, 0, 0) == FALSE) toSelect_.pop_back();
}

void BarStrip::SelectItem() {
    if (toSelect_.empty()) return;
    const std::wstring item = std::move(toSelect_.front());
    toSelect_.pop_front();
    if (list_.Select(item)) return;
    CloseEntry();
    GiveFocusBack();
}

void BarStrip::OpenEdit(const ControlPlace& combo) {
    const RECT place = ComboTextPlace(combo.place);
    const HWND edit = CreateWindowExW(0, L"EDIT", combo.control->text.c_str(), WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL,
                                      place.left, place.top, place.right - place.left, place.bottom - place.top,
                                      window_, nullptr, com::ModuleInstance(), nullptr);
    if (edit == nullptr) return;
    SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    SetWindowLongPtrW(edit, GWLP_USERDATA, GetWindowLongPtrW(edit, GWLP_WNDPROC));
    SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&BarStrip::EditProcedure));
    SendMessageW(edit, EM_SETSEL, 0, -1);
    entered_ = combo.control;
    edit_ = edit;
    SetFocus(edit);
}

void BarStrip::OpenList(const ControlPlace& combo) {
    RECT place = combo.place;
    MapWindowPoints(window_, nullptr, reinterpret_cast<POINT*>(&place), 2);
    entered_ = combo.control;
    const BarSet::ControlPointer control = combo.control;
    // Index 0 becomes the largest number: no item.
    const size_t selected = static_cast<size_t>(control->listIndex) - 1;
    list_.Open(GetAncestor(window_, GA_ROOT), place, control->items, selected, font_,
               [this, control](const std::wstring& item) { Enter(control, item); });
}

void BarStrip::CloseEntry() {
    entered_ = nullptr;
    list_.Close();
    if (edit_ != nullptr) DestroyWindow(std::exchange(edit_, nullptr));
}

void BarStrip::CommitEdit() {
    const BarSet::ControlPointer control = entered_;
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit_)), L'\0');
    GetWindowTextW(edit_, text.data(), static_cast<int>(text.size()) + 1);
    Enter(control, text);
}

void BarStrip::Enter(const BarSet::ControlPointer& control, const std::wstring& text) {
    const auto self = shared_from_this();
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the text may belong to the list that closes
    const std::wstring entered = text;
    CloseEntry();
    GiveFocusBack();
    EnterText(*control, entered);
    set_->Changed(*control);
    set_->RaiseChange(control);
}

void BarStrip::Key(WPARAM key) {
    if (key == VK_ESCAPE) {
        CloseEntry();
        GiveFocusBack();
    } else if (list_.IsOpen()) {
        list_.Key(key);
    } else if (edit_ != nullptr && key == VK_RETURN) {
        CommitEdit();
    } else if (edit_ != nullptr) {
        SendMessageW(edit_, WM_KEYDOWN, key, 1);
    }
}

LRESULT CALLBACK BarStrip::EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto original = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const HWND strip = GetParent(window);
    if (message == WM_KEYDOWN && (wParam == VK_RETURN || wParam == VK_ESCAPE)) {
        SendMessageW(strip, message, wParam, lParam);  // ends this window
        return 0;
    }
    if (message == WM_CHAR && (wParam == L'\r' || wParam == 27)) return 0;
    if (message == WM_KILLFOCUS && GoesElsewhere(wParam))
        PostMessageW(strip, kFocusLost, 0, reinterpret_cast<LPARAM>(window));
    return CallWindowProcW(original, window, message, wParam, lParam);
}

LRESULT CALLBACK BarStrip::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const strip = reinterpret_cast<BarStrip*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (strip == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    try {
        const auto self = strip->shared_from_this();
        return self->Handle(message, wParam, lParam);
    } catch (...) {
        return 0;
    }
}

LRESULT BarStrip::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND window = window_;
    switch (message) {
        case kRefresh: Refresh(); return 0;
        case kSelect: SelectItem(); return 0;
        case kFocusLost:
            if (reinterpret_cast<HWND>(lParam) == edit_ && (edit_ != nullptr || list_.IsOpen())) CloseEntry();
            return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: Paint(); return 0;
        case WM_LBUTTONDOWN: ButtonDown(PointOf(lParam)); return 0;
        case WM_LBUTTONUP: ButtonUp(PointOf(lParam)); return 0;
        case WM_MOUSEMOVE: MouseMove(PointOf(lParam)); return 0;
        case WM_MOUSELEAVE: SetHot(nullptr); return 0;
        case WM_CAPTURECHANGED:
            if (pressed_ != nullptr) InvalidateRect(window_, nullptr, FALSE);
            pressed_ = nullptr;
            return 0;
        case WM_KEYDOWN: Key(wParam); return 0;
        case WM_CHAR:
            if (edit_ != nullptr) SendMessageW(edit_, WM_CHAR, wParam, lParam);
            return 0;
        case WM_KILLFOCUS:
            if (list_.IsOpen() && GoesElsewhere(wParam)) PostMessageW(window_, kFocusLost, 0, 0);
            return 0;
        case WM_NCDESTROY:
            // The top-level window went first and took this one with it.
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            list_.Close();
            edit_ = nullptr;
            window_ = nullptr;
            break;
        default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace beacon::standin
