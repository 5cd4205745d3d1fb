#pragma once

#include "outlook/bars/button_face.h"

namespace beacon::standin {

/// The face that Office would paste: "Toolbar Button Face" made transparent by "Toolbar Button Mask", or else the
/// picture (CF_DIB), all of it opaque. Throws com::Error when there is neither, when a block is malformed, or when
/// another program keeps the clipboard open.
ButtonFace FaceFromClipboard(HWND owner);

}  // namespace beacon::standin
