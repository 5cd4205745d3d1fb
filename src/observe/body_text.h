#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// How the item sender prepares a subject and a body. Every routine runs in linear time, also for crafted text.
///
/// userInterrupt is the flag that the message hook raises on user input. Every loop polls it on every turn.
namespace beacon {

/// Removes leading and trailing spaces, but no other blanks. Refers to the argument.
std::wstring_view TrimSpaces(std::wstring_view text);

/// At most 12 characters when trimmed: not worth sending.
bool IsBodyTooShort(std::wstring_view body);

/// More than 2 characters when trimmed: a subject or selection worth sending.
bool IsWorthSending(std::wstring_view text);

/// The part after the last "RE:", "Re:" or "re:". Refers to the argument.
std::wstring_view StripReplyPrefixes(std::wstring_view subject);

/// Removes hyperlink field codes and URLs, and replaces each backslash-n escape and each "--" by a carriage return.
///
/// Has the result of repeated passes: each removes the first HYPERLINK field or, if there is none, the first "http://"
/// URL, then replaces the first escape, then the first "--". A URL ends with its first space, or with the text. When
/// userInterrupt is raised, returns the text as it stands after the current pass.
///
/// A field without a closing quote stays, and so do all URLs. A pass that finds only such a field is the last.
std::wstring CleanBodyText(std::wstring_view text, const bool& userInterrupt);

/// Removes the carriage returns of a piece, and the tabs and vertical tabs before the last of them; then trims spaces.
/// When userInterrupt is raised during the removals, returns the piece as it stands, untrimmed.
std::wstring RemoveBreakChars(std::wstring_view piece, const bool& userInterrupt);

/// Ten characters from the middle of a body, which tell whether it has changed.
std::wstring_view BodySignature(std::wstring_view body);

/// Cuts a body after each carriage return, and after each vertical tab that any carriage return follows. The last piece
/// may be empty. There is always at least one piece.
class BodySplitter {
public:
    /// The text must outlive the splitter and its pieces.
    explicit BodySplitter(std::wstring_view text);

    /// The next piece, break character included; nullopt after the last one.
    std::optional<std::wstring_view> Next();

private:
    std::wstring_view text_;
    std::size_t lastReturn_;  // no cut after it; npos if there is none
    std::size_t from_ = 0;
    bool finished_ = false;
};

/// "medium" for a piece with at least five spaces, else "low"; nullopt when userInterrupt is raised.
std::optional<std::wstring_view> PieceEmphasis(std::wstring_view piece, const bool& userInterrupt);

}  // namespace beacon
