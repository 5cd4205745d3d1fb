#include "outlook/object_model/frame.h"

#include <algorithm>
#include <cwctype>
#include <utility>

#include "com/module.h"
#include "com/text.h"
#include "common/journal.h"
#include "outlook/object_model/events.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kClass[] = L"rctrl_renwnd32";

// The class may be registered already, for child windows. The frame sets its own window procedure in any case, which
// makes it an ANSI or a Unicode window.
void RegisterFrameClass() {
    WNDCLASSW description{};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = com::ModuleInstance();
    description.hbrBackground = GetSysColorBrush(COLOR_3DFACE);
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = kClass;
    RegisterClassW(&description);
}

std::wstring Lower(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return text;
}

}  // namespace

Frame::Frame(const std::wstring& kind, WindowKind windowKind, Outlook& host, int number)
    : AutomationObject(kind), host_(host), number_(number), lowerKind_(Lower(kind)), windowKind_(windowKind) {
    SetLabel(std::to_wstring(number));
    unicode_ = host.Settings().majorVersion != 9;
}

Frame::~Frame() {
    if (window_ != nullptr) DestroyWindow(std::exchange(window_, nullptr));
}

std::wstring Frame::Name() const {
    return lowerKind_ + L" " + std::to_wstring(number_) + L" handle=" + DecimalHandle(window_);
}

void Frame::SayEvent(const wchar_t* name) const {
    Say(L"event " + std::wstring(name) + L" " + Name() + L" sinks=" + std::to_wstring(Sinks()));
}

void Frame::AddFrameMembers() {
    AddProperty(0x2111, L"Caption", [this] { return com::FromText(Title()); });
    AddProperty(0x2100, L"CommandBars", [this] {
        if (bars_ == nullptr) com::Raise(com::kNoObject);  // before Open
        return HandOut(bars_->CommandBars());
    });
}

void Frame::Open() {
    RegisterFrameClass();
    const int offset = 20 * number_;
    window_ = CreateWindowExW(0, kClass, L"", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, offset, offset, 800, 600, nullptr,
                              nullptr, com::ModuleInstance(), nullptr);
    if (window_ == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    const auto setProcedure = unicode_ ? &SetWindowLongPtrW : &SetWindowLongPtrA;
    setProcedure(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Frame::WindowProcedure));
    RefreshTitle();
    bars_ = std::make_unique<CommandBarsHost>(window_, windowKind_, host_.Bars());
    bars_->SetHeightChanged([this] { LayOut(); });
    bars_->SetListener([this](const std::wstring& line) { Say(L"event " + line + L" " + Name()); });
    BuildContent();
    LayOut();
}

void Frame::RefreshTitle() {
    if (window_ == nullptr) return;
    const std::wstring title = Title();
    if (unicode_)
        SetWindowTextW(window_, title.c_str());
    else
        SetWindowTextA(window_, com::ToAnsi(title).c_str());
}

void Frame::Show() {
    ShowWindow(window_, SW_SHOW);
    UpdateWindow(window_);
    Activate();
}

void Frame::Activate() {
    if (window_ == nullptr) return;
    const auto self = shared_from_this();  // a sink of the event may close the window
    if (GetActiveWindow() != window_) {
        SetForegroundWindow(window_);
        if (window_ != nullptr && GetActiveWindow() != window_) SetActiveWindow(window_);
    }
    // No message comes if the window was active already or the display refuses the activation.
    if (window_ != nullptr && !active_) ActivationChanged(true);
}

void Frame::ActivationChanged(bool active) {
    if (active == active_ || host_.AddinsAreGone()) return;
    active_ = active;
    const auto self = shared_from_this();
    if (active) host_.FrameActivated(*this);
    Raise(active ? L"Activate" : L"Deactivate", active ? events::kActivate : events::kDeactivate);
}

void Frame::Destroy() {
    const auto self = shared_from_this();
    if (window_ == nullptr) return;
    DestroyContent();
    dialog_.reset();
    pane_.reset();
    bars_.reset();
    active_ = false;
    DestroyWindow(std::exchange(window_, nullptr));
    Retire();
}

void Frame::OpenDialog(const std::wstring& title) { dialog_ = ModalDialog::Open(window_, title); }

bool Frame::CloseDialog() {
    const bool open = dialog_ != nullptr && dialog_->IsOpen();
    dialog_.reset();
    return open;
}

void Frame::ShowInPane(const Item* item, bool reading) {
    // The reading pane shows mails only; an item's own window shows any item.
    const bool shown = item != nullptr && (!reading || item->Data().itemClass == ItemClass::Mail);
    const Editor editor = shown ? static_cast<Editor>(item->Data().editorType) : Editor::None;
    if (pane_ == nullptr || editor != paneEditor_) {
        const int version = host_.Settings().majorVersion;
        pane_.reset();
        pane_ = reading ? ItemPane::ForExplorer(window_, version, editor)
                        : ItemPane::ForInspector(window_, version, editor);
        paneEditor_ = editor;
        LayOut();
    }
    if (!shown) return;
    const ItemData& data = item->Data();
    pane_->Show({data.senderName, data.receivedBy.empty() ? data.to : data.receivedBy, data.subject, data.body});
}

void Frame::LayOut() {
    if (window_ == nullptr) return;
    RECT area{};
    GetClientRect(window_, &area);
    if (bars_ != nullptr) {
        bars_->Resize(area.right);
        area.top = std::min<LONG>(area.bottom, bars_->Height());
    }
    Layout(area);
    if (pane_ != nullptr) pane_->Resize(PaneArea(area));
}

LRESULT CALLBACK Frame::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* frame = reinterpret_cast<Frame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (frame != nullptr && frame->window_ == window) return frame->Handle(message, wParam, lParam);
    } catch (...) {
        Say(L"error in a window procedure: " + std::wstring(com::CurrentError().Description()));
    }
    return Default(window, message, wParam, lParam);
}

LRESULT Frame::Default(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto procedure = IsWindowUnicode(window) ? &DefWindowProcW : &DefWindowProcA;
    return procedure(window, message, wParam, lParam);
}

LRESULT Frame::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto self = shared_from_this();
    switch (message) {
        case WM_ACTIVATE: {
            const LRESULT result = Default(window_, message, wParam, lParam);
            ActivationChanged(LOWORD(wParam) != WA_INACTIVE);
            return result;
        }
        case WM_NOTIFY: return Notify(*reinterpret_cast<NMHDR*>(lParam));
        case WM_SIZE: LayOut(); return 0;
        case WM_CLOSE: host_.CloseFrame(*this); return 0;
        default: return Default(window_, message, wParam, lParam);
    }
}

}  // namespace beacon::standin
