#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace beacon::standin {

/// What is wrong with a command or its arguments.
struct ScriptError {
    std::wstring text;
};

/// A whole decimal number, or nothing.
std::optional<long> ParseNumber(const std::wstring& text);

/// The words of a command line, taken one by one; throws ScriptError when one is missing or of the wrong kind. Blanks
/// and commas separate; "..." is one word, in which \" \\ \n \r \t stand for their characters and any other backslash
/// for itself; a word that begins with # starts a comment.
class Words {
public:
    explicit Words(std::wstring line);

    bool AtEnd() const;
    /// Takes the next word when it is this one, unquoted.
    bool Accept(std::wstring_view word);
    std::wstring Take(const wchar_t* what);
    bool NextIsNumber() const;
    long TakeNumber(const wchar_t* what);
    /// So many units; between 0 and a day.
    std::chrono::milliseconds TakeTime(std::chrono::milliseconds unit);
    /// All that is left, as it stands: quotes, commas and # are characters like others.
    std::wstring TakeRest();
    /// Throws when words are left over.
    void End() const;

private:
    struct Word {
        std::wstring text;
        bool quoted;
        size_t end;  // its place in the line
    };

    Word Next() const;
    void GoTo(size_t place);

    std::wstring line_;
    size_t at_ = 0;  // where the next word begins
};

}  // namespace beacon::standin
