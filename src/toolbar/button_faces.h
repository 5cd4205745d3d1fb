#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <string>

namespace beacon {

/// The picture in a file (bitmap, metafile, icon, GIF or JPEG); null when the file is missing, no picture, or a bitmap
/// that is not whole (IsWholeBitmap).
Microsoft::WRL::ComPtr<IPicture> LoadPicture(const std::wstring& path);

/// Puts the picture onto the clipboard as the face of a command-bar button: as a device-independent bitmap and under
/// Office's private formats for the face and its mask, in which the pixels of the mask colour (an OLE colour) are
/// transparent. What was on the clipboard is lost. Raises error 481 for anything but a bitmap.
void CopyBitmapAsButtonFace(IPicture* picSource, OLE_COLOR clrMaskColor);

}  // namespace beacon
