#pragma once

#include <oaidl.h>

#include "outlook/object_model/item.h"

namespace beacon::standin {

/// The MAPIOBJECT of an item: an IMAPIProp with its texts, in Unicode or the ANSI code page according to the tag's
/// type. Long texts are available as a stream only, as in MAPI stores. The object references the item.
_variant_t MapiObjectOf(Item& item);

}  // namespace beacon::standin
