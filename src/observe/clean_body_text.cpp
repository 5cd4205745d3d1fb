#include <functional>
#include <queue>
#include <vector>

#include "observe/body_text.h"

namespace beacon {
namespace {

// Makes the passes over one text, each in the time of what it removes and of what it searches for the first time.
//
// A pass must take the first occurrence of each pattern as the text stands, and a removal can join its two sides to a
// new occurrence behind what has been searched already. So the text is a list of characters that are unlinked in
// place, whose indices keep their order; each pattern remembers how far it has been searched, and each removal looks
// for occurrences across its joint.
class BodyPasses {
public:
    explicit BodyPasses(std::wstring_view text);

    // Makes one pass; false when it changed nothing.
    bool RunOne();

    std::wstring Text() const;

private:
    using Node = std::size_t;

    struct Pattern {
        std::wstring_view text;
        Node searchedTo = 1;  // no occurrence starts before it, but for those in joined
        std::priority_queue<Node, std::vector<Node>, std::greater<Node>> joined = {};
    };

    bool TakeField();
    bool TakeUrl();
    bool TurnIntoReturn(Pattern& pattern);

    Node First(Pattern& pattern) const;
    Node Find(Node from, wchar_t character) const;
    bool StartsAt(Node node, std::wstring_view pattern) const;
    void Unlink(Node first, Node end);
    void RemoveAndJoin(Node first, Node end);

    // The first and the last node are not characters of the text; their NUL is in no pattern.
    static constexpr Node kHead = 0;
    static constexpr Node kUnlinked = static_cast<Node>(-1);
    const Node end_;
    std::wstring characters_;
    std::vector<Node> next_;  // of an unlinked node: a later node, with no linked one between
    std::vector<Node> previous_;

    Pattern field_{L"HYPERLINK \""};
    Pattern url_{L"http://"};
    Pattern escape_{L"\\n"};
    Pattern dashes_{L"--"};
    bool fieldStays_ = false;  // the first field has no closing quote, and nothing can give it one
};

BodyPasses::BodyPasses(std::wstring_view text)
    : end_(text.size() + 1), characters_(1, L'\0'), next_(text.size() + 2), previous_(text.size() + 2) {
    characters_ += text;
    characters_ += L'\0';
    for (Node node = kHead; node <= end_; ++node) {
        next_[node] = node + 1;
        previous_[node] = node - 1;
    }
}

bool BodyPasses::RunOne() {
    bool changed = false;
    if (!fieldStays_) changed = TakeField();
    if (!fieldStays_ && !changed) changed = TakeUrl();
    changed |= TurnIntoReturn(escape_);
    changed |= TurnIntoReturn(dashes_);
    return changed;
}

bool BodyPasses::TakeField() {
    const Node field = First(field_);
    if (field == end_) return false;
    Node target = field;
    for (std::size_t i = 0; i < field_.text.size(); ++i) target = next_[target];
    const Node quote = Find(target, L'"');
    if (quote == end_) {
        // Not removed, and nothing is put in its place: repeating what stands before it would double the text with
        // every pass, for as long as the user lets it.
        fieldStays_ = true;
        return false;
    }
    RemoveAndJoin(field, next_[quote]);
    return true;
}

bool BodyPasses::TakeUrl() {
    const Node url = First(url_);
    if (url == end_) return false;
    const Node space = Find(url, L' ');
    RemoveAndJoin(url, space == end_ ? end_ : next_[space]);
    return true;
}

bool BodyPasses::TurnIntoReturn(Pattern& pattern) {
    const Node first = First(pattern);
    if (first == end_) return false;
    // A return is in no pattern, so this joins nothing.
    characters_[first] = L'\r';
    Unlink(next_[first], next_[next_[first]]);
    return true;
}

BodyPasses::Node BodyPasses::First(Pattern& pattern) const {
    for (; !pattern.joined.empty(); pattern.joined.pop())
        if (StartsAt(pattern.joined.top(), pattern.text)) return pattern.joined.top();
    while (pattern.searchedTo != end_ && !StartsAt(pattern.searchedTo, pattern.text))
        pattern.searchedTo = next_[pattern.searchedTo];
    return pattern.searchedTo;
}

BodyPasses::Node BodyPasses::Find(Node from, wchar_t character) const {
    while (from != end_ && characters_[from] != character) from = next_[from];
    return from;
}

bool BodyPasses::StartsAt(Node node, std::wstring_view pattern) const {
    if (previous_[node] == kUnlinked) return false;
    for (const wchar_t character : pattern) {
        if (characters_[node] != character) return false;
        node = next_[node];
    }
    return true;
}

void BodyPasses::Unlink(Node first, Node end) {
    const Node before = previous_[first];
    for (Node node = first; node != end; node = next_[node]) previous_[node] = kUnlinked;
    next_[before] = end;
    previous_[end] = before;
}

void BodyPasses::RemoveAndJoin(Node first, Node end) {
    const Node before = previous_[first];
    Unlink(first, end);
    for (Pattern* pattern : {&field_, &url_, &escape_, &dashes_}) {
        Node start = before;
        for (std::size_t left = 1; left < pattern->text.size() && start != kHead; ++left) {
            if (start < pattern->searchedTo && StartsAt(start, pattern->text)) pattern->joined.push(start);
            start = previous_[start];
        }
    }
}

std::wstring BodyPasses::Text() const {
    std::wstring text;
    for (Node node = next_[kHead]; node != end_; node = next_[node]) text += characters_[node];
    return text;
}

}  // namespace

std::wstring CleanBodyText(std::wstring_view text, const bool& userInterrupt) {
    BodyPasses passes(text);
    while (!userInterrupt && passes.RunOne()) {
    }
    return passes.Text();
}

}  // namespace beacon
