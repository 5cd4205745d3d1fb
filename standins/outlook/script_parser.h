#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace beacon::standin {

/// What is wrong with a command or its arguments; the runner adds the line number.
struct ScriptError {
    std::wstring text;
};

struct Word {
    std::wstring text;
    bool quoted = false;
};

/// The words of one line. Blanks and commas separate; "..." is one word, in which \" \\ \n \r \t stand for their
/// characters and any other backslash for itself; # outside quotes starts a comment. Throws ScriptError for a quote
/// that is not closed.
std::vector<Word> SplitWords(std::wstring_view line);

/// The words of a command, taken one by one; throws ScriptError when one is missing or of the wrong kind.
class Words {
public:
    explicit Words(std::vector<Word> words) : words_(std::move(words)) {}

    bool AtEnd() const { return next_ == words_.size(); }

    /// Takes the next word when it is this one, unquoted.
    bool Accept(std::wstring_view text);
    std::wstring Take(const wchar_t* what);
    long TakeNumber(const wchar_t* what);
    bool NextIsNumber() const;

    bool NextIsQuoted() const { return !AtEnd() && words_[next_].quoted; }

    /// Throws when words are left over.
    void End() const;

private:
    std::vector<Word> words_;
    size_t next_ = 0;
};

}  // namespace beacon::standin
