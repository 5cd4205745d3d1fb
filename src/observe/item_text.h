#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Titles, document ids and the weighted texts of a contact.
namespace beacon {

/// The subject, or "No Subject" if it is blank.
std::wstring MailTitle(std::wstring_view subject);

/// The full name, or "Unnamed Contact" if it is blank.
std::wstring ContactTitle(std::wstring_view fullName);

/// First and last name with one space between, also if either is empty.
std::wstring ContactFullName(std::wstring_view first, std::wstring_view last);

/// Window handle, name and tick count (ms, as a signed number): every send is a new document.
std::wstring DocumentId(std::int32_t hWnd, std::wstring_view name, std::int32_t tickCount);

/// The texts that weight a contact in the engine's analysis, in sending order. `weighted` is sent twice.
struct ContactTexts {
    std::wstring names;      // full name, 3 times
    std::wstring companies;  // company, 3 times
    std::wstring pairs;      // full name and company, 3 times
    std::wstring weighted;   // full name, job title and company, 64 times
};

ContactTexts RepeatedContactTexts(std::wstring_view fullName, std::wstring_view company, std::wstring_view jobTitle);

}  // namespace beacon
