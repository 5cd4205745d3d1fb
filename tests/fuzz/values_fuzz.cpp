// Settings and versions: whatever the registry or Outlook gives, a usable number comes out.
#include <cmath>
#include <cstring>
#include <optional>

#include "extract/class_paths.h"
#include "fuzz.h"
#include "observe/thresholds.h"
#include "support/numbers.h"
#include "support/string_values.h"

namespace beacon::fuzz {
namespace {

constexpr std::wstring_view kTokens[] = {L"2147483647", L"-2147483648", L"e-", L"E+99", L".5", L"0000", L"10.0."};

/// As the C library reads it, but for what only that understands (infinities, hexadecimal).
std::optional<long double> Number(const std::wstring& text) {
    if (text.find_first_not_of(L"0123456789+-.eE \t\r\n\v\f") != std::wstring::npos) return std::nullopt;
    const std::string bytes(text.begin(), text.end());
    char* end = nullptr;
    const long double value = std::strtold(bytes.c_str(), &end);
    const std::size_t rest = static_cast<std::size_t>(end - bytes.c_str());
    if (rest == 0 || bytes.find_first_not_of(" \t\r\n\v\f", rest) != std::string::npos) return std::nullopt;
    return value;
}

void TryNumber(const std::wstring& text) {
    constexpr long double kInexact = 1e-6L;
    const std::optional<long> parsed = ParseLong(text);
    const std::optional<long double> number = Number(text);
    if (parsed) {
        Require(number && std::fabs(*number - static_cast<long double>(*parsed)) <= 0.5L + kInexact);
        Require(ParseLong(DecimalText(*parsed)) == parsed);
    } else if (number) {
        Require(*number >= 2147483647.5L - kInexact || *number <= -2147483648.5L + kInexact);
    }
}

void TryVersion(const std::wstring& text) {
    const long version = GetMajorVersion(text);
    const bool isKnown = version >= 9 && version <= 12;
    Require(ExplorerSelectionClasses(version).has_value() == isKnown);
    Require(ItemDialogClasses(version).empty() != isKnown);
    for (long editor = 0; editor <= 5; ++editor) {
        Require(InspectorSelectionClasses(version, editor).has_value() == isKnown);
        Require(ItemBodyClasses(version, editor).empty() != isKnown);
    }
}

void TrySettings(const std::wstring& text) {
    const long delay = StartAnalysisDelayFromText(text);
    Require(delay >= 1 && MaxDocUnitsFromText(text) != 0);
    Require(InitialUpdateThreshold(delay) >= 0 && PeriodicUpdateThreshold(delay) >= 0);
    Require(BailOutUpdateThreshold(delay) >= 0);
}

void TryRounding(const std::uint8_t* data, std::size_t size) {
    double value = 0;
    if (size < sizeof value) return;
    std::memcpy(&value, data, sizeof value);
    const long rounded = RoundHalfEven(value);
    if (std::fabs(value) < 2147483647.0) Require(std::fabs(value - static_cast<double>(rounded)) <= 0.5);
}

void TryRegistryBytes(std::string_view bytes) {
    const std::string_view single = StripNulls(bytes);
    Require(bytes.starts_with(single) && single.find('\0') == std::string_view::npos);
    // As it is worded: each two NULs are replaced by one, from the left.
    std::string several(bytes);
    const std::string_view two("\0\0", 2);
    for (std::size_t at = several.find(two); at != std::string::npos; at = several.find(two, at + 1))
        several.erase(at, 1);
    Require(SeveralStrings(bytes) == several);
}

}  // namespace
}  // namespace beacon::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace beacon::fuzz;
    const std::wstring text = TextOf(data, size, kTokens);
    TryNumber(text);
    TryVersion(text);
    TrySettings(text);
    TryRounding(data, size);
    TryRegistryBytes({reinterpret_cast<const char*>(data), size});
    return 0;
}
