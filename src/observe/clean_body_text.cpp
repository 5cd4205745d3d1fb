#include <algorithm>
#include <string>
#include <utility>

#include "observe/body_text.h"
#include "support/scan.h"

namespace beacon {
namespace {

// A text to search for, and the index of its rarest character, which the search looks for first.
struct SearchText {
    std::wstring_view text;
    std::size_t rarest = 0;
};

std::size_t FindChar(std::wstring_view text, wchar_t wanted, std::size_t from) {
    // The first four one by one: fast for texts that match at almost every character.
    for (std::size_t end = std::min(from + 4, text.size()); from < end; ++from)
        if (text[from] == wanted) return from;
    return FindIf<64>(text, from, [wanted](CodeUnit unit) { return unit == static_cast<CodeUnit>(wanted); });
}

// Index of the first occurrence at or after `from`; the text's size if there is none.
std::size_t FindIn(std::wstring_view text, const SearchText& wanted, std::size_t from) {
    for (std::size_t i = from + wanted.rarest; i < text.size(); ++i) {
        i = FindChar(text, wanted.text[wanted.rarest], i);
        const std::size_t start = i - wanted.rarest;
        if (text.size() - start < wanted.text.size()) break;
        std::size_t same = 0;
        while (same < wanted.text.size() && text[start + same] == wanted.text[same]) ++same;
        if (same == wanted.text.size()) return start;
    }
    return text.size();
}

// Applies the passes in linear time, using a gap buffer: the removed text lies in one gap between two parts of the
// rest. A removal moves the gap to its place and widens it. As removals advance, all moves together copy the text few
// times.
//
// Each pattern remembers how far it has been searched. A removal can join the two sides of the gap to a new occurrence
// before that position, so each search looks across the gap first.
class BodyPasses {
public:
    explicit BodyPasses(std::wstring_view text);

    // Applies one pass. False when it changes nothing.
    bool RunOne();

    // The text as it stands. No pass may follow.
    std::wstring TakeText();

private:
    // Counts the characters without the gap.
    using Position = std::size_t;

    struct Pattern : SearchText {
        Position searchedTo = 0;  // no occurrence starts before it, except across the gap
    };

    bool RemoveFieldOrUrl();
    bool TurnIntoReturn(Pattern& pattern);

    Position First(Pattern& pattern) const;
    Position Find(const SearchText& wanted, Position from) const;
    bool StandsAt(std::wstring_view pattern, Position position) const;
    void Remove(Position first, Position end);
    void MoveGap(Position to);

    std::size_t Index(Position position) const { return position < gap_ ? position : position + gapSize_; }

    Position Size() const { return characters_.size() - gapSize_; }

    std::wstring characters_;
    static constexpr char kKept = 0;
    static constexpr char kDropped = 1;
    std::string dropped_;  // one for each character; dropped is the second half of a replaced escape or "--"
    Position gap_ = 0;
    std::size_t gapSize_ = 0;

    Pattern field_{{L"HYPERLINK \""}};
    Pattern url_{{L"http://", 5}};
    Pattern escape_{{L"\\n"}};
    Pattern dashes_{{L"--"}};
    bool mayRemove_ = true;  // false once a pass removes nothing: the other steps make no new fields or URLs
};

BodyPasses::BodyPasses(std::wstring_view text) : characters_(text), dropped_(text.size(), kKept) {
    // Most bodies lack "K" and backslash, and so have neither a field nor an escape.
    if (FindIf<64>(text, 0, [](CodeUnit unit) { return (unit == L'K') | (unit == L'\\'); }) == text.size())
        field_.searchedTo = escape_.searchedTo = text.size();
}

bool BodyPasses::RunOne() {
    mayRemove_ = mayRemove_ && RemoveFieldOrUrl();
    const bool escapeTurned = TurnIntoReturn(escape_);
    const bool dashesTurned = TurnIntoReturn(dashes_);
    return mayRemove_ || escapeTurned || dashesTurned;
}

bool BodyPasses::RemoveFieldOrUrl() {
    const Position field = First(field_);
    if (field != Size()) {
        const Position quote = Find({L"\""}, field + field_.text.size());
        // Without a quote the field stays. Repeating the text before it would double the text with every pass.
        if (quote == Size()) return false;
        Remove(field, quote + 1);
        return true;
    }
    const Position url = First(url_);
    if (url == Size()) return false;
    const Position space = Find({L" "}, url);
    Remove(url, space == Size() ? space : space + 1);
    return true;
}

bool BodyPasses::TurnIntoReturn(Pattern& pattern) {
    const Position first = First(pattern);
    if (first == Size()) return false;
    // No pattern contains a return, so neither half can become part of another occurrence.
    characters_[Index(first)] = characters_[Index(first + 1)] = L'\r';
    dropped_[Index(first + 1)] = kDropped;
    pattern.searchedTo = std::max(pattern.searchedTo, first + 2);
    return true;
}

BodyPasses::Position BodyPasses::First(Pattern& pattern) const {
    const std::wstring_view text = pattern.text;
    if (gap_ > 0 && gap_ < Size()) {
        const wchar_t left = characters_[gap_ - 1];
        const wchar_t right = characters_[gap_ + gapSize_];
        for (std::size_t before = std::min(gap_, text.size() - 1); before > 0; --before)
            if (text[before - 1] == left && text[before] == right && gap_ - before < pattern.searchedTo &&
                StandsAt(text, gap_ - before))
                return gap_ - before;
    }
    if (pattern.searchedTo < Size() && !StandsAt(text, pattern.searchedTo))
        pattern.searchedTo = Find(pattern, pattern.searchedTo);
    return pattern.searchedTo;
}

BodyPasses::Position BodyPasses::Find(const SearchText& wanted, Position from) const {
    const std::wstring_view all = characters_;
    if (from < gap_) {
        const Position found = FindIn(all.substr(0, gap_), wanted, from);
        if (found < gap_) return found;
        from = std::max(from, gap_ - std::min(gap_, wanted.text.size() - 1));
        for (; from < gap_; ++from)
            if (StandsAt(wanted.text, from)) return from;
    }
    return FindIn(all, wanted, from + gapSize_) - gapSize_;
}

bool BodyPasses::StandsAt(std::wstring_view pattern, Position position) const {
    if (Size() - position < pattern.size()) return false;
    for (const wchar_t character : pattern)
        if (characters_[Index(position++)] != character) return false;
    return true;
}

void BodyPasses::Remove(Position first, Position end) {
    MoveGap(first);
    gapSize_ += end - first;
    for (Pattern* pattern : {&field_, &url_, &escape_, &dashes_})
        pattern->searchedTo =
            pattern->searchedTo > end ? pattern->searchedTo - (end - first) : std::min(pattern->searchedTo, first);
}

void BodyPasses::MoveGap(Position to) {
    const auto move = [&](auto start) {
        if (gapSize_ == 0) return;
        if (to > gap_)
            std::copy(start + Index(gap_), start + Index(to), start + gap_);
        else
            std::copy_backward(start + to, start + gap_, start + gap_ + gapSize_);
    };
    move(characters_.data());
    move(dropped_.data());
    gap_ = to;
}

std::wstring BodyPasses::TakeText() {
    characters_.erase(gap_, gapSize_);
    dropped_.erase(gap_, gapSize_);
    // Compacts in place: copies long runs as a whole, and short ones character by character.
    constexpr std::size_t kLongRun = 16;
    wchar_t* const text = characters_.data();
    wchar_t* out = text;
    for (std::size_t i = 0; i < characters_.size();) {
        const std::size_t run = std::min(dropped_.find(kDropped, i), characters_.size());
        if (run - i >= kLongRun) {
            out = out == text + i ? text + run : std::copy(text + i, text + run, out);
            i = run;
        }
        for (const std::size_t end = std::min(i + kLongRun, characters_.size()); i < end; ++i) {
            *out = text[i];
            out += dropped_[i] == kKept ? 1 : 0;
        }
    }
    characters_.resize(static_cast<std::size_t>(out - text));
    return std::move(characters_);
}

}  // namespace

std::wstring CleanBodyText(std::wstring_view text, const bool& userInterrupt) {
    BodyPasses passes(text);
    while (!userInterrupt && passes.RunOne()) {
    }
    return passes.TakeText();
}

}  // namespace beacon
