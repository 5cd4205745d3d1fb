#pragma once

#include <windows.h>

#include <cstdint>

namespace beacon::test {

/// GDI objects of this process, from the table that the process environment block points to (GetGuiResources answers
/// nothing here).
inline long GdiObjects() {
#ifdef _WIN64
    constexpr size_t kTable = 0xF8;
#else
    constexpr size_t kTable = 0x94;
#endif
    constexpr size_t kEntries = 0x4000;
    constexpr size_t kEntrySize = 24;
    constexpr size_t kType = 14;
    using CurrentBlock = const std::uint8_t*(WINAPI*)();
    const FARPROC current = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb");
    const std::uint8_t* block = reinterpret_cast<CurrentBlock>(reinterpret_cast<void*>(current))();
    const std::uint8_t* table = *reinterpret_cast<std::uint8_t* const*>(block + kTable);
    long count = 0;
    for (size_t i = 0; i < kEntries; ++i)
        if (table[i * kEntrySize + kType] != 0) ++count;
    return count;
}

}  // namespace beacon::test
