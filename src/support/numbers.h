#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as the settings, the log lines and the messages write them. Everything here is independent of the locale
/// and of the processor's rounding mode, which an in-process add-in shares with its host.
namespace beacon {

/// Decimal text with a leading "-" for negative values; window handles and tick counts are written this way.
std::wstring DecimalText(std::int64_t value);

/// Upper-case hexadecimal without prefix and without leading zeros; 0 gives "0". A negative value is written as its
/// 32 bits.
std::wstring HexText(std::uint32_t value);

/// Nearest whole number, halves to the even one. A value outside the 32-bit range gives the nearest end of the range,
/// not-a-number gives 0.
long RoundHalfEven(double value);

/// The 32-bit integer that a text stands for: blanks around it, a sign, decimals (rounded, halves to the even number)
/// and an exponent are understood. Empty, anything else in the text or a value that does not fit: nullopt.
std::optional<long> ParseLong(std::wstring_view text);

/// The major version in Outlook's version text: "10.0.2627" gives 10. When the part before the first point is empty or
/// longer than two characters ("2000.1"), and when there is no point, the whole text is the number. A text that is not
/// a number gives 9, the oldest version supported.
long GetMajorVersion(std::wstring_view version);

/// "StartAnalysisDelay" in milliseconds, always 1 or more. Missing, not a number, 0 or negative: 2000.
long StartAnalysisDelayFromText(std::optional<std::wstring_view> text);

/// "MaxDocUnits" in characters. Missing, not a number, 0 or outside 16 bits: 3072. Negative numbers pass.
std::int16_t MaxDocUnitsFromText(std::optional<std::wstring_view> text);

}  // namespace beacon
