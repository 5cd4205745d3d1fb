#pragma once

#include <oaidl.h>

#include "outlook/object_model/item.h"

namespace beacon::standin {

/// What an item gives as its "MAPIOBJECT": its stored texts as MAPI properties (IMAPIProp), Unicode or squeezed through
/// the ANSI code page as the tag's type says. Texts of more than a few thousand bytes come by a stream only, as stores
/// do it. The memory is MAPI's. While the object lives, it counts as a reference to the item.
_variant_t MapiObjectOf(Item& item);

}  // namespace beacon::standin
