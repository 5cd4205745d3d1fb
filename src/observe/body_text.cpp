#include "observe/body_text.h"

#include <algorithm>

#include "support/numbers.h"

namespace beacon {
namespace {

constexpr wchar_t kReturn = L'\r';
constexpr wchar_t kVerticalTab = L'\v';
constexpr wchar_t kTab = L'\t';

bool IsBreakChar(wchar_t character) { return character == kReturn || character == kVerticalTab || character == kTab; }

}  // namespace

std::wstring_view TrimSpaces(std::wstring_view text) {
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

bool IsBodyTooShort(std::wstring_view body) { return TrimSpaces(body).size() <= 12; }

bool IsWorthSending(std::wstring_view text) { return TrimSpaces(text).size() > 2; }

std::wstring_view StripReplyPrefixes(std::wstring_view subject) {
    // Each prefix found takes all before it along, so only the last one of any spelling matters.
    std::size_t start = 0;
    for (const std::wstring_view prefix : {L"RE:", L"Re:", L"re:"}) {
        const std::size_t last = subject.rfind(prefix);
        if (last != std::wstring_view::npos) start = std::max(start, last + prefix.size());
    }
    return subject.substr(start);
}

std::wstring RemoveBreakChars(std::wstring_view piece, const bool& userInterrupt) {
    const std::size_t lastReturn = piece.rfind(kReturn);
    if (lastReturn == std::wstring_view::npos) return std::wstring(TrimSpaces(piece));
    std::wstring kept;
    kept.reserve(piece.size());
    for (std::size_t i = 0; i <= lastReturn; ++i) {
        if (!IsBreakChar(piece[i])) {
            kept += piece[i];
        } else if (userInterrupt) {
            kept += piece.substr(i);
            return kept;
        }
    }
    kept += piece.substr(lastReturn + 1);
    return std::wstring(TrimSpaces(kept));
}

std::wstring_view BodySignature(std::wstring_view body) {
    // Counted from 1. Bodies that get here are long enough; a shorter one is taken from its start.
    const long position = std::max(RoundHalfEven(static_cast<double>(body.size()) / 2.0), 1L);
    return body.substr(static_cast<std::size_t>(position) - 1, 10);
}

BodySplitter::BodySplitter(std::wstring_view text) : rest_(text), untilReturn_(text.find(kReturn)) {}

std::optional<std::wstring_view> BodySplitter::Next() {
    if (finished_) return std::nullopt;
    if (untilReturn_ == std::wstring_view::npos) {
        finished_ = true;
        return rest_;
    }
    const std::size_t tab = rest_.substr(0, untilReturn_).find(kVerticalTab);
    const std::size_t length = std::min(tab, untilReturn_) + 1;
    const std::wstring_view piece = rest_.substr(0, length);
    rest_.remove_prefix(length);
    // Searched again only once it is used up: a body of vertical tabs would else be searched to its end for each.
    untilReturn_ = length > untilReturn_ ? rest_.find(kReturn) : untilReturn_ - length;
    return piece;
}

std::optional<std::wstring_view> PieceEmphasis(std::wstring_view piece, const bool& userInterrupt) {
    std::size_t from = 0;
    for (int spaces = 0; spaces < 5; ++spaces) {
        if (userInterrupt) return std::nullopt;
        const std::size_t space = piece.find(L' ', from);
        if (space == std::wstring_view::npos) return L"low";
        from = space + 1;
    }
    return L"medium";
}

}  // namespace beacon
