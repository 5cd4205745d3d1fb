#include "common/console.h"

#include <algorithm>
#include <mutex>
#include <regex>
#include <utility>

#include "com/error.h"
#include "common/journal.h"
#include "common/threads.h"

namespace beacon::standin {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using TakeLine = std::function<void(std::wstring)>;

constexpr milliseconds kMostPatience{50};
constexpr size_t kHelpColumn = 46;

// A console returns correct text only in UTF-16.
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

void Deliver(std::string line, const TakeLine& take) {
    if (line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.ends_with('\r')) line.pop_back();
    take(FromUtf8(line));
}

void ReadLines(HANDLE input, const TakeLine& take) {
    DWORD mode = 0;
    const bool console = GetConsoleMode(input, &mode) != FALSE;
    std::string line;
    std::string chunk;
    while (ReadChunk(input, console, chunk)) {
        for (const char c : chunk)
            if (c == '\n')
                Deliver(std::exchange(line, {}), take);
            else
                line += c;
    }
    if (!line.empty()) Deliver(std::move(line), take);
}

}  // namespace

/// Standard input, shared with the reading thread.
struct Console::Input {
    ~Input() { CloseHandle(arrived); }

    bool IsEmpty() {
        const std::scoped_lock lock(mutex);
        return lines.empty();
    }

    const HANDLE arrived = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    Mutex mutex;
    std::deque<std::wstring> lines;
    bool ended = false;
};

Console::Console() : input_(std::make_shared<Input>()) {
    Add(L"wait MS | for REGEX [SECONDS]", L"waits for a time, or until a line matches (default: 10 s)",
        [this](Words& words) { Wait(words); });
    Add(L"say TEXT", L"prints the text", [this](Words& words) {
        std::wstring text = L"say";
        while (!words.AtEnd()) text += L" " + words.Take(L"text");
        SayLine(text);
    });
    Add(L"help", L"lists the commands", [this](Words&) { SayHelp(); });
}

void Console::ReadScript(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw com::Error(53, L"cannot open " + path);
    ReadLines(file, [this, number = 0](std::wstring line) mutable { script_.push_back({std::move(line), ++number}); });
    CloseHandle(file);
}

void Console::ReadStandardInput() {
    readsInput_ = true;
    StartThread([input = input_] {
        ReadLines(GetStdHandle(STD_INPUT_HANDLE), [&](std::wstring line) {
            const std::scoped_lock lock(input->mutex);
            input->lines.push_back(std::move(line));
            SetEvent(input->arrived);
        });
        const std::scoped_lock lock(input->mutex);
        input->ended = true;
        SetEvent(input->arrived);
    });
}

bool Console::Step() {
    if (!MayRun()) return false;
    const std::optional<Line> line = NextLine();
    if (!line) return false;
    running_ = true;  // a command may run a message loop, which calls Step
    Run(*line);
    running_ = false;
    return true;
}

bool Console::IsDone() const {
    if (running_ || until_ || !script_.empty()) return false;
    const std::scoped_lock lock(input_->mutex);
    return !readsInput_ || (input_->ended && input_->lines.empty());
}

HANDLE Console::Arrived() const { return input_->arrived; }

DWORD Console::Patience() const {
    if (!until_) return script_.empty() && (!readsInput_ || input_->IsEmpty()) ? kMostPatience.count() : 0;
    const auto left = std::chrono::ceil<milliseconds>(*until_ - Clock::now());
    return static_cast<DWORD>(std::clamp(left, milliseconds::zero(), kMostPatience).count());
}

bool Console::MayRun() {
    if (running_) return false;
    if (!until_) return true;
    const bool came = pattern_ && TheJournal().HasMatch();
    if (!came && Clock::now() < *until_) return false;
    until_.reset();
    const std::optional<std::wstring> pattern = std::exchange(pattern_, std::nullopt);
    if (pattern && !came) {
        current_.text = L"no line matched \"" + *pattern + L"\" in time";
        Failed(current_);
    }
    return true;
}

void Console::Add(const wchar_t* usage, const wchar_t* help, std::function<void(Words&)> run) {
    commands_.push_back({usage, help, std::move(run)});
}

std::optional<Console::Line> Console::NextLine() {
    if (!script_.empty()) {
        Line line = std::move(script_.front());
        script_.pop_front();
        return line;
    }
    const std::scoped_lock lock(input_->mutex);
    if (!readsInput_ || input_->lines.empty()) return std::nullopt;
    Line line{std::move(input_->lines.front()), 0};
    input_->lines.pop_front();
    return line;
}

void Console::Run(const Line& line) {
    current_ = {{}, line.number, {}};
    try {
        Words words(line.text);
        if (words.AtEnd()) return;
        Starting(line.text);
        const std::wstring name = words.Take(L"command");
        const auto command = std::ranges::find_if(commands_, [&](const Command& candidate) {
            return name == candidate.usage.substr(0, candidate.usage.find(L' '));
        });
        if (command == commands_.end()) throw ScriptError{L"unknown command \"" + name + L"\"; \"help\" lists them"};
        current_.command = name;
        if (command->usage == name) words.End();
        command->run(words);
        return;
    } catch (const ScriptError& error) {
        current_.text = error.text;
    } catch (...) {
        current_.text = com::CurrentError().Description();
    }
    Failed(current_);
}

void Console::Wait(Words& words) {
    if (!words.Accept(L"for")) {
        const milliseconds time = words.TakeTime(milliseconds(1));
        words.End();
        until_ = Clock::now() + time;
        return;
    }
    const std::wstring pattern = words.Take(L"pattern");
    const milliseconds time = words.AtEnd() ? std::chrono::seconds(10) : words.TakeTime(std::chrono::seconds(1));
    words.End();
    try {
        TheJournal().Await(std::wregex(pattern));
    } catch (const std::regex_error&) {
        throw ScriptError{L"\"" + pattern + L"\" is not a regular expression"};
    }
    pattern_ = pattern;
    until_ = Clock::now() + time;
}

void Console::SayHelp() {
    for (const Command& command : commands_) {
        std::wstring line = L"  " + command.usage;
        line.append(line.size() < kHelpColumn ? kHelpColumn - line.size() : 0, L' ');
        SayLine(line + L" " + command.help);
    }
}

}  // namespace beacon::standin
