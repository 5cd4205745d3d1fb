#include "support/version_text.h"

#include "support/numbers.h"

namespace beacon {

long GetMajorVersion(std::wstring_view version) {
    constexpr long kOldestSupported = 9;
    std::wstring_view number = version;
    const std::size_t point = version.find(L'.');
    if (point == 1 || point == 2) number = version.substr(0, point);
    return ParseLong(number).value_or(kOldestSupported);
}

}  // namespace beacon
