#include "outlook/bars/drop_list.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "com/module.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kClass[] = L"MsoCommandBarPopup";
constexpr int kItemHeight = 16;
constexpr size_t kMostRows = 12;

}  // namespace

void DropList::Open(HWND owner, const RECT& below, std::vector<std::wstring> items, size_t selected, HFONT font,
                    Chosen chosen) {
    Close();
    WNDCLASSW description{};
    description.lpfnWndProc = &DropList::WindowProcedure;
    description.hInstance = com::ModuleInstance();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = kClass;
    RegisterClassW(&description);  // fails when it is registered already
    items_ = std::move(items);
    selected_ = selected;
    first_ = 0;
    font_ = font;
    chosen_ = std::move(chosen);
    const int rows = static_cast<int>(std::clamp<size_t>(items_.size(), 1, kMostRows));
    window_ = CreateWindowExW(WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW, kClass, L"", WS_POPUP | WS_BORDER, below.left,
                              below.bottom, below.right - below.left, rows * kItemHeight + 2, owner, nullptr,
                              com::ModuleInstance(), nullptr);
    if (window_ == nullptr) return;
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    if (selected_ < items_.size()) Select(selected_);
    ShowWindow(window_, SW_SHOWNOACTIVATE);
}

void DropList::Close() {
    if (window_ == nullptr) return;
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(std::exchange(window_, nullptr));
}

void DropList::Key(WPARAM key) {
    if (!IsOpen() || items_.empty()) return;
    const size_t last = items_.size() - 1;
    switch (key) {
        case VK_HOME: Select(0); break;
        case VK_END: Select(last); break;
        case VK_DOWN: Select(selected_ > last ? 0 : std::min(selected_ + 1, last)); break;
        case VK_UP: Select(selected_ > last ? last : selected_ - std::min<size_t>(selected_, 1)); break;
        case VK_RETURN: Choose(); break;
        default: break;
    }
}

void DropList::Select(size_t place) {
    selected_ = place;
    if (place < first_) first_ = place;
    if (place >= first_ + kMostRows) first_ = place - kMostRows + 1;
    InvalidateRect(window_, nullptr, FALSE);
}

bool DropList::Select(const std::wstring& item) {
    const auto found = std::find(items_.begin(), items_.end(), item);
    if (!IsOpen() || found == items_.end()) return false;
    Select(static_cast<size_t>(found - items_.begin()));
    return true;
}

void DropList::Choose() {
    if (selected_ >= items_.size()) return Close();
    const std::wstring item = items_[selected_];
    const Chosen tell = std::exchange(chosen_, {});
    Close();
    if (tell) tell(item);  // may be the end of this list
}

size_t DropList::PlaceAt(LPARAM point) const {
    RECT area{};
    GetClientRect(window_, &area);
    const POINT at{GET_X_LPARAM(point), GET_Y_LPARAM(point)};
    if (PtInRect(&area, at) == FALSE) return items_.size();
    return std::min(first_ + static_cast<size_t>(at.y / kItemHeight), items_.size());
}

void DropList::Paint(HDC dc) const {
    RECT area{};
    GetClientRect(window_, &area);
    FillRect(dc, &area, GetSysColorBrush(COLOR_WINDOW));
    const HGDIOBJ previous = SelectObject(dc, font_);
    SetBkMode(dc, TRANSPARENT);
    for (size_t i = first_; i < items_.size(); ++i) {
        const int top = static_cast<int>(i - first_) * kItemHeight;
        RECT row{area.left, top, area.right, top + kItemHeight};
        if (row.top >= area.bottom) break;
        if (i == selected_) FillRect(dc, &row, GetSysColorBrush(COLOR_HIGHLIGHT));
        SetTextColor(dc, GetSysColor(i == selected_ ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        row.left += 4;
        DrawTextW(dc, items_[i].c_str(), -1, &row, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    SelectObject(dc, previous);
}

LRESULT CALLBACK DropList::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const list = reinterpret_cast<DropList*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (list != nullptr) return list->Handle(message, wParam, lParam);
    } catch (...) {
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT DropList::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: {
            PAINTSTRUCT paint{};
            Paint(BeginPaint(window_, &paint));
            EndPaint(window_, &paint);
            return 0;
        }
        case WM_MOUSEMOVE:
            if (PlaceAt(lParam) < items_.size()) Select(PlaceAt(lParam));
            return 0;
        case WM_LBUTTONUP:
            if (PlaceAt(lParam) < items_.size()) {
                Select(PlaceAt(lParam));
                Choose();
            }
            return 0;
        case WM_NCDESTROY:
            // Its owner went first.
            window_ = nullptr;
            return 0;
        default: return DefWindowProcW(window_, message, wParam, lParam);
    }
}

}  // namespace beacon::standin
