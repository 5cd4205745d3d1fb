#pragma once

#include <comdef.h>

namespace beacon {

/// A snapshot of the clipboard: one value for each format that is present. The value of a picture is a picture object.
/// For other programs: the add-in never fills one.
struct SavedClipboard {
    bool hasLink = false;
    _bstr_t link;
    bool hasText = false;
    _bstr_t text;
    bool hasBitmap = false;
    _variant_t BITMAP;
    bool hasMetafile = false;
    _variant_t metafile;
    bool hasDIB = false;
    _variant_t dib;
    bool hasPalette = false;
    _variant_t palette;
};

}  // namespace beacon
