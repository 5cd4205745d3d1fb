#include "outlook/panes/pane_windows.h"

#include <algorithm>
#include <string_view>

#include "com/error.h"
#include "com/module.h"

namespace beacon::standin {
namespace {

INT_PTR CALLBACK ChildDialogProcedure(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

LRESULT CALLBACK WordProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_PAINT) return DefWindowProcW(window, message, wParam, lParam);
    try {
        std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)), L'\0');
        GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
        PaintText(window, text);
    } catch (...) {
        ValidateRect(window, nullptr);
    }
    return 0;
}

}  // namespace

// An existing class of this name is as good.
void RegisterPaneClass(const wchar_t* name, WNDPROC procedure) {
    WNDCLASSW description{};
    description.lpfnWndProc = procedure;
    description.hInstance = com::ModuleInstance();
    description.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = name;
    RegisterClassW(&description);
}

void RegisterPaneClasses() {
    static const HMODULE richEdit = LoadLibraryW(L"riched20.dll");
    if (richEdit == nullptr) ThrowLastError();
    for (const wchar_t* name :
         {L"AfxWnd", L"AfxWndA", L"AfxWndW", L"rctrl_renwnd32", L"_WwB", L"CommandBarDock", L"PaneFrame"})
        RegisterPaneClass(name, DefWindowProcW);
    RegisterPaneClass(kWordClass, WordProcedure);
}

HWND CreatePaneWindow(HWND parent, const wchar_t* windowClass, const wchar_t* text, DWORD style) {
    const HWND window =
        windowClass == std::wstring_view(kDialogClass)
            ? CreateBareDialog(parent, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | DS_CONTROL | style,
                               0, 0, ChildDialogProcedure, 0)
            : CreateWindowExW(0, windowClass, text, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | style,
                              0, 0, 0, 0, parent, nullptr, com::ModuleInstance(), nullptr);
    if (window == nullptr) ThrowLastError();
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    return window;
}

HWND CreateBareDialog(HWND owner, DWORD style, short width, short height, DLGPROC procedure, LPARAM parameter) {
    // After the header: no menu, default class, no title.
    struct {
        DLGTEMPLATE header;
        WORD menu, windowClass, title;
    } description{};

    description.header.style = style;
    description.header.cx = width;
    description.header.cy = height;
    return CreateDialogIndirectParamW(com::ModuleInstance(), &description.header, owner, procedure, parameter);
}

void PaintText(HWND window, const std::wstring& text) {
    PAINTSTRUCT paint;
    const HDC device = BeginPaint(window, &paint);
    RECT area{};
    GetClientRect(window, &area);
    SetBkMode(device, TRANSPARENT);
    const HGDIOBJ earlier = SelectObject(device, GetStockObject(DEFAULT_GUI_FONT));
    // More than fits; drawing a long text takes long.
    DrawTextW(device, text.c_str(), static_cast<int>(std::min<size_t>(text.size(), 4000)), &area,
              DT_NOPREFIX | DT_EXPANDTABS | DT_WORDBREAK);
    SelectObject(device, earlier);
    EndPaint(window, &paint);
}

void ThrowLastError() {
    const DWORD error = GetLastError();
    com::Check(error == 0 ? E_FAIL : HRESULT_FROM_WIN32(error));
    com::Raise(com::kCannotCreateObject);
}

}  // namespace beacon::standin
