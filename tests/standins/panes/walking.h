#pragma once

#include <windows.h>

#include <mshtml.h>
#include <wrl/client.h>

#include <string>
#include <vector>

namespace beacon::test {

/// Window classes from parent to child; a null entry takes the first child of any class.
using Path = std::vector<const char*>;

/// The first child of each class in turn; null when the path breaks.
HWND Walk(HWND window, const Path& path);
/// The first descendant of the class, a window's own children before their descendants.
HWND Descendant(HWND parent, const char* windowClass);

/// A hidden top-level window like Outlook's, destroyed with the fixture.
class TopWindow {
public:
    TopWindow();
    ~TopWindow();

    operator HWND() const { return window_; }

private:
    HWND window_;
};

std::wstring EditSelection(HWND edit);
std::wstring WindowText(HWND window);

/// The document of an HTML viewer as a client takes it; null when none is given within a second.
Microsoft::WRL::ComPtr<IHTMLDocument> Document(HWND viewer);

}  // namespace beacon::test
