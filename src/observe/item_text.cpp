#include "observe/item_text.h"

#include "observe/body_text.h"
#include "support/numbers.h"

namespace beacon {
namespace {

constexpr std::wstring_view kSeparator = L" ; ";

std::wstring ThreeTimes(std::wstring_view text) {
    std::wstring out(text);
    for (int i = 0; i < 2; ++i) {
        out += kSeparator;
        out += text;
    }
    return out;
}

std::wstring TitleOr(std::wstring_view title, std::wstring_view whenBlank) {
    return std::wstring(TrimSpaces(title).empty() ? whenBlank : title);
}

}  // namespace

std::wstring MailTitle(std::wstring_view subject) { return TitleOr(subject, L"No Subject"); }

std::wstring ContactTitle(std::wstring_view fullName) { return TitleOr(fullName, L"Unnamed Contact"); }

std::wstring ContactFullName(std::wstring_view first, std::wstring_view last) {
    std::wstring name(first);
    name += L' ';
    name += last;
    return name;
}

std::wstring DocumentId(std::int32_t hWnd, std::wstring_view name, std::int32_t tickCount) {
    std::wstring id = DecimalText(hWnd);
    id += L';';
    id += name;
    id += L';';
    id += DecimalText(tickCount);
    return id;
}

ContactTexts RepeatedContactTexts(std::wstring_view fullName, std::wstring_view company, std::wstring_view jobTitle) {
    std::wstring pair(fullName);
    pair += L' ';
    pair += company;
    pair += kSeparator;

    std::wstring weighted;
    for (const std::wstring_view part : {fullName, jobTitle, company}) {
        weighted += part;
        weighted += kSeparator;
    }
    weighted.reserve(weighted.size() * 64);
    for (int doublings = 0; doublings < 6; ++doublings) weighted += weighted;  // 64 times
    return {ThreeTimes(fullName), ThreeTimes(company), ThreeTimes(pair), std::move(weighted)};
}

}  // namespace beacon
