#include "observe/body_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "reference_body_text.h"

namespace beacon {
namespace {

constexpr bool kQuiet = false;
constexpr bool kInterrupted = true;

std::vector<std::wstring> SplitAll(std::wstring_view text) {
    std::vector<std::wstring> pieces;
    BodySplitter splitter(text);
    while (const auto piece = splitter.Next()) pieces.emplace_back(*piece);
    return pieces;
}

// An example of each rule; RandomTexts compares them all with their wording.
TEST(BodyRules, ByExample) {
    EXPECT_EQ(L" Budget", StripReplyPrefixes(L"RE: Re: Budget"));
    EXPECT_EQ(L"rE: FW: Budget", StripReplyPrefixes(L"rE: FW: Budget"));
    EXPECT_EQ(L"see  there at now\ra\rb\r\r-",
              CleanBodyText(L"see HYPERLINK \"mailto:a@b\" there at http://x.y/z now\\na\\nb-----", kQuiet));
    EXPECT_EQ(L"at ", CleanBodyText(L"at http://x.y/z\r\ngone", kQuiet));
    // What a removal joins is taken as well, one rule a pass: the URL goes first and makes three dashes of one and two.
    EXPECT_EQ(L"\r-", CleanBodyText(L"-http://x --", kQuiet));
    EXPECT_EQ(L"abcd\te\v", RemoveBreakChars(L" a\tb\vc\rd\te\v ", kQuiet));
    EXPECT_EQ((std::vector<std::wstring>{L"a\r", L"\nb\v", L"c\r", L"\nd\ve"}), SplitAll(L"a\r\nb\vc\r\nd\ve"));
}

// Nothing else holds this rule: what the passes would make of such a field never ends, so there is no reference for it.
TEST(CleanBodyText, LeavesAFieldWithoutAClosingQuoteAndTheUrlsBesideIt) {
    const struct {
        std::wstring_view text;
        std::wstring_view cleaned;
    } cases[] = {
        {L"HYPERLINK \"", L"HYPERLINK \""},
        {L"go http://x y HYPERLINK \"t", L"go http://x y HYPERLINK \"t"},
        {L"HYPERLINK \"t http://x y", L"HYPERLINK \"t http://x y"},
        // Beside escapes and dashes, which are cleaned on either side and in the field, each pair once.
        {L"a\\nb HYPERLINK \"t\\nc--", L"a\rb HYPERLINK \"t\rc\r"},
        {L"before HYPERLINK \"t\\nc", L"before HYPERLINK \"t\rc"},
        {L"P HYPERLINK \"a--b--c--d--e", L"P HYPERLINK \"a\rb\rc\rd\re"},
        {L"a--b HYPERLINK \"t", L"a\rb HYPERLINK \"t"},
        {L"-----\\n http://x y HYPERLINK \"", L"\r\r-\r http://x y HYPERLINK \""},
        // A closed field in front goes; what its removal joins may be the unclosed one.
        {L"a HYPERLINK \"s\"b HYPERLINK \"t", L"a b HYPERLINK \"t"},
        {L"HYPERHYPERLINK \"s\"LINK \"t--", L"HYPERLINK \"t\r"},
        {L"LINK \"q\" HYPERHYPERLINK \"c", L"LINK \"q\" HYPERHYPERLINK \"c"},
        // A URL that went before the field came together stays gone.
        {L"http://x HYPERhttp://y LINK \"t http://z ", L"HYPERLINK \"t http://z "},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.cleaned, CleanBodyText(row.text, kQuiet)) << ::testing::PrintToString(std::wstring(row.text));
}

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
    EXPECT_EQ(L"ghijklmn", BodySignature(L"abcdefghijklmn"));
    EXPECT_EQ(L"hijklmno", BodySignature(L"abcdefghijklmno"));
    EXPECT_EQ(L"klmnopqrst", BodySignature(L"abcdefghijklmnopqrstuv"));
    EXPECT_EQ(L"", BodySignature(L""));
    EXPECT_EQ(L"a", BodySignature(L"a"));
}

TEST(Lengths, CountWithoutSurroundingSpaces) {
    EXPECT_TRUE(IsBodyTooShort(L"   twelve chars   "));
    EXPECT_FALSE(IsBodyTooShort(L"thirteen char"));
    EXPECT_FALSE(IsBodyTooShort(L"eleven char\r\n"));
    EXPECT_FALSE(IsWorthSending(L" Hi "));
    EXPECT_TRUE(IsWorthSending(L"Hi!"));
}

// Fields without a closing quote excepted: there the reference has the routine's own rule.
void ExpectSameAsReference(const std::wstring& text) {
    SCOPED_TRACE(::testing::PrintToString(text));
    ASSERT_EQ(reference::StripReplyPrefixes(text), StripReplyPrefixes(text));
    ASSERT_EQ(reference::RemoveBreakChars(text), RemoveBreakChars(text, kQuiet));
    ASSERT_EQ(reference::Split(text), SplitAll(text));
    ASSERT_EQ(reference::CleanBodyText(text), CleanBodyText(text, kQuiet));
}

// Of the rules' own patterns and their halves, so that removals join new ones.
TEST(RandomTexts, GiveTheSameAsTheRulesTakenLiterally) {
    const struct {
        unsigned seed;
        std::vector<std::wstring> tokens;
    } alphabets[] = {
        {1, {L"HYPERLINK \"", L"\"", L"http://", L" ", L"\\n", L"--", L"\r", L"\v", L"\t", L"\n", L"a"}},
        {2, {L"HYPERLINK \"x\"", L"HYPER", L"LINK ", L"\"", L"ht", L"tp://", L"http://", L" ", L"\\", L"n", L"-"}},
        {3, {L"HYPERLINK \"x\"", L"http:// ", L"HYPER", L"LINK \"", L"\\", L"n", L"-", L"--", L"h", L"ttp://"}},
        {4, {L"http:// ", L"http:/", L"/", L"h", L"-", L" ", L"--", L"\\n"}},
        {5, {L"\r", L"\v", L"\t", L" ", L"\n", L"a"}},
        {6, {L"RE:", L"Re:", L"re:", L"R", L"E:", L"e", L":", L" "}},
    };

    for (const auto& [seed, tokens] : alphabets) {
        std::mt19937 random(seed);
        for (int i = 0; i < 6000 && !::testing::Test::HasFatalFailure(); ++i) {
            std::wstring text;
            for (std::size_t count = random() % (i % 50 == 0 ? 301 : 17); count > 0; --count)
                text += tokens[random() % tokens.size()];
            ExpectSameAsReference(text);
        }
    }
}

std::wstring Repeat(std::wstring_view unit, std::size_t count) {
    std::wstring text;
    for (std::size_t i = 0; i < count; ++i) text += unit;
    return text;
}

// The limit is far above what linear time needs under a sanitizer or an emulator, and far below what a square gives.
TEST(CraftedBodies, DoNotHoldTheUserUp) {
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
