#include "outlook/script_parser.h"

#include <cwchar>

namespace beacon::standin {
namespace {

bool IsSeparator(wchar_t character) {
    return character == L' ' || character == L'\t' || character == L',' || character == L'\r' || character == L'\n';
}

// Reads a quoted word whose opening quote is at `start`; returns the place after its closing quote.
size_t ReadQuoted(std::wstring_view line, size_t start, std::wstring& text) {
    for (size_t i = start + 1; i < line.size(); ++i) {
        if (line[i] == L'"') return i + 1;
        if (line[i] != L'\\' || i + 1 == line.size()) {
            text += line[i];
            continue;
        }
        switch (line[++i]) {
            case L'n': text += L'\n'; break;
            case L'r': text += L'\r'; break;
            case L't': text += L'\t'; break;
            case L'"': text += L'"'; break;
            case L'\\': text += L'\\'; break;
            default: text += {L'\\', line[i]}; break;
        }
    }
    throw ScriptError{L"quote is not closed"};
}

bool IsNumber(const std::wstring& text) {
    const size_t first = !text.empty() && text[0] == L'-' ? 1 : 0;
    return text.size() > first && text.size() < 11 &&
           text.find_first_not_of(L"0123456789", first) == std::wstring::npos;
}

}  // namespace

std::vector<Word> SplitWords(std::wstring_view line) {
    std::vector<Word> words;
    for (size_t i = 0; i < line.size();) {
        if (IsSeparator(line[i])) {
            ++i;
        } else if (line[i] == L'#') {
            break;
        } else if (line[i] == L'"') {
            Word word{L"", true};
            i = ReadQuoted(line, i, word.text);
            words.push_back(std::move(word));
        } else {
            const size_t start = i;
            while (i < line.size() && !IsSeparator(line[i]) && line[i] != L'"') ++i;
            words.push_back({std::wstring(line.substr(start, i - start)), false});
        }
    }
    return words;
}

bool Words::Accept(std::wstring_view text) {
    if (AtEnd() || words_[next_].quoted || words_[next_].text != text) return false;
    ++next_;
    return true;
}

std::wstring Words::Take(const wchar_t* what) {
    if (AtEnd()) throw ScriptError{std::wstring(what) + L" is missing"};
    return words_[next_++].text;
}

long Words::TakeNumber(const wchar_t* what) {
    const bool number = NextIsNumber();
    const std::wstring text = Take(what);
    if (!number) throw ScriptError{std::wstring(what) + L" must be a number, not \"" + text + L"\""};
    return std::wcstol(text.c_str(), nullptr, 10);
}

bool Words::NextIsNumber() const { return !AtEnd() && !words_[next_].quoted && IsNumber(words_[next_].text); }

void Words::End() const {
    if (!AtEnd()) throw ScriptError{L"unexpected \"" + words_[next_].text + L"\""};
}

}  // namespace beacon::standin
