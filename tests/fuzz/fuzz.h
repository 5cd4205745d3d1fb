#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

/// A fuzzer is this function. libFuzzer generates its inputs; replay.cpp reads them from files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace beacon::fuzz {

/// Aborts unless the condition holds, so that the input is reported.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// Other characters than those of ASCII in hexadecimal.
inline void Print(const char* what, std::wstring_view text) {
    std::fputs(what, stderr);
    for (const wchar_t c : text) std::fprintf(stderr, c >= L' ' && c <= L'~' ? "%c" : "<%X>", static_cast<int>(c));
    std::fputs("\n", stderr);
}

/// Aborts unless the texts are the same.
inline void RequireSame(std::wstring_view text, std::wstring_view expected) {
    if (text == expected) return;
    Print("got:      ", text);
    Print("expected: ", expected);
    std::abort();
}

/// Turns bytes into text. ASCII bytes stay. Bytes from 0xF0 on stand for the tokens, so that the fuzzer finds the
/// rules' patterns soon. The others become code units of 16 bits.
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
