#include "reference_body_text.h"

namespace beacon::reference {
namespace {

// Positions count from 1; 0 means not found, as in the wording of the rules.
std::size_t Find(const std::wstring& text, std::wstring_view wanted, std::size_t from = 1) {
    const std::size_t found = from > text.size() ? std::wstring::npos : text.find(wanted, from - 1);
    return found == std::wstring::npos ? 0 : found + 1;
}

std::wstring Left(const std::wstring& text, std::size_t count) { return text.substr(0, count); }

std::wstring From(const std::wstring& text, std::size_t position) {
    return position > text.size() ? std::wstring() : text.substr(position - 1);
}

bool ReplaceFirst(std::wstring& text, std::wstring_view wanted) {
    const std::size_t found = Find(text, wanted);
    if (found == 0) return false;
    text = Left(text, found - 1) + L"\r" + From(text, found + wanted.size());
    return true;
}

std::wstring Trim(std::wstring text) {
    while (!text.empty() && text.front() == L' ') text.erase(0, 1);
    while (!text.empty() && text.back() == L' ') text.pop_back();
    return text;
}

}  // namespace

std::wstring StripReplyPrefixes(std::wstring subject) {
    for (;;) {
        std::size_t found = Find(subject, L"RE:");
        found = found == 0 ? Find(subject, L"Re:") : found;
        found = found == 0 ? Find(subject, L"re:") : found;
        if (found == 0) return subject;
        subject = From(subject, found + 3);
    }
}

std::wstring CleanBodyText(std::wstring text) {
    for (;;) {
        bool changed = false;
        const std::size_t field = Find(text, L"HYPERLINK \"");
        const std::size_t url = Find(text, L"http://");
        if (field != 0) {
            const std::size_t quote = Find(text, L"\"", field + 11);
            if (quote != 0) {
                text = Left(text, field - 1) + From(text, quote + 1);
                changed = true;
            }
        } else if (url != 0) {
            const std::size_t space = Find(text, L" ", url);
            text = space == 0 ? Left(text, url - 1) : Left(text, url - 1) + From(text, space + 1);
            changed = true;
        }
        changed |= ReplaceFirst(text, L"\\n");
        changed |= ReplaceFirst(text, L"--");
        if (!changed) return text;
    }
}

std::wstring RemoveBreakChars(std::wstring piece) {
    const auto earliest = [&piece](std::size_t from) {
        std::size_t found = Find(piece, L"\r", from);
        if (found != 0) {
            const std::size_t verticalTab = Find(piece, L"\v", from);
            found = verticalTab != 0 && verticalTab < found ? verticalTab : found;
            const std::size_t tab = Find(piece, L"\t");
            found = tab != 0 && tab < found ? tab : found;
        }
        return found;
    };
    for (std::size_t found = earliest(1); found >= 1; found = earliest(found))
        piece = Left(piece, found - 1) + From(piece, found + 1);
    return Trim(piece);
}

std::vector<std::wstring> Split(std::wstring text) {
    std::vector<std::wstring> pieces;
    for (;;) {
        std::size_t cut = Find(text, L"\r");
        const std::size_t verticalTab = Find(text, L"\v");
        cut = verticalTab != 0 && verticalTab < cut ? verticalTab : cut;
        if (cut == 0) {
            pieces.push_back(text);
            return pieces;
        }
        pieces.push_back(Left(text, cut));
        text = From(text, cut + 1);
    }
}

}  // namespace beacon::reference
