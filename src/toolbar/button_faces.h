#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <string>

#include "toolbar/gdi_handles.h"

namespace beacon {

/// The picture in a file (bitmap, metafile, icon, GIF or JPEG); null when the file is missing or no picture.
Microsoft::WRL::ComPtr<IPicture> LoadPicture(const std::wstring& path);

/// Puts the picture onto the clipboard as the face of a command-bar button: as a device-independent bitmap and under
/// Office's private formats for the face and its mask, in which the pixels of the mask colour (an OLE colour) are
/// transparent. What was on the clipboard is lost. Raises error 481 for anything but a bitmap.
void CopyBitmapAsButtonFace(IPicture* picSource, OLE_COLOR clrMaskColor);

/// A monochrome bitmap of the source's size: 1 where the source has the mask colour, else 0. Null when a side is not
/// between 1 and 30000 pixels long. The palette is borrowed, and used where the display has one.
OwnedBitmap CreateButtonMask(HBITMAP hbmSource, COLORREF rgbMask, HDC hdcScreen, HPALETTE hPalette);

/// Adds the face (a copy of the bitmap on the clipboard) and the mask in Office's private formats.
void CopyButtonMaskToClipboard(HBITMAP hbmMask, HDC hdcScreen) noexcept;

}  // namespace beacon
