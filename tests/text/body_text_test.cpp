#include "observe/body_text.h"

#include <gtest/gtest.h>

#include <chrono>

namespace beacon {
namespace {

constexpr bool kQuiet = false;
constexpr bool kInterrupted = true;

// tests/fuzz compares texts that are processed to the end with the rules as they are worded.
TEST(BodyRules, LeaveTheTextAsItStandsWhenInterrupted) {
    EXPECT_EQ(L"a--b http://c HYPERLINK \"d\"", CleanBodyText(L"a--b http://c HYPERLINK \"d\"", kInterrupted));
    EXPECT_EQ(L" a\tb \r", RemoveBreakChars(L" a\tb \r", kInterrupted));
    EXPECT_EQ(L"\r", RemoveBreakChars(L"\r", kInterrupted));
    EXPECT_EQ(L"a", RemoveBreakChars(L" a ", kInterrupted)) << "nothing to remove";
    EXPECT_EQ(std::nullopt, PieceEmphasis(L"we can meet on the fifth floor", kInterrupted));
}

TEST(PieceEmphasis, IsMediumFromFiveSpacesOn) {
    EXPECT_EQ(L"low", PieceEmphasis(L"", kQuiet));
    EXPECT_EQ(L"low", PieceEmphasis(L"a b c d e", kQuiet));
    EXPECT_EQ(L"medium", PieceEmphasis(L"a b c d e f", kQuiet));
}

TEST(BodySignature, TakesTenCharactersFromTheMiddleRoundedToEven) {
    EXPECT_EQ(L"fghijklm", BodySignature(L"abcdefghijklm"));  // 6.5 gives 6
    EXPECT_EQ(L"hijklmno", BodySignature(L"abcdefghijklmno"));
    EXPECT_EQ(L"klmnopqrst", BodySignature(L"abcdefghijklmnopqrstuv"));
    EXPECT_EQ(L"", BodySignature(L""));
    EXPECT_EQ(L"a", BodySignature(L"a"));
}

TEST(Lengths, CountWithoutSurroundingSpaces) {
    EXPECT_FALSE(IsBodyTooShort(L"eleven char\r\n"));
    EXPECT_FALSE(IsWorthSending(L" Hi "));
    EXPECT_TRUE(IsWorthSending(L"Hi!"));
}

std::wstring Repeat(std::wstring_view unit, std::size_t count) {
    std::wstring text;
    for (std::size_t i = 0; i < count; ++i) text += unit;
    return text;
}

// Linear time stays far below the limit, even under a sanitizer or an emulator; quadratic time is far above it.
TEST(CraftedBodies, TakeLinearTime) {
    constexpr std::size_t kCount = 400000;

    const struct {
        const char* what;
        std::wstring body;
        std::size_t pieces;
    } cases[] = {
        {"dashes", std::wstring(2 * kCount, L'-'), kCount + 1},
        {"fields", Repeat(L"HYPERLINK \"\"", kCount / 8) + Repeat(L"--", kCount / 8), kCount / 8 + 1},
        {"URLs that join", Repeat(L"http:/", kCount / 8) + Repeat(L"/ ", kCount / 8) + std::wstring(kCount, L'x'), 1},
        {"an unclosed field", L"-- HYPERLINK \"" + Repeat(L"\\n--", kCount / 2), kCount + 2},
        {"vertical tabs", std::wstring(2 * kCount, L'\v') + L'\r', 2 * kCount + 2},
    };

    for (const auto& row : cases) {
        const auto start = std::chrono::steady_clock::now();
        const std::wstring text = CleanBodyText(row.body, kQuiet);
        BodySplitter splitter(text);
        std::size_t pieces = 0;
        while (const auto piece = splitter.Next()) {
            RemoveBreakChars(*piece, kQuiet);
            ++pieces;
        }
        EXPECT_EQ(row.pieces, pieces) << row.what;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4)) << row.what;
    }
}

}  // namespace
}  // namespace beacon
