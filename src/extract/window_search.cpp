#include "extract/window_search.h"

#include "com/text.h"
#include "support/error_styles.h"
#include "support/log.h"
#include "support/numbers.h"
#include "support/string_values.h"

namespace beacon {
namespace {

constexpr int kClassNameLength = 64;

std::wstring Wide(const char* text) { return text == nullptr ? std::wstring() : com::FromAnsi(text); }

long HandleNumber(HWND window) { return HandleToLong(window); }

/// The one search that can run at a time.
struct NewWindowSearch {
    bool busy = false;
    bool flag = false;  // never read
    std::wstring ident;
    bool found = false;
    HWND result = nullptr;
};

NewWindowSearch g_search;

BOOL CALLBACK EnumWindowProc(HWND window, LPARAM) {
    // Intentional: true for IsWindowVisible's results 0 and 1, so that the search finds nothing and callers search by
    // class and title.
    if (~IsWindowVisible(window) != 0) return TRUE;
    if (GetWindowClass(window) != Wide(kOutlookClass)) return TRUE;
    std::wstring kind;
    std::wstring className;
    const std::wstring ident = GetWindowIdentification(window, kind, className);
    LogMsg2(L"EnumWindowProc - GetWindowIdentification returned: [", ident, L"]");
    if (ident != g_search.ident) return TRUE;
    if (GetPropA(window, kListenerProperty) != nullptr)
        LogMsg2(L"EnumWindowProc - Dup hWnd(", HandleNumber(window), L") discarded");
    LogMsg2(L"FindNewWindow found: [", ident, L"-", HandleNumber(window), L"]");
    g_search.found = true;
    g_search.result = window;
    return FALSE;
}

}  // namespace

std::wstring HandleText(HWND window) { return HexText(static_cast<std::uint32_t>(HandleNumber(window))); }

HWND WalkDown(std::wstring_view routine, HWND window, ClassPath path) {
    // Without a parent FindWindowEx would search the desktop.
    for (size_t i = 0; i < path.size() && window != nullptr; ++i) {
        window = FindWindowExA(window, nullptr, path[i], nullptr);
        LogMsg2(routine, L"(", static_cast<long>(i), L") FindWindowEx(hWnd, 0, ", Wide(path[i]),
                L", vbNullString) returned ", HandleText(window));
    }
    return window;
}

HWND FindWindowHierarchy(HWND window, ClassPath path) { return WalkDown(L"FindWindowHierarchy", window, path); }

HWND FindDescendentWindow(HWND hParent, HWND hChildAfter, const char* className, const char* windowName) {
    LogMsg2(L"FindDescendentWindow(", HandleText(hParent), L",", HandleText(hChildAfter), L",", Wide(className), L",",
            Wide(windowName), L")");
    HWND result = FindWindowExA(hParent, hChildAfter, className, windowName);
    if (result != nullptr) return result;
    HWND child = FindWindowExA(hParent, hChildAfter, nullptr, nullptr);
    LogMsg2(L"FindDescendentWindow: FindWindowEx(", HandleText(hParent), L",", HandleText(hChildAfter), L")=",
            HandleText(child));
    while (child != nullptr && result == nullptr) {
        result = FindDescendentWindow(child, nullptr, className, windowName);
        if (result == nullptr) child = FindWindowExA(hParent, child, nullptr, nullptr);
    }
    return result;
}

HWND FindNewWindow(const std::wstring& identification, bool flag) {
    if (g_search.busy) return nullptr;
    g_search = {};
    g_search.busy = true;
    HWND result = nullptr;
    StopOnError([&] {
        g_search.flag = flag;
        g_search.ident = StripNulls(identification);
        EnumWindows(&EnumWindowProc, 0);
        if (g_search.found) result = g_search.result;
    });
    g_search.busy = false;
    return result;
}

std::wstring GetWindowIdentification(HWND window, std::wstring& kind, std::wstring& className) {
    className = GetWindowClass(window);
    const int length = GetWindowTextLengthA(window);
    if (length <= 0) {
        kind = L"class";
        return className;
    }
    kind = L"title";
    std::string title(static_cast<size_t>(length) + 1, '\0');
    GetWindowTextA(window, title.data(), length + 1);
    return std::wstring(StripNulls(com::FromAnsi(title)));
}

std::wstring GetWindowClass(HWND window) {
    char name[kClassNameLength + 1] = {};
    GetClassNameA(window, name, kClassNameLength);
    return com::FromAnsi(name);
}

bool IsOfThisProcess(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
}

HWND FindOwnWindow(const char* className, const wchar_t* title) {
    HWND window = nullptr;
    do window = FindWindowExW(nullptr, window, Wide(className).c_str(), title);
    while (window != nullptr && !IsOfThisProcess(window));
    return window;
}

bool IsDialogChild(HWND window) {
    HWND dialog = nullptr;
    while ((dialog = FindWindowExA(nullptr, dialog, kDialogClass, nullptr)) != nullptr)
        if (GetParent(dialog) == window) return true;
    return false;
}

}  // namespace beacon
