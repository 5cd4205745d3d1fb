#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "extract/class_paths.h"

namespace beacon {

/// Finding Outlook's windows and the controls inside them. Every step is logged at level 2; nothing here raises an
/// error or sends a message to a window of another thread, except for reading a title.

/// The property of a window that has a listener.
inline constexpr char kListenerProperty[] = "PROP_OLK";

/// The part before the first NUL, or all of it. Refers to the text given.
inline std::wstring_view StripNulls(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

/// Handle as the search lines write it: 32 bits in upper-case hexadecimal.
std::wstring HandleText(HWND window);

/// The last window of a path of classes walked from `window`, one direct child a step; null when a step fails. Only the
/// first child of each class is tried. `routine` begins the log lines.
HWND WalkDown(std::wstring_view routine, HWND window, ClassPath path);
HWND FindWindowHierarchy(HWND window, ClassPath path);

/// Depth-first search below hParent (after the child hChildAfter) for a class and a title; null stands for any. The
/// parent's direct children come first. Null when nothing matches.
HWND FindDescendentWindow(HWND hParent, HWND hChildAfter, const char* className, const char* windowName);

/// Search among all top-level windows for a new item window with this identification. Its visibility test rejects every
/// window, so the result is always null and callers go on to their search by class and title; see DEVELOPERS.md.
HWND FindNewWindow(const std::wstring& identification, bool flag);

/// A window's title, or its class name when it has none. `kind` becomes "title" or "class".
std::wstring GetWindowIdentification(HWND window, std::wstring& kind, std::wstring& className);

std::wstring GetWindowClass(HWND window);

/// Whether it is a window of this process, not one that another has made to look like it.
bool IsOfThisProcess(HWND window);

/// The first top-level window of this process with this class and title, null standing for any title; null when there
/// is none.
HWND FindOwnWindow(const char* className, const wchar_t* title);

/// A dialog box is open over the window: a top-level dialog has it as its parent or owner.
bool IsDialogChild(HWND window);

}  // namespace beacon
