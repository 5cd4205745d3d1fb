#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

/// Fast searches in texts. The C library's functions test one character at a time on Windows.
namespace beacon {

using CodeUnit = std::make_unsigned_t<wchar_t>;

/// The first character in [from, end) for which the test is true, or end. The test takes a CodeUnit and must not branch
/// (| for ||), so that the compiler can test a block with vector instructions. Use long blocks for rare characters.
template <std::size_t kBlock, class Test>
const wchar_t* FindIf(const wchar_t* from, const wchar_t* end, Test test) {
    if (from != end && test(static_cast<CodeUnit>(*from))) return from;  // in crafted texts, each character can match
    for (; static_cast<std::size_t>(end - from) >= kBlock; from += kBlock) {
        CodeUnit any = 0;
        for (std::size_t i = 0; i < kBlock; ++i)
            any |= test(static_cast<CodeUnit>(from[i])) ? CodeUnit{1} : CodeUnit{0};
        if (any != 0) break;
    }
    if constexpr (kBlock > 8) return FindIf<8>(from, end, test);
    while (from != end && !test(static_cast<CodeUnit>(*from))) ++from;
    return from;
}

/// The same with indices; the text's size if there is none. `from` is at most the size.
template <std::size_t kBlock = 8, class Test>
inline std::size_t FindIf(std::wstring_view text, std::size_t from, Test test) {
    return static_cast<std::size_t>(FindIf<kBlock>(text.data() + from, text.data() + text.size(), test) - text.data());
}

}  // namespace beacon
