#include "outlook/bars/tool_bar.h"

#include <algorithm>
#include <array>

#include "com/module.h"

namespace beacon::standin {
namespace {

constexpr int kSeparator = 0x4000;  // plus position: command id of the separator before a control
constexpr int kButtonHeight = 22;
constexpr int kComboWidth = 100;
constexpr int kDroppedHeight = 200;
constexpr int kMargin = 3;

/// Adds the face to the list; returns its index.
int AddFace(HIMAGELIST list, const ButtonFace& original) {
    ButtonFace face = Scaled(original, kFaceSize, kFaceSize);
    std::array<std::uint8_t, kFaceSize * kFaceSize / 8> mask{};
    for (size_t i = 0; i < face.pixels.size(); ++i) {
        if (face.pixels[i] >> 24 != 0) continue;
        face.pixels[i] = 0;
        mask[i / 8] = static_cast<std::uint8_t>(mask[i / 8] | 0x80 >> i % 8);
    }
    const HBITMAP marks = CreateBitmap(kFaceSize, kFaceSize, 1, 1, mask.data());
    const HBITMAP picture = CreateBitmap(kFaceSize, kFaceSize, 1, 32, face.pixels.data());
    const int index = ImageList_Add(list, picture, marks);
    DeleteObject(picture);
    DeleteObject(marks);
    return index;
}

}  // namespace

HWND EditOf(HWND combo) { return GetWindow(combo, GW_CHILD); }

std::wstring EditTextOf(HWND combo) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(EditOf(combo))), L'\0');
    GetWindowTextW(EditOf(combo), text.data(), static_cast<int>(text.size()) + 1);
    return text;
}

std::wstring ItemOf(HWND combo, LRESULT place) {
    const auto index = static_cast<WPARAM>(place);
    std::wstring text(static_cast<size_t>(SendMessageW(combo, CB_GETLBTEXTLEN, index, 0)), L'\0');
    SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

ToolBar::ToolBar(HWND parent, BarSet::BarPointer bar, SUBCLASSPROC edit, DWORD_PTR data)
    : bar_(std::move(bar)),
      controls_(bar_->controls),
      window_(CreateWindowExW(0, TOOLBARCLASSNAMEW, bar_->name.c_str(),
                              WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST |
                                  TBSTYLE_TOOLTIPS | CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER,
                              0, 0, 0, 0, parent, nullptr, com::ModuleInstance(), nullptr)),
      faces_(ImageList_Create(kFaceSize, kFaceSize, ILC_COLOR24 | ILC_MASK, 0, 8), &ImageList_Destroy) {
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SendMessageW(window_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(window_, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS);
    SendMessageW(window_, TB_SETBITMAPSIZE, 0, 0);  // no space for missing faces
    SendMessageW(window_, TB_SETBUTTONSIZE, 0, MAKELPARAM(kButtonHeight, kButtonHeight));
    for (size_t place = 0; place < controls_.size(); ++place) {
        const auto command = static_cast<int>(place);
        TBBUTTON buttons[2]{};
        buttons[0].idCommand = kSeparator + command;
        buttons[0].fsStyle = BTNS_SEP;
        buttons[1].idCommand = command;
        buttons[1].iBitmap = I_IMAGENONE;
        SendMessageW(window_, TB_ADDBUTTONSW, 2, reinterpret_cast<LPARAM>(buttons));
        if (controls_[place]->type != kComboBoxControl) continue;
        const HWND combo = CreateWindowExW(
            0, L"COMBOBOX", nullptr, WS_CHILD | WS_VSCROLL | CBS_DROPDOWN | CBS_AUTOHSCROLL, 0, 0, kComboWidth,
            kDroppedHeight, window_, reinterpret_cast<HMENU>(place), com::ModuleInstance(), nullptr);
        SendMessageW(combo, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window_, WM_GETFONT, 0, 0)), FALSE);
        SetWindowSubclass(EditOf(combo), edit, 0, data);
    }
}

ToolBar::~ToolBar() { DestroyWindow(window_); }

void ToolBar::Update() {
    const bool faces = std::any_of(controls_.begin(), controls_.end(), [](const auto& c) { return ShowsFace(*c); });
    SendMessageW(window_, TB_SETIMAGELIST, 0, faces ? reinterpret_cast<LPARAM>(faces_.get()) : 0);
    ImageList_RemoveAll(faces_.get());
    bool first = true;
    for (size_t place = 0; place < controls_.size(); ++place) {
        const BarControl& control = *controls_[place];
        const bool separated = control.visible && control.beginGroup && !first;
        first = first && !control.visible;
        SendMessageW(window_, TB_HIDEBUTTON, kSeparator + place, separated ? FALSE : TRUE);
        UpdateButton(place);
    }
    for (size_t place = 0; place < controls_.size(); ++place)
        if (controls_[place]->type == kComboBoxControl) UpdateCombo(ComboOf(*controls_[place]), place);
    InvalidateRect(window_, nullptr, TRUE);
}

void ToolBar::UpdateButton(size_t place) {
    const BarControl& control = *controls_[place];
    const bool isCombo = control.type == kComboBoxControl;
    std::wstring caption = control.caption;
    TBBUTTONINFOW info{};
    info.cbSize = sizeof info;
    info.dwMask = TBIF_STATE | TBIF_STYLE | TBIF_SIZE | TBIF_IMAGE | TBIF_TEXT;
    info.pszText = caption.data();
    info.iImage = ShowsFace(control) ? AddFace(faces_.get(), control.face) : I_IMAGENONE;
    info.cx = static_cast<WORD>(isCombo && control.width == 0 ? kComboWidth : control.width);
    // Keep a button pressed that the user is pressing.
    auto state = SendMessageW(window_, TB_GETSTATE, place, 0) & TBSTATE_PRESSED;
    if (control.enabled) state |= TBSTATE_ENABLED;
    if (!control.visible) state |= TBSTATE_HIDDEN;
    if (control.state == -1) state |= TBSTATE_CHECKED;
    info.fsState = static_cast<BYTE>(state);
    if (isCombo)
        info.fsStyle = BTNS_SEP;
    else
        info.fsStyle =
            static_cast<BYTE>((info.cx == 0 ? BTNS_AUTOSIZE : 0) | (ShowsCaption(control) ? BTNS_SHOWTEXT : 0));
    SendMessageW(window_, TB_SETBUTTONINFOW, place, reinterpret_cast<LPARAM>(&info));
}

void ToolBar::UpdateCombo(HWND combo, size_t place) {
    const BarControl& control = *controls_[place];
    const RECT button = ButtonAt(place);
    RECT box{};
    GetWindowRect(combo, &box);
    const int top = (button.top + button.bottom - (box.bottom - box.top)) / 2;
    SetWindowPos(combo, nullptr, button.left, top, button.right - button.left, kDroppedHeight,
                 SWP_NOZORDER | SWP_NOACTIVATE | (control.visible ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    EnableWindow(combo, control.enabled ? TRUE : FALSE);

    const bool entering = GetFocus() == EditOf(combo);
    const std::wstring text = entering ? EditTextOf(combo) : control.text;
    const auto selection = SendMessageW(combo, CB_GETEDITSEL, 0, 0);
    std::vector<std::wstring> items;
    for (LRESULT i = 0; i < SendMessageW(combo, CB_GETCOUNT, 0, 0); ++i) items.push_back(ItemOf(combo, i));
    if (items != control.items) {
        SendMessageW(combo, CB_RESETCONTENT, 0, 0);
        for (const std::wstring& item : control.items)
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
    }
    if (!entering) SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(control.listIndex - 1), 0);
    if (EditTextOf(combo) == text) return;
    SetWindowTextW(combo, text.c_str());
    if (entering) SendMessageW(combo, CB_SETEDITSEL, 0, selection);
}

RECT ToolBar::ButtonAt(size_t place) const {
    RECT button{};
    SendMessageW(window_, TB_GETITEMRECT, 2 * place + 1, reinterpret_cast<LPARAM>(&button));
    return button;
}

SIZE ToolBar::Size() const {
    RECT last{0, 0, 0, kButtonHeight};
    for (size_t place = 0; place < controls_.size(); ++place)
        if (controls_[place]->visible) last = ButtonAt(place);
    return {last.right + 2 * kMargin, last.bottom + kMargin};
}

size_t ToolBar::PlaceIn(const BarControl& control) const {
    const auto found =
        std::find_if(controls_.begin(), controls_.end(), [&](const auto& other) { return other.get() == &control; });
    return static_cast<size_t>(found - controls_.begin());
}

std::optional<RECT> ToolBar::PlaceOf(const BarControl& control) const {
    const size_t place = PlaceIn(control);
    if (place == controls_.size() || !control.visible) return std::nullopt;
    RECT button = ButtonAt(place);
    MapWindowPoints(window_, GetParent(window_), reinterpret_cast<POINT*>(&button), 2);
    return button;
}

HWND ToolBar::ComboOf(const BarControl& control) const {
    return GetDlgItem(window_, static_cast<int>(PlaceIn(control)));
}

BarSet::ControlPointer ToolBar::ControlOf(int command) const {
    const auto place = static_cast<size_t>(command);
    return place < controls_.size() ? controls_[place] : nullptr;
}

}  // namespace beacon::standin
