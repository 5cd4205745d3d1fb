// Cleaning and splitting of bodies and subjects. Short ones are compared with the rules as they are worded.
#include <algorithm>
#include <vector>

#include "fuzz.h"
#include "observe/body_text.h"
#include "observe/item_text.h"

namespace beacon::fuzz {
namespace {

constexpr std::wstring_view kTokens[] = {L"HYPERLINK \"", L"http://", L"HYPER", L"LINK \"", L"tp://",
                                         L"RE:",          L"--",      L"\\n",   L"\r\n",    L"\v"};
constexpr bool kQuiet = false;
constexpr bool kInterrupted = true;
constexpr auto kNone = std::wstring::npos;

/// The rules, one change after the other, in quadratic time.
namespace worded {

// On a field without a closing quote, the worded passes never end. As in the product, it changes nothing.
bool RemoveFieldOrUrl(std::wstring& text) {
    constexpr std::wstring_view kField = L"HYPERLINK \"";
    const std::size_t field = text.find(kField);
    const std::size_t start = field != kNone ? field : text.find(L"http://");
    if (start == kNone) return false;
    const std::size_t end = field != kNone ? text.find(L'"', field + kField.size()) : text.find(L' ', start);
    if (field != kNone && end == kNone) return false;
    text.erase(start, end == kNone ? kNone : end + 1 - start);
    return true;
}

bool ReplaceFirst(std::wstring& text, std::wstring_view wanted) {
    const std::size_t found = text.find(wanted);
    if (found != kNone) text.replace(found, wanted.size(), L"\r");
    return found != kNone;
}

std::wstring Clean(std::wstring text) {
    for (bool changed = true; changed;) {
        changed = RemoveFieldOrUrl(text);
        changed |= ReplaceFirst(text, L"\\n");
        changed |= ReplaceFirst(text, L"--");
    }
    return text;
}

std::wstring StripReplyPrefixes(std::wstring subject) {
    for (const std::wstring_view prefix : {L"RE:", L"Re:", L"re:"})
        for (std::size_t found; (found = subject.find(prefix)) != kNone;) subject.erase(0, found + prefix.size());
    return subject;
}

std::wstring RemoveBreaks(std::wstring piece) {
    for (std::size_t from = 0; piece.find(L'\r', from) != kNone; piece.erase(from, 1))
        from = std::min(piece.find_first_of(L"\r\v", from), piece.find(L'\t'));
    return std::wstring(TrimSpaces(piece));
}

std::vector<std::wstring> Split(std::wstring text) {
    std::vector<std::wstring> pieces;
    while (text.find(L'\r') != kNone) {
        const std::size_t end = text.find_first_of(L"\r\v") + 1;
        pieces.push_back(text.substr(0, end));
        text.erase(0, end);
    }
    pieces.push_back(text);
    return pieces;
}

}  // namespace worded

void CompareWithWording(const std::wstring& text) {
    RequireSame(CleanBodyText(text, kQuiet), worded::Clean(text));
    RequireSame(StripReplyPrefixes(text), worded::StripReplyPrefixes(text));
    RequireSame(RemoveBreakChars(text, kQuiet), worded::RemoveBreaks(text));
    BodySplitter splitter(text);
    for (const std::wstring& expected : worded::Split(text)) {
        const auto piece = splitter.Next();
        Require(piece.has_value());
        RequireSame(*piece, expected);
        RequireSame(RemoveBreakChars(*piece, kQuiet), worded::RemoveBreaks(expected));
    }
    Require(!splitter.Next());
}

void Try(const std::wstring& text) {
    constexpr std::size_t kLongestForWording = 80;
    if (text.size() <= kLongestForWording) CompareWithWording(text);

    const std::wstring cleaned = CleanBodyText(text, kQuiet);
    RequireSame(CleanBodyText(cleaned, kQuiet), cleaned);
    Require(cleaned.find(L"--") == kNone);
    RequireSame(CleanBodyText(text, kInterrupted), text);
    BodySplitter splitter(text);
    std::wstring pieces;
    while (const auto piece = splitter.Next()) {
        pieces += *piece;
        Require(RemoveBreakChars(*piece, kQuiet).size() <= piece->size());
        RemoveBreakChars(*piece, kInterrupted);
        PieceEmphasis(*piece, kQuiet);
    }
    RequireSame(pieces, text);
    Require(BodySignature(text).size() <= 10);
    Require(!IsWorthSending(text) || !TrimSpaces(text).empty());
    Require(!MailTitle(text).empty());
}

}  // namespace
}  // namespace beacon::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    beacon::fuzz::Try(beacon::fuzz::TextOf(data, size, beacon::fuzz::kTokens));
    return 0;
}
