#pragma once

#include <string_view>

namespace beacon {

/// Whether the bytes are a bitmap file whose header stays within them: colour table and rows end before the bytes do,
/// and it holds at most 16 million pixels. The system's loader believes the header, and reads on behind a file that is
/// shorter than its header says. What the pixels show is not looked at.
bool IsWholeBitmap(std::string_view bytes);

/// Whether the bytes claim to be a bitmap file.
inline bool IsBitmapFile(std::string_view bytes) { return bytes.starts_with("BM"); }

}  // namespace beacon
