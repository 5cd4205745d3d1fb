#include "outlook/bars/tool_bar.h"

#include <algorithm>
#include <array>

#include "com/module.h"

namespace beacon::standin {
namespace {

constexpr int kSeparator = 0x4000;  // and the control's place: the command of the separator before it
constexpr int kButtonHeight = 22;
constexpr int kComboWidth = 100;
constexpr int kMargin = 3;

int CommandAt(size_t place) { return static_cast<int>(place); }

/// Adds what the face shows; gives its index.
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

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}

ToolBar::ToolBar(HWND parent, BarSet::BarPointer bar, SUBCLASSPROC edit, void* data)
    : bar_(std::move(bar)),
      controls_(bar_->controls),
      combos_(controls_.size()),
      window_(CreateWindowExW(0, TOOLBARCLASSNAMEW, bar_->name.c_str(),
                              WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST |
                                  TBSTYLE_TOOLTIPS | CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER,
                              0, 0, 0, 0, parent, nullptr, com::ModuleInstance(), nullptr)),
      faces_(ImageList_Create(kFaceSize, kFaceSize, ILC_COLOR24 | ILC_MASK, 0, 8), &ImageList_Destroy) {
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SendMessageW(window_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(window_, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS);
    SendMessageW(window_, TB_SETBITMAPSIZE, 0, 0);  // no room for faces where there is none
    SendMessageW(window_, TB_SETBUTTONSIZE, 0, MAKELPARAM(kButtonHeight, kButtonHeight));
    for (size_t place = 0; place < controls_.size(); ++place) {
        TBBUTTON buttons[2]{};
        buttons[0].idCommand = kSeparator + CommandAt(place);
        buttons[0].fsStyle = BTNS_SEP;
        buttons[0].fsState = TBSTATE_HIDDEN;
        buttons[1].idCommand = CommandAt(place);
        buttons[1].iBitmap = I_IMAGENONE;
        SendMessageW(window_, TB_ADDBUTTONSW, 2, reinterpret_cast<LPARAM>(buttons));
        if (controls_[place]->type != kComboBoxControl) continue;
        const HWND combo =
            CreateWindowExW(0, L"COMBOBOX", nullptr, WS_CHILD | WS_VSCROLL | CBS_DROPDOWN | CBS_AUTOHSCROLL, 0, 0,
                            kComboWidth, 200, window_, nullptr, com::ModuleInstance(), nullptr);
        SendMessageW(combo, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window_, WM_GETFONT, 0, 0)), FALSE);
        SetWindowSubclass(EditOf(combo), edit, 0, reinterpret_cast<DWORD_PTR>(data));
        combos_[place].window = combo;
    }
}

ToolBar::~ToolBar() { DestroyWindow(window_); }

void ToolBar::Update() {
    ImageList_RemoveAll(faces_.get());
    const bool any =
        std::any_of(controls_.begin(), controls_.end(), [](const auto& control) { return ShowsFace(*control); });
    SendMessageW(window_, TB_SETIMAGELIST, 0, any ? reinterpret_cast<LPARAM>(faces_.get()) : 0);
    bool first = true;
    for (size_t place = 0; place < controls_.size(); ++place) {
        const BarControl& control = *controls_[place];
        const bool separated = control.visible && control.beginGroup && !first;
        first = first && !control.visible;
        SendMessageW(window_, TB_HIDEBUTTON, static_cast<WPARAM>(kSeparator + CommandAt(place)),
                     separated ? FALSE : TRUE);
        UpdateButton(place);
    }
    for (size_t place = 0; place < controls_.size(); ++place)
        if (combos_[place].window != nullptr) {
            UpdateCombo(combos_[place], *controls_[place]);
            RECT button{};
            SendMessageW(window_, TB_GETITEMRECT, 2 * place + 1, reinterpret_cast<LPARAM>(&button));
            RECT box{};
            GetWindowRect(combos_[place].window, &box);
            SetWindowPos(combos_[place].window, nullptr, button.left,
                         (button.top + button.bottom - (box.bottom - box.top)) / 2, button.right - button.left, 200,
                         SWP_NOZORDER | SWP_NOACTIVATE | (controls_[place]->visible ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
        }
    InvalidateRect(window_, nullptr, TRUE);
}

void ToolBar::UpdateButton(size_t place) {
    const BarControl& control = *controls_[place];
    const int command = CommandAt(place);
    std::wstring caption = control.caption;
    TBBUTTONINFOW info{};
    info.cbSize = sizeof info;
    info.dwMask = TBIF_STATE | TBIF_STYLE | TBIF_SIZE | TBIF_IMAGE | TBIF_TEXT;
    info.pszText = caption.data();
    info.iImage = ShowsFace(control) ? AddFace(faces_.get(), control.face) : I_IMAGENONE;
    info.cx = static_cast<WORD>(control.width);
    // The user may be pressing it.
    const auto state = SendMessageW(window_, TB_GETSTATE, static_cast<WPARAM>(command), 0) & TBSTATE_PRESSED;
    info.fsState =
        static_cast<BYTE>(state | (control.enabled ? TBSTATE_ENABLED : 0) | (control.visible ? 0 : TBSTATE_HIDDEN) |
                          (control.state == -1 ? TBSTATE_CHECKED : 0));
    if (control.type == kComboBoxControl) {
        info.fsStyle = BTNS_SEP;
        if (info.cx == 0) info.cx = kComboWidth;
    } else {
        info.fsStyle =
            static_cast<BYTE>((info.cx == 0 ? BTNS_AUTOSIZE : 0) | (ShowsCaption(control) ? BTNS_SHOWTEXT : 0));
    }
    SendMessageW(window_, TB_SETBUTTONINFOW, static_cast<WPARAM>(command), reinterpret_cast<LPARAM>(&info));
}

void ToolBar::UpdateCombo(Combo& combo, const BarControl& control) {
    const HWND edit = EditOf(combo.window);
    EnableWindow(combo.window, control.enabled ? TRUE : FALSE);
    const bool entering = GetFocus() == edit;
    const std::wstring text = entering ? WindowText(edit) : control.text;
    const auto selection = SendMessageW(edit, EM_GETSEL, 0, 0);
    if (combo.items != control.items) {
        SendMessageW(combo.window, CB_RESETCONTENT, 0, 0);
        for (const std::wstring& item : control.items)
            SendMessageW(combo.window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
        combo.items = control.items;
    }
    if (!entering) SendMessageW(combo.window, CB_SETCURSEL, static_cast<WPARAM>(control.listIndex - 1), 0);
    if (WindowText(edit) == text) return;
    SetWindowTextW(edit, text.c_str());
    if (entering) SendMessageW(edit, EM_SETSEL, LOWORD(selection), HIWORD(selection));
}

SIZE ToolBar::Size() const {
    RECT last{0, 0, 0, kButtonHeight};
    for (size_t place = 0; place < controls_.size(); ++place) {
        RECT button{};
        SendMessageW(window_, TB_GETITEMRECT, 2 * place + 1, reinterpret_cast<LPARAM>(&button));
        if (controls_[place]->visible) last = button;
    }
    return {last.right + 2 * kMargin, last.bottom + kMargin};
}

size_t ToolBar::PlaceIn(const BarControl& control) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [&](const BarSet::ControlPointer& other) { return other.get() == &control; });
    return static_cast<size_t>(found - controls_.begin());
}

std::optional<RECT> ToolBar::PlaceOf(const BarControl& control) const {
    const size_t place = PlaceIn(control);
    if (place == controls_.size() || !control.visible) return std::nullopt;
    RECT button{};
    SendMessageW(window_, TB_GETITEMRECT, 2 * place + 1, reinterpret_cast<LPARAM>(&button));
    MapWindowPoints(window_, GetParent(window_), reinterpret_cast<POINT*>(&button), 2);
    return button;
}

HWND ToolBar::ComboOf(const BarControl& control) const {
    const size_t place = PlaceIn(control);
    return place == controls_.size() ? nullptr : combos_[place].window;
}

BarSet::ControlPointer ToolBar::ControlOf(HWND combo) const {
    for (size_t place = 0; place < controls_.size(); ++place)
        if (combos_[place].window == combo) return controls_[place];
    return nullptr;
}

BarSet::ControlPointer ToolBar::ControlOf(UINT command) const {
    return command < controls_.size() ? controls_[command] : nullptr;
}

}  // namespace beacon::standin
