#include "common/journal.h"

#include <cwchar>
#include <iterator>
#include <utility>

namespace beacon::standin {
namespace {

constexpr size_t kRememberedLines = 1000;
constexpr size_t kMatchedCharacters = 2000;  // the library's matcher recurses once a character

void Write(HANDLE file, std::wstring_view line) {
    const std::string bytes = ToUtf8(line) + "\n";
    for (size_t done = 0; done < bytes.size();) {
        DWORD written = 0;
        const auto rest = static_cast<DWORD>(bytes.size() - done);
        if (!WriteFile(file, bytes.data() + done, rest, &written, nullptr) || written == 0) return;
        done += written;
    }
}

}  // namespace

Journal::Journal() { SetConsoleOutputCP(CP_UTF8); }

Journal::~Journal() {
    if (log_ != INVALID_HANDLE_VALUE) CloseHandle(log_);
}

bool Journal::OpenLog(const std::wstring& path) {
    log_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
    return log_ != INVALID_HANDLE_VALUE;
}

void Journal::Print(std::wstring_view line) {
    if (take_)
        take_(line);
    else
        Write(GetStdHandle(STD_OUTPUT_HANDLE), line);
}

void Journal::Record(std::wstring_view line) {
    if (log_ != INVALID_HANDLE_VALUE) Write(log_, line);
    lines_.emplace_back(line.substr(0, kMatchedCharacters));
    if (lines_.size() <= kRememberedLines) return;
    lines_.pop_front();
    if (searched_ > 0) --searched_;
}

void Journal::Await(std::wregex pattern) {
    pattern_ = std::move(pattern);
    searched_ = 0;
}

bool Journal::HasMatch() {
    for (; searched_ < lines_.size(); ++searched_) {
        if (!std::regex_search(lines_[searched_], pattern_)) continue;
        lines_.erase(lines_.begin(), std::next(lines_.begin(), static_cast<std::ptrdiff_t>(searched_ + 1)));
        searched_ = 0;
        return true;
    }
    return false;
}

Journal& TheJournal() {
    static Journal journal;
    return journal;
}

void Say(std::wstring_view line) {
    TheJournal().Record(line);
    TheJournal().Print(line);
}

void PrintError(std::wstring_view line) { Write(GetStdHandle(STD_ERROR_HANDLE), line); }

std::wstring DecimalHandle(HWND window) { return std::to_wstring(HandleToLong(window)); }

std::wstring ResultText(HRESULT result) {
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08lX", static_cast<unsigned long>(result));
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
