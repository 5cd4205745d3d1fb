#include "tests/standins/panes/walking.h"

#include <oleacc.h>
#include <richedit.h>

#include "com/text.h"

namespace beacon::test {

using Microsoft::WRL::ComPtr;

HWND Walk(HWND window, const Path& path) {
    for (const char* windowClass : path) {
        window = FindWindowExA(window, nullptr, windowClass, nullptr);
        if (window == nullptr) break;
    }
    return window;
}

HWND Descendant(HWND parent, const char* windowClass) {
    HWND found = FindWindowExA(parent, nullptr, windowClass, nullptr);
    for (HWND child = nullptr; found == nullptr;) {
        child = FindWindowExA(parent, child, nullptr, nullptr);
        if (child == nullptr) break;
        found = Descendant(child, windowClass);
    }
    return found;
}

TopWindow::TopWindow() {
    WNDCLASSA description{};
    description.lpfnWndProc = DefWindowProcA;
    description.lpszClassName = "rctrl_renwnd32";
    RegisterClassA(&description);
    window_ = CreateWindowExA(0, "rctrl_renwnd32", "Inbox", WS_OVERLAPPEDWINDOW, 0, 0, 800, 600, nullptr, nullptr,
                              nullptr, nullptr);
}

TopWindow::~TopWindow() {
    if (IsWindow(window_)) DestroyWindow(window_);
}

std::wstring EditSelection(HWND edit) {
    CHARRANGE range{};
    SendMessageA(edit, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    // The control writes a terminating character beyond the selection.
    std::vector<wchar_t> buffer(static_cast<size_t>(range.cpMax - range.cpMin) + 1);
    const auto length =
        static_cast<size_t>(SendMessageA(edit, EM_GETSELTEXT, 0, reinterpret_cast<LPARAM>(buffer.data())));
    char name[64];
    GetClassNameA(edit, name, sizeof name);
    if (std::string_view(name) == "RichEdit20A")
        return com::FromAnsi({reinterpret_cast<const char*>(buffer.data()), length});
    return {buffer.data(), length};
}

std::wstring WindowText(HWND window) {
    const LRESULT length = SendMessageA(window, WM_GETTEXTLENGTH, 0, 0);
    std::string buffer(static_cast<size_t>(length) + 1, '\0');
    const LRESULT read =
        SendMessageA(window, WM_GETTEXT, static_cast<WPARAM>(buffer.size()), reinterpret_cast<LPARAM>(buffer.data()));
    return com::FromAnsi(std::string_view(buffer).substr(0, static_cast<size_t>(read)));
}

ComPtr<IHTMLDocument> Document(HWND viewer) {
    DWORD_PTR answer = 0;
    SendMessageTimeoutA(viewer, RegisterWindowMessageA("WM_HTML_GETOBJECT"), 0, 0, SMTO_ABORTIFHUNG, 1000, &answer);
    ComPtr<IHTMLDocument> document;
    if (answer != 0) ObjectFromLresult(static_cast<LRESULT>(answer), IID_IHTMLDocument, 0, &document);
    return document;
}

}  // namespace beacon::test
