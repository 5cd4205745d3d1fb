#pragma once

#include <string>

#include "com/mapi.h"

namespace beacon {

/// What a MAPI object has under a tag of either string type, of at most `most` characters and up to the first NUL; ""
/// when it has no such property. It is asked for Unicode, whatever the tag says, so that every script arrives whole,
/// and for 8-bit text, converted by the message's code page, when the object has only that. What is too large to be
/// given at once comes by a stream. Raises the object's error; MAPI_E_CORRUPT_DATA or MAPI_E_UNEXPECTED_TYPE for an
/// answer that is none.
std::wstring PropertyText(IMAPIProp& object, ULONG tag, size_t most);

}  // namespace beacon
