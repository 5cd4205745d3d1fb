#pragma once

namespace beacon {

/// Outlook's numbers of the item classes that are sent.
inline constexpr long kContactClass = 40;
inline constexpr long kMailClass = 43;

}  // namespace beacon
