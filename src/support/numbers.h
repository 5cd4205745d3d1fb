#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers in settings, log lines and messages, independent of the locale and of the processor's rounding mode, which
/// the host can change.
namespace beacon {

/// Decimal text, with a leading "-" for negative values.
std::wstring DecimalText(std::int64_t value);

/// Upper-case hexadecimal without prefix and leading zeros; "0" for 0.
std::wstring HexText(std::uint32_t value);

/// The nearest integer, halves to the even one. A value beyond 32 bits gives the end of the range; not-a-number gives
/// 0.
long RoundHalfEven(double value);

/// The 32-bit integer in a text, which may have blanks around it, a sign, decimals (rounded, halves to the even number)
/// and an exponent. nullopt for any other text and for a value that does not fit.
std::optional<long> ParseLong(std::wstring_view text);

/// The major version in a version text of Outlook: 10 for "10.0.2627". If the part before the first point is empty or
/// longer than two characters, or if there is no point, the whole text is converted. No number gives 9, the oldest
/// supported version.
long GetMajorVersion(std::wstring_view version);

/// "StartAnalysisDelay" in milliseconds, 1 or more. 2000 if it is missing, no number, 0 or negative.
long StartAnalysisDelayFromText(std::optional<std::wstring_view> text);

/// "MaxDocUnits" in characters. 3072 if it is missing, no number, 0 or beyond 16 bits. Negative numbers are kept.
std::int16_t MaxDocUnitsFromText(std::optional<std::wstring_view> text);

}  // namespace beacon
