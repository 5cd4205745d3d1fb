#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace beacon::standin {

/// An error in a command or its arguments.
struct ScriptError {
    std::wstring text;
};

/// A decimal integer, or nothing.
std::optional<long> ParseNumber(const std::wstring& text);

/// The words of a command line, read one by one. Throws ScriptError for a missing word or one of the wrong kind. Blanks
/// and commas separate words. "..." is one word with the escapes \" \\ \n \r \t. A word that begins with # starts a
/// comment.
class Words {
public:
    explicit Words(std::wstring line);

    bool AtEnd() const;
    /// Consumes the next word if it is this one and not quoted.
    bool Accept(std::wstring_view word);
    std::wstring Take(const wchar_t* what);
    bool NextIsNumber() const;
    long TakeNumber(const wchar_t* what);
    /// A number of units; between 0 and a day.
    std::chrono::milliseconds TakeTime(std::chrono::milliseconds unit);
    /// The rest of the line, unparsed.
    std::wstring TakeRest();
    /// Throws if there are words left.
    void End() const;

private:
    struct Word {
        std::wstring text;
        bool quoted;
        size_t end;  // position in the line
    };

    Word Next() const;
    void GoTo(size_t place);

    std::wstring line_;
    size_t at_ = 0;  // where the next word begins
};

}  // namespace beacon::standin
