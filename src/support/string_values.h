#pragma once

#include <string>
#include <string_view>

/// The bytes of string values, which come from the registry as whoever wrote them has left them: with a NUL at the end,
/// without one, or with any number of them.
namespace beacon {

/// What stands before the first NUL. Refers to the bytes given.
std::string_view SingleString(std::string_view bytes);

/// The strings of a REG_MULTI_SZ, each with one NUL behind it: two NULs in a row have become one.
std::string SeveralStrings(std::string_view bytes);

}  // namespace beacon
