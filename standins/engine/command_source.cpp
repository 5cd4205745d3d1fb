#include "command_source.h"

#include <algorithm>
#include <thread>
#include <utility>
#include <vector>

#include "output.h"

namespace beacon::standin {
namespace {

// The library's matcher recurses once a character.
constexpr size_t kMatchedCharacters = 2000;

class LineSplitter {
public:
    explicit LineSplitter(CommandSource& source) : source_(source) {}

    void Feed(std::string_view bytes) {
        for (const char c : bytes)
            if (c == '\n')
                Flush();
            else
                line_ += c;
    }

    void Finish() {
        if (!line_.empty()) Flush();
    }

private:
    void Flush() {
        if (line_.starts_with("\xEF\xBB\xBF")) line_.erase(0, 3);
        if (line_.ends_with('\r')) line_.pop_back();
        source_.Add(FromUtf8(line_));
        line_.clear();
    }

    CommandSource& source_;
    std::string line_;
};

// A console gives UTF-8 only when asked for UTF-16.
bool ReadChunk(HANDLE input, bool console, std::string& chunk) {
    DWORD read = 0;
    if (console) {
        wchar_t text[1024];
        if (!ReadConsoleW(input, text, static_cast<DWORD>(std::size(text)), &read, nullptr) || read == 0) return false;
        chunk = ToUtf8(std::wstring_view(text, read));
        return chunk.find('\x1A') == std::string::npos;
    }
    chunk.resize(4096);
    if (!ReadFile(input, chunk.data(), static_cast<DWORD>(chunk.size()), &read, nullptr) || read == 0) return false;
    chunk.resize(read);
    return true;
}

}  // namespace

void CommandSource::Add(std::wstring line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(std::move(line));
    SetEvent(wake_);
}

void CommandSource::End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    SetEvent(wake_);
}

void CommandSource::Run(Monitor& monitor, const Runner& runner) {
    while (MayRun(monitor)) {
        const std::optional<std::wstring> line = Next();
        if (!line) return;
        const size_t first = line->find_first_not_of(L" \t");
        if (first != std::wstring::npos && (*line)[first] != L'#') runner(line->substr(first), *this);
    }
}

bool CommandSource::IsDone() {
    const std::lock_guard lock(mutex_);
    return ended_ && lines_.empty() && !until_;
}

void CommandSource::Wait(uint64_t milliseconds) { until_ = GetTickCount64() + milliseconds; }

void CommandSource::WaitFor(const std::wstring& pattern, uint64_t milliseconds) {
    pattern_ = std::wregex(pattern, std::regex::ECMAScript);
    patternText_ = pattern;
    Wait(milliseconds);
}

bool CommandSource::MayRun(Monitor& monitor) {
    if (!until_) return true;
    if (pattern_) {
        for (nextLine_ = std::max(nextLine_, monitor.FirstLine()); nextLine_ < monitor.LineCount();) {
            const std::wstring start = monitor.Line(nextLine_++).substr(0, kMatchedCharacters);
            if (!std::regex_search(start, *pattern_)) continue;
            pattern_.reset();
            until_.reset();
            return true;
        }
    }
    if (GetTickCount64() < *until_) return false;
    until_.reset();
    if (std::exchange(pattern_, std::nullopt))
        monitor.Error(L"wait_for: no line matched " + patternText_ + L" in time");
    return true;
}

std::optional<std::wstring> CommandSource::Next() {
    const std::lock_guard lock(mutex_);
    if (lines_.empty()) return std::nullopt;
    std::wstring line = std::move(lines_.front());
    lines_.pop_front();
    return line;
}

void ReadStandardInput(const std::shared_ptr<CommandSource>& source) {
    std::thread([source] {
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        DWORD mode = 0;
        const bool console = GetConsoleMode(input, &mode) != FALSE;
        LineSplitter splitter(*source);
        std::string chunk;
        while (ReadChunk(input, console, chunk)) splitter.Feed(chunk);
        splitter.Finish();
        source->End();
    }).detach();
}

bool ReadScript(CommandSource& source, const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    LineSplitter splitter(source);
    std::string chunk;
    while (ReadChunk(file, false, chunk)) splitter.Feed(chunk);
    splitter.Finish();
    CloseHandle(file);
    return true;
}

}  // namespace beacon::standin
