#pragma once

#include <string>

#include "com/mapi.h"

namespace beacon {

/// The text that a MAPI object has as the property with this identifier (the upper half of a tag), of at most `most`
/// characters and up to the first NUL; "" when it has no such property, or one that is no text. It is asked for
/// Unicode, so that every script arrives whole, and for 8-bit text, converted by the message's code page, when the
/// object has only that. What is too large to be given at once comes by a stream. Raises the object's error;
/// MAPI_E_CORRUPT_DATA for an answer that is none.
std::wstring PropertyText(IMAPIProp& object, ULONG id, size_t most);

/// The identifier under which a MAPI object has the property with this number of a set of names; 0 when it has none, or
/// does not say.
ULONG NamedProperty(IMAPIProp& object, const GUID& set, LONG number);

}  // namespace beacon
