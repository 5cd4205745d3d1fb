#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "extract/class_paths.h"

namespace beacon {

/// Finds Outlook's windows and their controls. Logs every step at level 2. Raises no errors, and sends no messages to
/// windows of other threads, except to read a title.

/// The property of a window that a listener follows.
inline constexpr char kListenerProperty[] = "PROP_OLK";

/// A handle as written in the log: 32 bits in upper-case hexadecimal.
std::wstring HandleText(HWND window);

/// Follows a path of classes from `window`, always to the first child of the class. Returns the last window; null when
/// a step fails or `window` is null. Log lines start with `routine`.
HWND WalkDown(std::wstring_view routine, HWND window, ClassPath path);
HWND FindWindowHierarchy(HWND window, ClassPath path);

/// Searches depth-first below hParent, after the child hChildAfter, for a class and a title; null matches any. Tries
/// direct children first. Null if nothing matches.
HWND FindDescendentWindow(HWND hParent, HWND hChildAfter, const char* className, const char* windowName);

/// Searches the top-level windows for a new item window. Its visibility test intentionally rejects every window, so the
/// result is always null, and callers search by class and title; see DEVELOPERS.md.
HWND FindNewWindow(const std::wstring& identification, bool flag);

/// A window's title, or its class name if it has no title. Sets `kind` to "title" or "class".
std::wstring GetWindowIdentification(HWND window, std::wstring& kind, std::wstring& className);

std::wstring GetWindowClass(HWND window);

/// Whether the window belongs to this process; others can create windows with the same class and title.
bool IsOfThisProcess(HWND window);

/// The first top-level window of this process with this class and title; a null title matches any. Null if there is
/// none.
HWND FindOwnWindow(const char* className, const wchar_t* title);

/// Whether a dialog is open over the window, that is, has it as parent or owner.
bool IsDialogChild(HWND window);

}  // namespace beacon
