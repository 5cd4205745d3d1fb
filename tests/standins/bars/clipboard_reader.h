#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/standins/bars/test_bitmaps.h"

namespace beacon::test {

/// All bytes of a format on the clipboard; empty when it is not there.
std::vector<std::uint8_t> OnClipboard(UINT format);
std::vector<std::uint8_t> OnClipboard(const char* format);

void PutOnClipboard(UINT format, const std::vector<std::uint8_t>& bytes);
void EmptyTheClipboard();

/// The pixels of a packed bitmap of 24 bits.
Pixels FromDib24(const std::vector<std::uint8_t>& dib);
/// Pixels of a packed mask: 1 where it is transparent.
Pixels FromMask(const std::vector<std::uint8_t>& mask);

}  // namespace beacon::test
