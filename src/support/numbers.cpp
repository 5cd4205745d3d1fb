#include "support/numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace beacon {
namespace {

constexpr std::int64_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();

bool IsDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

bool IsBlank(wchar_t character) { return character == L' ' || (character >= L'\t' && character <= L'\r'); }

/// Reads the parts of a number from left to right.
class Reader {
public:
    explicit Reader(std::wstring_view text) : text_(text) {}

    bool AtEnd() const { return position_ == text_.size(); }

    bool Take(wchar_t wanted) {
        if (AtEnd() || text_[position_] != wanted) return false;
        ++position_;
        return true;
    }

    // True for a minus sign. Also takes a plus sign.
    bool TakeSign() {
        if (Take(L'-')) return true;
        Take(L'+');
        return false;
    }

    std::wstring_view TakeDigits() {
        const std::size_t start = position_;
        while (!AtEnd() && IsDigit(text_[position_])) ++position_;
        return text_.substr(start, position_ - start);
    }

private:
    std::wstring_view text_;
    std::size_t position_ = 0;
};

std::wstring_view TrimBlanks(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::wstring DecimalText(std::int64_t value) {
    const std::string digits = std::to_string(value);  // to_wstring would link printf
    return {digits.begin(), digits.end()};
}

std::wstring HexText(std::uint32_t value) {
    std::wstring digits;
    do {
        digits.insert(digits.begin(), L"0123456789ABCDEF"[value & 0xF]);
        value >>= 4;
    } while (value != 0);
    return digits;
}

long RoundHalfEven(double value) {
    if (std::isnan(value)) return 0;
    // nearbyint would depend on the host's rounding mode.
    double whole = std::floor(value);
    const double fraction = value - whole;
    if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
    if (whole <= static_cast<double>(kMin)) return static_cast<long>(kMin);
    if (whole >= static_cast<double>(kMax)) return static_cast<long>(kMax);
    return static_cast<long>(whole);
}

std::optional<long> ParseLong(std::wstring_view text) {
    Reader reader(TrimBlanks(text));
    const bool negative = reader.TakeSign();
    std::wstring digits(reader.TakeDigits());
    auto wholeDigits = static_cast<std::int64_t>(digits.size());
    if (reader.Take(L'.')) digits += reader.TakeDigits();
    if (digits.empty()) return std::nullopt;
    if (reader.Take(L'e') || reader.Take(L'E')) {
        const bool negativeExponent = reader.TakeSign();
        const std::wstring_view exponentDigits = reader.TakeDigits();
        if (exponentDigits.empty()) return std::nullopt;
        std::int64_t exponent = 0;
        for (const wchar_t digit : exponentDigits) {
            constexpr std::int64_t kBeyondAnyText = std::int64_t{1} << 40;
            exponent = std::min(exponent * 10 + (digit - L'0'), kBeyondAnyText);
        }
        wholeDigits += negativeExponent ? -exponent : exponent;
    }
    if (!reader.AtEnd()) return std::nullopt;

    // Without leading zeros, the value is 0.digits times 10 to the power of wholeDigits.
    const std::size_t zeros = std::min(digits.find_first_not_of(L'0'), digits.size());
    digits.erase(0, zeros);
    wholeDigits -= static_cast<std::int64_t>(zeros);
    if (digits.empty() || wholeDigits < 0) return 0;
    if (wholeDigits > 10) return std::nullopt;

    const auto split = static_cast<std::size_t>(wholeDigits);
    std::int64_t value = 0;
    for (std::size_t i = 0; i < split; ++i) value = value * 10 + (i < digits.size() ? digits[i] - L'0' : 0);
    if (split < digits.size()) {
        const bool beyondHalf = digits.find_first_not_of(L'0', split + 1) != std::wstring::npos;
        const wchar_t tenths = digits[split];
        if (tenths > L'5' || (tenths == L'5' && (beyondHalf || value % 2 != 0))) ++value;
    }
    value = negative ? -value : value;
    if (value < kMin || value > kMax) return std::nullopt;
    return static_cast<long>(value);
}

long GetMajorVersion(std::wstring_view version) {
    constexpr long kOldestSupported = 9;
    const std::size_t point = version.find(L'.');
    const bool isShort = point == 1 || point == 2;
    return ParseLong(isShort ? version.substr(0, point) : version).value_or(kOldestSupported);
}

long StartAnalysisDelayFromText(std::optional<std::wstring_view> text) {
    const long value = text ? ParseLong(*text).value_or(0) : 0;
    return value > 0 ? value : 2000;
}

std::int16_t MaxDocUnitsFromText(std::optional<std::wstring_view> text) {
    const long value = text ? ParseLong(*text).value_or(0) : 0;
    if (value == 0 || value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max())
        return 3072;
    return static_cast<std::int16_t>(value);
}

}  // namespace beacon
