#pragma once

#include <string>

#include "com/object.h"

namespace beacon {

/// The texts of an item, from its MAPI properties. Where Outlook 2000 returns nothing, a mail's texts come from the
/// controls of its window (hWnd, 0 for none). Every reader catches its own errors and then usually returns "". Fields
/// have at most 4,096 characters.

/// At most "MaxDocUnits" characters. editorType: 1 plain text, 2 HTML, 3 rich text, 4 Word; 0 for no window reading.
std::wstring GetMailItemBody(const com::Object& item, long hWnd, long editorType);
std::wstring GetMailItemSenderName(const com::Object& item, long hWnd);
std::wstring GetMailItemReceivedByName(const com::Object& item, long hWnd);
std::wstring GetMailItemSubject(const com::Object& item, long hWnd);

std::wstring GetContactItemFirstName(const com::Object& item);
std::wstring GetContactItemLastName(const com::Object& item);
std::wstring GetContactItemCompanyName(const com::Object& item);
std::wstring GetContactItemJobTitle(const com::Object& item);
std::wstring GetContactItemEmail(const com::Object& item);

/// The body shown in an item window; "" if the window lacks the version's controls.
std::wstring InspectorGetMailItemBody(long hWnd, long editorType);

}  // namespace beacon
