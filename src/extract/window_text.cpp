#include "extract/window_text.h"

#include <oleacc.h>
#include <richedit.h>

#include <algorithm>
#include <vector>

#include "com/text.h"
#include "extract/window_search.h"
#include "support/error_styles.h"
#include "support/foreign_window.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"
#include "support/string_values.h"
#include "support/system_library.h"

namespace beacon {
namespace {

constexpr long kShortestSelectionBuffer = 1024;
constexpr long kLongestField = 1 << 20;
constexpr wchar_t kRichEdit[] = L"RichEdit";  // prefix of their classes

// {626FC520-A41E-11CF-A731-00A0C9082637}
constexpr IID kHtmlDocument = {0x626FC520, 0xA41E, 0x11CF, {0xA7, 0x31, 0x00, 0xA0, 0xC9, 0x08, 0x26, 0x37}};

template <class Character>
LPARAM Address(std::vector<Character>& buffer) {
    return reinterpret_cast<LPARAM>(buffer.data());
}

/// Sends a message that asks a control for text; 0 without an answer. Windows of other processes get a time-out. Our
/// own process's windows do not: they may still write to the buffer after a time-out.
LRESULT Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam, bool inUnicode = false) {
    if (IsOfThisProcess(window)) return (inUnicode ? SendMessageW : SendMessageA)(window, message, wParam, lParam);
    // Checked first, since Wine ignores the time-out of messages that ask for text.
    if (!TakesMessages(window)) return 0;
    DWORD_PTR answer = 0;
    const auto send = inUnicode ? SendMessageTimeoutW : SendMessageTimeoutA;
    if (send(window, message, wParam, lParam, SMTO_ABORTIFHUNG, kForeignWindowTimeout, &answer) == 0) return 0;
    return static_cast<LRESULT>(answer);
}

bool IsRichEdit(HWND window) { return GetWindowClass(window).starts_with(kRichEdit); }

}  // namespace

std::wstring LPSTRtoBSTR(const char* address, long length) {
    if (length <= 0) return {};
    return std::wstring(StripNulls(com::FromAnsi({address, static_cast<size_t>(length)})));
}

std::wstring LPWSTRtoBSTR(const wchar_t* address, long length) {
    return length <= 0 ? std::wstring() : std::wstring(address, static_cast<size_t>(length));
}

std::wstring WindowGetText(HWND window) {
    LogMsg2(L"WindowGetText: SendMessage: WM_GETTEXTLENGTH");
    long length = static_cast<long>(Ask(window, WM_GETTEXTLENGTH, 0, 0));
    LogMsg2(L"WindowGetText: WM_GETTEXTLENGTH: returned:", length);
    if (length <= 0) return {};
    length = std::min(length, GetMaxDocUnits() - 1) + 1;
    if (length <= 0) return {};  // a negative limit
    const auto size = static_cast<size_t>(length) + 1;
    if (globals::gOutlookVersion == 9) {
        std::vector<wchar_t> buffer(size);
        const auto copied = Ask(window, WM_GETTEXT, static_cast<WPARAM>(length), Address(buffer), true);
        return LPWSTRtoBSTR(buffer.data(), std::min(static_cast<long>(copied), length));
    }
    std::vector<char> buffer(size);
    const auto copied = static_cast<long>(Ask(window, WM_GETTEXT, static_cast<WPARAM>(length), Address(buffer)));
    LogMsg2(L"WindowGetText: WM_GETTEXT: returned:", copied);
    if (copied <= 0) return {};
    return com::FromAnsi({buffer.data(), static_cast<size_t>(std::min(copied, length))});
}

com::Object WindowDOM(HWND window) {
    if (!IsOfThisProcess(window)) return {};  // calls to its document would have no time-out
    const UINT message = RegisterWindowMessageA("WM_HTML_GETOBJECT");
    if (message == 0) return {};
    // Loaded on first use, so that Outlook's start does not wait for it, and before the message is sent: only this
    // function releases the object that the answer stands for.
    static decltype(&ObjectFromLresult) objectFromAnswer = nullptr;
    if (objectFromAnswer == nullptr)
        objectFromAnswer = SystemFunction<decltype(ObjectFromLresult)>(L"oleacc.dll", "ObjectFromLresult");
    if (objectFromAnswer == nullptr) return {};
    DWORD_PTR answer = 0;
    SendMessageTimeoutA(window, message, 0, 0, SMTO_ABORTIFHUNG, kForeignWindowTimeout, &answer);
    if (answer == 0) return {};
    com::ComPtr<IDispatch> document;
    if (FAILED(objectFromAnswer(static_cast<LRESULT>(answer), kHtmlDocument, 0,
                                reinterpret_cast<void**>(document.GetAddressOf()))))
        return {};
    return com::Object(std::move(document));
}

std::wstring EditSelection(HWND control) {
    // Windows does not marshal the pointers of these messages: another process would write to an address of its own.
    if (!IsOfThisProcess(control)) return {};
    // EM_GETSELTEXT carries no size, so a rich edit is asked for the length first. Other controls, such as Word's,
    // give that message's number a meaning of their own.
    CHARRANGE range{};
    if (IsRichEdit(control)) Ask(control, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    const long length = std::max(range.cpMax - range.cpMin, kShortestSelectionBuffer);
    std::vector<wchar_t> buffer(2 * (static_cast<size_t>(length) + 1));  // four bytes a character, as UTF-8 may need
    const auto copied = static_cast<long>(Ask(control, EM_GETSELTEXT, 0, Address(buffer)));
    if (globals::gOutlookVersion != 9) return LPWSTRtoBSTR(buffer.data(), std::min(copied, length));
    return LPSTRtoBSTR(reinterpret_cast<const char*>(buffer.data()), std::min(copied, 4 * length));
}

std::wstring DocumentSelection(const com::Object& document) {
    return document.GetObject(L"selection").CallObject(L"createRange").GetText(L"text");
}

std::wstring GetLabelledFieldText(HWND dialog, const std::wstring& labelText, const char* labelClass) {
    std::wstring result;
    StopOnError([&] {
        const HWND label = FindWindowExA(dialog, nullptr, labelClass, com::ToAnsi(labelText).c_str());
        if (label == nullptr) return;
        const HWND field = GetWindow(label, GW_HWNDNEXT);
        if (field == nullptr || !IsRichEdit(field)) return;
        const auto length = std::min(static_cast<long>(Ask(field, WM_GETTEXTLENGTH, 0, 0)), kLongestField);
        if (length <= 0) return;
        std::vector<char> buffer(static_cast<size_t>(length) + 1);
        const auto copied = static_cast<long>(Ask(field, WM_GETTEXT, static_cast<WPARAM>(length) + 1, Address(buffer)));
        if (copied < 1) return;
        result = com::FromAnsi({buffer.data(), static_cast<size_t>(std::min(copied, length))});
        LogMsg2(L"GMII: ", labelText, L":", result);
    });
    return result;
}

}  // namespace beacon
