#include "outlook/journal.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace beacon::standin {

void Journal::Say(std::wstring_view line) {
    lines_.emplace_back(line);
    Print(line);
}

void Journal::Echo(std::wstring_view command) { Print(L"> " + std::wstring(command)); }

void Journal::Print(std::wstring_view line) {
    const std::string bytes = ToUtf8(line) + "\n";
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

bool Journal::Consume(const std::wregex& pattern) {
    for (size_t i = consumed_; i < lines_.size(); ++i) {
        if (!std::regex_search(lines_[i], pattern)) continue;
        consumed_ = i + 1;
        return true;
    }
    return false;
}

Journal& TheJournal() {
    static Journal journal;
    return journal;
}

void Say(std::wstring_view line) { TheJournal().Say(line); }

std::wstring HandleText(void* window) { return std::to_wstring(HandleToLong(window)); }

std::wstring ResultText(long result) {
    wchar_t text[16];
    std::swprintf(text, 16, L"0x%08lX", static_cast<unsigned long>(result));
    return text;
}

std::wstring Quoted(std::wstring_view text) {
    constexpr size_t kMost = 100;
    std::wstring result = L"\"";
    for (const wchar_t character : text.substr(0, kMost)) {
        if (character == L'\r') continue;
        result += character == L'\n' ? L' ' : character;
    }
    result += text.size() > kMost ? L"...\"" : L"\"";
    return result;
}

}  // namespace beacon::standin
