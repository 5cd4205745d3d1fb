#include "common/words.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>

namespace beacon::standin {
namespace {

constexpr wchar_t kSeparators[] = L" \t,\r\n";

std::wstring WithoutEscape(wchar_t character) {
    switch (character) {
        case L'n': return L"\n";
        case L'r': return L"\r";
        case L't': return L"\t";
        case L'"': return L"\"";
        case L'\\': return L"\\";
        default: return {L'\\', character};
    }
}

}  // namespace

std::optional<long> ParseNumber(const std::wstring& text) {
    wchar_t* end = nullptr;
    errno = 0;
    const long value = std::wcstol(text.c_str(), &end, 10);
    if (text.empty() || *end != L'\0' || errno == ERANGE) return std::nullopt;
    return value;
}

Words::Words(std::wstring line) : line_(std::move(line)) { GoTo(0); }

bool Words::AtEnd() const { return at_ == line_.size() || line_[at_] == L'#'; }

bool Words::Accept(std::wstring_view word) {
    if (AtEnd()) return false;
    const Word next = Next();
    if (next.quoted || next.text != word) return false;
    GoTo(next.end);
    return true;
}

std::wstring Words::Take(const wchar_t* what) {
    if (AtEnd()) throw ScriptError{std::wstring(what) + L" is missing"};
    Word next = Next();
    GoTo(next.end);
    return std::move(next.text);
}

bool Words::NextIsNumber() const {
    if (AtEnd()) return false;
    const Word next = Next();
    return !next.quoted && ParseNumber(next.text).has_value();
}

long Words::TakeNumber(const wchar_t* what) {
    const bool number = NextIsNumber();
    const std::wstring text = Take(what);
    if (!number) throw ScriptError{std::wstring(what) + L" must be a number, not \"" + text + L"\""};
    return *ParseNumber(text);
}

std::chrono::milliseconds Words::TakeTime(std::chrono::milliseconds unit) {
    const std::chrono::milliseconds time = TakeNumber(L"the time") * unit;
    if (time < std::chrono::milliseconds::zero() || time > std::chrono::hours(24))
        throw ScriptError{L"the time must be between 0 and a day"};
    return time;
}

std::wstring Words::TakeRest() {
    const std::wstring rest = line_.substr(at_);
    at_ = line_.size();
    return rest;
}

void Words::End() const {
    if (!AtEnd()) throw ScriptError{L"unexpected \"" + Next().text + L"\""};
}

Words::Word Words::Next() const {
    Word word{{}, line_[at_] == L'"', at_};
    if (!word.quoted) {
        word.end = std::min(line_.find_first_of(std::wstring(kSeparators) + L'"', at_), line_.size());
        word.text = line_.substr(at_, word.end - at_);
        return word;
    }
    while (++word.end < line_.size()) {
        const wchar_t character = line_[word.end];
        if (character == L'"') {
            ++word.end;
            return word;
        }
        if (character == L'\\' && word.end + 1 < line_.size())
            word.text += WithoutEscape(line_[++word.end]);
        else
            word.text += character;
    }
    throw ScriptError{L"quote is not closed"};
}

void Words::GoTo(size_t place) { at_ = std::min(line_.find_first_not_of(kSeparators, place), line_.size()); }

}  // namespace beacon::standin
