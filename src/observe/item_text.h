#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Titles, document ids and the weighted texts of a contact.
namespace beacon {

/// The subject as it is, or "No Subject" when it holds nothing but spaces.
std::wstring MailTitle(std::wstring_view subject);

/// The full name as it is, or "Unnamed Contact" when it holds nothing but spaces.
std::wstring ContactTitle(std::wstring_view fullName);

/// First and last name with one space between them, also when either is empty.
std::wstring ContactFullName(std::wstring_view first, std::wstring_view last);

/// Window handle, name and tick count (milliseconds, as a signed number), so that every send is a new document.
std::wstring DocumentId(std::int32_t hWnd, std::wstring_view name, std::int32_t tickCount);

/// The texts that weight a contact in the engine's analysis, in the order they are sent; weighted goes out twice.
struct ContactTexts {
    std::wstring names;      // full name, 3 times
    std::wstring companies;  // company, 3 times
    std::wstring pairs;      // full name and company, 3 times
    std::wstring weighted;   // full name, job title and company, 64 times
};

ContactTexts RepeatedContactTexts(std::wstring_view fullName, std::wstring_view company, std::wstring_view jobTitle);

}  // namespace beacon
