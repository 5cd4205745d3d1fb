#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <string>

namespace beacon {

/// The picture in a file (bitmap, metafile, icon, GIF or JPEG); null when the file is missing or no picture.
Microsoft::WRL::ComPtr<IPicture> LoadPicture(const std::wstring& path);

}  // namespace beacon
