#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// What the item sender makes of a subject and a body before it sends them. Each routine takes time linear in its text,
/// whatever a mail was crafted to hold.
///
/// userInterrupt is the flag that the message hook raises on user input; it is polled on every turn of every loop.
namespace beacon {

/// Without leading and trailing spaces; other blanks stay. Refers to the text given.
std::wstring_view TrimSpaces(std::wstring_view text);

/// 12 characters or fewer once trimmed: not worth sending.
bool IsBodyTooShort(std::wstring_view body);

/// More than 2 characters once trimmed: a subject or selection worth sending.
bool IsWorthSending(std::wstring_view text);

/// What follows the last "RE:", "Re:" or "re:". Refers to the subject given.
std::wstring_view StripReplyPrefixes(std::wstring_view subject);

/// The body without hyperlink field codes and URLs, with a carriage return for each backslash-n escape and each "--".
///
/// It equals the result of repeated passes, of which each takes the first HYPERLINK field or, when there is none, the
/// first "http://" URL, then the first escape, then the first "--". A URL reaches to its first space, and without one
/// to the end of the text. When userInterrupt is raised, the text is returned as the passes so far have left it.
///
/// A field without a closing quote stays where it is, and so do all URLs while it is there. A pass that finds nothing
/// but such a field is the last one.
std::wstring CleanBodyText(std::wstring_view text, const bool& userInterrupt);

/// A piece of the body without its carriage returns and without the vertical tabs and tabs before the last of them,
/// trimmed of spaces. A piece without a carriage return is only trimmed. When userInterrupt is raised during the
/// removals, the piece is returned as it stands, untrimmed.
std::wstring RemoveBreakChars(std::wstring_view piece, const bool& userInterrupt);

/// The ten characters from the middle of a body, by which a changed body is told from an unchanged one.
std::wstring_view BodySignature(std::wstring_view body);

/// Cuts a body into pieces that end with a carriage return or with a vertical tab that has a carriage return somewhere
/// after it; the rest is the last piece, which may be empty. There is always at least one piece.
class BodySplitter {
public:
    /// The text must outlive the splitter and its pieces.
    explicit BodySplitter(std::wstring_view text);

    /// The next piece, break character included; nullopt after the last one.
    std::optional<std::wstring_view> Next();

private:
    std::wstring_view text_;
    std::size_t lastReturn_;  // no break cuts behind it; npos when there is none
    std::size_t from_ = 0;
    bool finished_ = false;
};

/// "medium" for a piece with five spaces or more, else "low"; nullopt when userInterrupt is raised while counting.
std::optional<std::wstring_view> PieceEmphasis(std::wstring_view piece, const bool& userInterrupt);

}  // namespace beacon
