#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

/// What the fuzzers share. Each is one function of bytes, which the fuzzer makes up and replay.cpp reads from files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace beacon::fuzz {

/// Ends the program, so that the input is reported.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// ASCII bytes as they are; those from 0xF0 on, as far as there are tokens, stand for one of them, so that the patterns
/// are found soon; the rest become characters from all over the 16 bits of a code unit.
template <std::size_t kTokens>
std::wstring TextOf(const std::uint8_t* data, std::size_t size, const std::wstring_view (&tokens)[kTokens]) {
    constexpr std::uint8_t kFirstToken = 0xF0;
    static_assert(kTokens <= 0x100 - kFirstToken);
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i)
        if (data[i] < 0x80)
            text += static_cast<wchar_t>(data[i]);
        else if (data[i] >= kFirstToken && data[i] - kFirstToken < static_cast<int>(kTokens))
            text += tokens[data[i] - kFirstToken];
        else
            text += static_cast<wchar_t>(data[i] * 0x101);
    return text;
}

}  // namespace beacon::fuzz
