#pragma once

#include <string>

#include "com/mapi.h"

namespace beacon {

/// The text of the property with this identifier (the upper half of a tag): up to the first NUL, at most `most`
/// characters; "" if the object has no such property or it is no text. Asks for Unicode and, if that fails, for 8-bit
/// text in the message's code page. Raises the object's error, or MAPI_E_CORRUPT_DATA for a malformed answer.
std::wstring PropertyText(IMAPIProp& object, ULONG id, size_t most);

/// The identifier of the property that has this number in a set of names; 0 if the object does not tell one.
ULONG NamedProperty(IMAPIProp& object, const GUID& set, LONG number);

}  // namespace beacon
