#include "extract/item_readers.h"

#include <algorithm>

#include "extract/class_paths.h"
#include "extract/mapi_wrapper.h"
#include "extract/window_search.h"
#include "extract/window_text.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"
#include "support/string_values.h"

namespace beacon {
namespace {

// Property tags, as strings: the low half 001E asks for 8-bit text, 001F for Unicode.
constexpr long kBody = 0x1000001E;
constexpr long kSenderName = 0x0C1A001E;
constexpr long kReceivedByName = 0x004E001E;  // not MAPI's tag of that name; readers expect this one
constexpr long kSubject = 0x0037001E;
constexpr long kGivenName = 0x3A06001F;
constexpr long kSurname = 0x3A11001F;
constexpr long kCompanyName = 0x3A16001F;
constexpr long kTitle = 0x3A17001F;
constexpr long kEmailAddress = 0x3003001F;

// In characters; real fields are shorter. Each field stands in every message about its item, or many times in one, so
// without a limit a crafted item could block Outlook.
constexpr size_t kLongestItemField = 4096;

HWND Window(long hWnd) { return static_cast<HWND>(LongToHandle(hWnd)); }

HWND ItemDialog(long hWnd) { return FindWindowHierarchy(Window(hWnd), ItemDialogClasses(globals::gOutlookVersion)); }

std::wstring HeaderText(long hWnd, const wchar_t* label) {
    const HWND dialog = ItemDialog(hWnd);
    return dialog == nullptr ? std::wstring() : GetLabelledFieldText(dialog, label, "Static");
}

// Outlook 2000 has no properties of an item that is being composed, so a mail's window is read. The object model is
// never used: each read raises Outlook's security prompt.
std::wstring ItemField(const wchar_t* reader, const com::Object& item, long tag, long hWnd = 0,
                       const wchar_t* label = nullptr) {
    std::wstring value;
    StopOnError([&] {
        LogMsg2(reader);
        InitMapiWrapper();
        value = MapiText(item, tag);
        if (value.empty() && globals::gOutlookVersion == 9 && hWnd != 0) value = HeaderText(hWnd, label);
    });
    Shorten(value, kLongestItemField);
    return value;
}

std::wstring DocumentBody(HWND viewer) {
    const com::Object document = WindowDOM(viewer);
    if (!document) {
        LogMsg2(L"InspectorGetMailItemBodySub(9) WindowDOM(hWnd) returned nothing");
        return {};
    }
    std::wstring text = document.GetObject(L"body").GetText(L"innerText");
    Shorten(text, static_cast<size_t>(std::max(GetMaxDocUnits(), 0L)));
    LogMsg2(L"InspectorGetMailItemBodySub(8) innerText=[", text, L"]");
    return text;
}

std::wstring InspectorGetMailItemBodySub(HWND window, ClassPath path) {
    std::wstring text;
    const auto read = [&] {
        LogMsg2(L"InspectorGetMailItemBodySub() called");
        window = WalkDown(L"InspectorGetMailItemBodySub", window, path);
        if (window != nullptr) text = LeadsToHtmlViewer(path) ? DocumentBody(window) : WindowGetText(window);
    };
    ReportOnError(read, [](const com::Error& error) {
        LogMsg2(L"InspectorGetMailItemBodySub: Exception; ", error.Description());
    });
    return text;
}

}  // namespace

std::wstring GetMailItemBody(const com::Object& item, long hWnd, long editorType) {
    std::wstring body;
    StopOnError([&] {
        LogMsg2(L"GetMailItemBody(1)");
        InitMapiWrapper();
        body = MapiTextLimited(item, kBody, GetMaxDocUnits());
        if (!body.empty() || globals::gOutlookVersion != 9 || editorType == 0) return;
        LogMsg2(L"GetMailItemBody(3)");
        if (hWnd != 0) body = InspectorGetMailItemBody(hWnd, editorType);
    });
    return body;
}

std::wstring InspectorGetMailItemBody(long hWnd, long editorType) {
    const HWND dialog = ItemDialog(hWnd);
    LogMsg2(L"InspectorGetMailItemBody() hDialog=", HandleText(dialog));
    if (dialog == nullptr) return {};
    return InspectorGetMailItemBodySub(dialog, ItemBodyClasses(globals::gOutlookVersion, editorType));
}

std::wstring GetMailItemSenderName(const com::Object& item, long hWnd) {
    return ItemField(L"GetMailItemSenderName", item, kSenderName, hWnd, L"From");
}

std::wstring GetMailItemReceivedByName(const com::Object& item, long hWnd) {
    return ItemField(L"GetMailItemReceivedByName", item, kReceivedByName, hWnd, L"To");
}

std::wstring GetMailItemSubject(const com::Object& item, long hWnd) {
    return ItemField(L"GetMailItemSubject", item, kSubject, hWnd, L"Sub&ject:");
}

std::wstring GetContactItemFirstName(const com::Object& item) {
    return ItemField(L"GetContactItemFirstName", item, kGivenName);
}

std::wstring GetContactItemLastName(const com::Object& item) {
    return ItemField(L"GetContactItemLastName", item, kSurname);
}

std::wstring GetContactItemCompanyName(const com::Object& item) {
    return ItemField(L"GetContactItemCompanyName", item, kCompanyName);
}

std::wstring GetContactItemJobTitle(const com::Object& item) {
    return ItemField(L"GetContactItemJobTitle", item, kTitle);
}

std::wstring GetContactItemEmail(const com::Object& item) {
    return ItemField(L"GetContactItemEmail", item, kEmailAddress);
}

}  // namespace beacon
