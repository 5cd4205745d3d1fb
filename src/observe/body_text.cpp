#include "observe/body_text.h"

#include <algorithm>

#include "support/numbers.h"
#include "support/scan.h"

namespace beacon {
namespace {

using namespace std::string_view_literals;

constexpr wchar_t kReturn = L'\r';
constexpr wchar_t kVerticalTab = L'\v';
constexpr wchar_t kTab = L'\t';

std::size_t FindBreak(std::wstring_view text, std::size_t from) {
    return FindIf(text, from,
                  [](CodeUnit unit) { return (unit == kReturn) | (unit == kVerticalTab) | (unit == kTab); });
}

// Inline: on Windows, a view passed to or returned from a call goes through memory.
inline std::wstring_view Trimmed(std::wstring_view text) {
    std::size_t first = 0;
    std::size_t end = text.size();
    while (first < end && text[first] == L' ') ++first;
    while (first < end && text[end - 1] == L' ') --end;
    return text.substr(first, end - first);
}

}  // namespace

std::wstring_view TrimSpaces(std::wstring_view text) { return Trimmed(text); }

bool IsBodyTooShort(std::wstring_view body) { return TrimSpaces(body).size() <= 12; }

bool IsWorthSending(std::wstring_view text) { return TrimSpaces(text).size() > 2; }

std::wstring_view StripReplyPrefixes(std::wstring_view subject) {
    // Each prefix also removes the text before it, so only the last one matters.
    std::size_t start = 0;
    for (const std::wstring_view prefix : {L"RE:", L"Re:", L"re:"}) {
        const std::size_t last = subject.rfind(prefix);
        if (last != std::wstring_view::npos) start = std::max(start, last + prefix.size());
    }
    return subject.substr(start);
}

std::wstring RemoveBreakChars(std::wstring_view piece, const bool& userInterrupt) {
    const std::size_t lastReturn = piece.rfind(kReturn);
    if (lastReturn == std::wstring_view::npos) return std::wstring(Trimmed(piece));
    if (piece.size() == 1 && !userInterrupt) return {};  // an empty line
    std::size_t breakAt = FindBreak(piece, 0);
    // Usually, the only break ends the piece.
    if (breakAt + 1 == piece.size() && !userInterrupt) return std::wstring(Trimmed(piece.substr(0, breakAt)));
    std::wstring kept;
    kept.reserve(piece.size());
    std::size_t from = 0;
    for (; breakAt <= lastReturn; breakAt = FindBreak(piece, from)) {
        kept += piece.substr(from, breakAt - from);
        if (userInterrupt) return kept += piece.substr(breakAt);
        from = breakAt + 1;
    }
    kept += piece.substr(from);
    return std::wstring(Trimmed(kept));
}

std::wstring_view BodySignature(std::wstring_view body) {
    // Counts from 1. A body shorter than expected is taken from its start.
    const long position = std::max(RoundHalfEven(static_cast<double>(body.size()) / 2.0), 1L);
    return body.substr(static_cast<std::size_t>(position) - 1, 10);
}

BodySplitter::BodySplitter(std::wstring_view text) : text_(text), lastReturn_(text.rfind(kReturn)) {}

std::optional<std::wstring_view> BodySplitter::Next() {
    if (finished_) return std::nullopt;
    finished_ = lastReturn_ == std::wstring_view::npos || from_ > lastReturn_;
    const std::size_t start = from_;
    if (finished_) return text_.substr(start);
    from_ = FindIf(text_, start, [](CodeUnit unit) { return (unit == kReturn) | (unit == kVerticalTab); }) + 1;
    return text_.substr(start, from_ - start);
}

std::optional<std::wstring_view> PieceEmphasis(std::wstring_view piece, const bool& userInterrupt) {
    auto rest = piece.begin();
    for (int spaces = 0; spaces < 5; ++spaces) {
        if (userInterrupt) return std::nullopt;
        rest = std::find(rest, piece.end(), L' ');
        if (rest == piece.end()) return L"low"sv;
        ++rest;
    }
    return L"medium"sv;
}

}  // namespace beacon
