#pragma once

#include <string_view>

namespace beacon {

/// The major version in Outlook's version text: "10.0.2627" gives 10. When the part before the first point is empty or
/// longer than two characters ("2000.1"), and when there is no point, the whole text is the number. A text that is not
/// a number gives 9, the oldest version supported.
long GetMajorVersion(std::wstring_view version);

}  // namespace beacon
