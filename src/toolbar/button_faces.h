#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <string>

namespace beacon {

/// The picture in a file (bitmap, metafile, icon, GIF or JPEG). Null if the file is missing, is not a picture, is not
/// on a drive of this machine, or is an incomplete bitmap (IsWholeBitmap).
Microsoft::WRL::ComPtr<IPicture> LoadPicture(const std::wstring& path);

/// Replaces the clipboard's content with the picture as the face of a command-bar button: as a device-independent
/// bitmap and in Office's private formats for the face and its mask, which makes pixels of the mask colour (an OLE
/// colour) transparent. Raises error 481 for anything but a bitmap of a face's size, and for any failure.
void CopyBitmapAsButtonFace(IPicture* picSource, OLE_COLOR clrMaskColor);

}  // namespace beacon
