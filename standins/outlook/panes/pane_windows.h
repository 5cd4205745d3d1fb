#pragma once

#include <windows.h>

#include <string>

namespace beacon::standin {

inline constexpr wchar_t kDialogClass[] = L"#32770";
inline constexpr wchar_t kRichEditA[] = L"RichEdit20A";
inline constexpr wchar_t kRichEditW[] = L"RichEdit20W";
inline constexpr wchar_t kHtmlClass[] = L"Internet Explorer_Server";
inline constexpr wchar_t kWordClass[] = L"_WwG";

/// Loads the rich edit and registers the classes of the panes' plain windows; the HTML viewer's is its own business.
void RegisterPaneClasses();

/// A visible child window below its elder siblings, of no size yet. Class "#32770" makes a real child dialog. Throws
/// com::Error.
HWND CreatePaneWindow(HWND parent, const wchar_t* windowClass, const wchar_t* text, DWORD style);

/// A dialog without controls, in dialog units; null when it cannot be made.
HWND CreateBareDialog(HWND owner, DWORD style, short width, short height, DLGPROC procedure, LPARAM parameter);

/// Answers WM_PAINT for a window whose only content is this text.
void PaintText(HWND window, const std::wstring& text);

/// Throws com::Error for the thread's last error.
[[noreturn]] void ThrowLastError();

/// Waits for the object and lets other threads' messages to windows of this thread through meanwhile.
void AwaitAnswering(HANDLE object);

}  // namespace beacon::standin
