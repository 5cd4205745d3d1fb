#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>

#include "observe/thresholds.h"
#include "support/numbers.h"

namespace beacon {
namespace {

TEST(GetMajorVersion, TakesTheShortPartBeforeThePointElseTheWholeText) {
    EXPECT_EQ(9, GetMajorVersion(L"9.0.0.2711"));
    EXPECT_EQ(10, GetMajorVersion(L"10.0.2627"));
    EXPECT_EQ(2000, GetMajorVersion(L"2000.1"));
    EXPECT_EQ(12, GetMajorVersion(L"12"));
    EXPECT_EQ(1, GetMajorVersion(L".7"));
    EXPECT_EQ(9, GetMajorVersion(L""));
    EXPECT_EQ(9, GetMajorVersion(L"beta"));
    EXPECT_EQ(9, GetMajorVersion(L"2000.1.2"));
}

TEST(RoundHalfEven, IsExactAtHalvesAndIgnoresTheRoundingMode) {
    std::fesetround(FE_UPWARD);
    EXPECT_EQ(0, RoundHalfEven(0.5));
    EXPECT_EQ(2, RoundHalfEven(1.5));
    EXPECT_EQ(2, RoundHalfEven(2.5));
    EXPECT_EQ(3, RoundHalfEven(2.5000001));
    EXPECT_EQ(-2, RoundHalfEven(-1.5));
    EXPECT_EQ(-2, RoundHalfEven(-2.5));
    EXPECT_EQ(-3, RoundHalfEven(-2.6));
    EXPECT_EQ(0, RoundHalfEven(0.49999999999999994));
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(2147483647, RoundHalfEven(1e300));
    EXPECT_EQ(-2147483647 - 1, RoundHalfEven(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ(0, RoundHalfEven(std::nan("")));
}

// tests/fuzz compares random texts with the C library, which does not round to even.
TEST(ParseLong, ReadsNumbersThatFitIn32Bits) {
    const struct {
        std::wstring_view text;
        std::optional<long> value;
    } cases[] = {
        {L"2.5", 2},
        {L"3.5", 4},
        {L"-2.50000000000000000000000000000001", -3},
        {L"2147483647.4", 2147483647},
        {L"2147483647.5", std::nullopt},
        {{L"1\0", 2}, std::nullopt},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.value, ParseLong(row.text)) << ::testing::PrintToString(std::wstring(row.text));
}

TEST(Thresholds, SpanTheirSecondsAtAnyInterval) {
    EXPECT_EQ(5, InitialUpdateThreshold(2000));
    EXPECT_EQ(2, InitialUpdateThreshold(4000));  // 2.5
    EXPECT_EQ(12, InitialUpdateThreshold(800));  // 12.5
    EXPECT_EQ(0, InitialUpdateThreshold(60000));
    EXPECT_EQ(60, PeriodicUpdateThreshold(2000));
    EXPECT_EQ(120000, PeriodicUpdateThreshold(1));
    EXPECT_EQ(120000, PeriodicUpdateThreshold(0));
    EXPECT_EQ(15, BailOutUpdateThreshold(1500));
    EXPECT_EQ(15, BailOutUpdateThreshold(2500));
    EXPECT_EQ(30, BailOutUpdateThreshold(700));
    EXPECT_EQ(8, BailOutUpdateThreshold(4000));  // 7.5
}

}  // namespace
}  // namespace beacon
