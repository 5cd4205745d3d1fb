#pragma once

#include <windows.h>

#include <string>

namespace beacon::standin {

inline constexpr wchar_t kDialogClass[] = L"#32770";
inline constexpr wchar_t kRichEditA[] = L"RichEdit20A";
inline constexpr wchar_t kRichEditW[] = L"RichEdit20W";
inline constexpr wchar_t kHtmlClass[] = L"Internet Explorer_Server";
inline constexpr wchar_t kWordClass[] = L"_WwG";

void RegisterPaneClass(const wchar_t* name, WNDPROC procedure);

/// Loads the rich edit and registers all classes of the panes but the HTML viewer's. Throws com::Error.
void RegisterPaneClasses();

/// Creates a visible child window of size 0, last in z-order. Class "#32770" creates a child dialog. Throws com::Error.
HWND CreatePaneWindow(HWND parent, const wchar_t* windowClass, const wchar_t* text, DWORD style);

/// Creates a dialog without controls, in dialog units; null on failure.
HWND CreateBareDialog(HWND owner, DWORD style, short width, short height, DLGPROC procedure, LPARAM parameter);

/// Handles WM_PAINT by drawing this text, wrapped to the width of the window.
void PaintText(HWND window, const std::wstring& text);

/// Throws com::Error for GetLastError.
[[noreturn]] void ThrowLastError();

}  // namespace beacon::standin
