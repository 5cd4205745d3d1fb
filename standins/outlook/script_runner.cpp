#include "outlook/script_runner.h"

#include <cstdio>
#include <memory>
#include <thread>

#include "outlook/commands.h"
#include "outlook/journal.h"
#include "outlook/outlook.h"

namespace beacon::standin {
namespace {

using Clock = std::chrono::steady_clock;

// Reads one line of UTF-8; false at the end.
bool ReadLine(FILE* file, std::wstring& line) {
    std::string bytes;
    int character;
    while ((character = std::fgetc(file)) != EOF && character != '\n') bytes += static_cast<char>(character);
    if (character == EOF && bytes.empty()) return false;
    if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
    line = FromUtf8(bytes);
    return true;
}

}  // namespace

ScriptRunner::ScriptRunner(Outlook& outlook)
    : outlook_(outlook), arrived_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

ScriptRunner::~ScriptRunner() = default;  // the reading thread may still use the event: the process ends with it

void ScriptRunner::ReadFile(const std::wstring& path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen(path.c_str(), L"rb"), &std::fclose);
    if (file == nullptr) throw com::Error(53, L"cannot open " + path, L"standin_outlook");
    std::wstring line;
    for (int number = 1; ReadLine(file.get(), line); ++number) {
        if (number == 1 && !line.empty() && line[0] == 0xFEFF) line.erase(0, 1);
        file_.push_back({line, number});
    }
}

void ScriptRunner::ReadStandardInput() {
    endsWithFile_ = false;
    std::thread(ReadInput, std::ref(*this)).detach();
}

void ScriptRunner::ReadInput(ScriptRunner& runner) {
    std::wstring line;
    bool more = true;
    while (more) {
        more = ReadLine(stdin, line);
        {
            const std::lock_guard lock(runner.mutex_);
            if (more)
                runner.typed_.push_back(line);
            else
                runner.inputEnded_ = true;
        }
        SetEvent(runner.arrived_);
    }
}

void ScriptRunner::WaitFor(std::chrono::milliseconds time) {
    until_ = Clock::now() + time;
    waitsForTime_ = true;
}

void ScriptRunner::WaitForLine(const std::wstring& pattern, std::chrono::milliseconds limit) {
    try {
        pattern_ = std::wregex(pattern);
    } catch (const std::regex_error&) {
        throw ScriptError{L"\"" + pattern + L"\" is not a regular expression"};
    }
    patternText_ = pattern;
    until_ = Clock::now() + limit;
    waitsForLine_ = true;
}

bool ScriptRunner::IsWaiting() {
    if (waitsForTime_) waitsForTime_ = Clock::now() < until_;
    if (waitsForLine_) {
        if (TheJournal().Consume(pattern_)) {
            waitsForLine_ = false;
        } else if (Clock::now() >= until_) {
            waitsForLine_ = false;
            Fail(current_, L"no line matched \"" + patternText_ + L"\" in time");
        }
    }
    return waitsForTime_ || waitsForLine_;
}

DWORD ScriptRunner::Patience() const {
    if (!waitsForTime_ && !waitsForLine_) return file_.empty() ? 50 : 0;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until_ - Clock::now()).count();
    return left <= 0 ? 0 : static_cast<DWORD>(left < 50 ? left : 50);
}

bool ScriptRunner::Next(Line& line) {
    if (!file_.empty()) {
        line = std::move(file_.front());
        file_.pop_front();
        return true;
    }
    const std::lock_guard lock(mutex_);
    if (typed_.empty()) {
        if (endsWithFile_ || inputEnded_) EndOfCommands();
        return false;
    }
    line = {std::move(typed_.front()), 0};
    typed_.pop_front();
    return true;
}

void ScriptRunner::EndOfCommands() {
    if (!triedToQuit_) {
        triedToQuit_ = true;
        outlook_.RequestQuit(QuitMode::CloseWindows);
        return;
    }
    // An add-in keeps a window open, and no command is left that could change that.
    Say(L"error: the quit was cancelled; quitting all the same");
    failed_ = true;
    outlook_.RequestQuit(QuitMode::Now);
}

void ScriptRunner::Step() {
    if (stepping_ || IsWaiting()) return;
    if (outlook_.IsQuitting()) {
        if (!file_.empty() && !failed_) {
            Say(L"script: " + std::to_wstring(file_.size()) + L" lines after the end were not run");
            file_.clear();
        }
        return;
    }
    Line line{L"", 0};
    stepping_ = true;  // a command may run a message loop, which steps as well
    if (Next(line)) Run(line);
    stepping_ = false;
}

void ScriptRunner::Run(const Line& line) {
    current_ = line;
    try {
        Words words(SplitWords(line.text));
        if (words.AtEnd()) return;
        TheJournal().Echo(line.text);
        RunCommand(words, outlook_, *this);
    } catch (const ScriptError& error) {
        Fail(line, error.text);
    } catch (...) {
        Fail(line, com::CurrentError().description);
    }
}

void ScriptRunner::Fail(const Line& line, const std::wstring& text) {
    if (line.number == 0) {
        Say(L"error: " + text);
        return;
    }
    Say(L"error: line " + std::to_wstring(line.number) + L": " + text);
    failed_ = true;
    file_.clear();
    endsWithFile_ = true;
    outlook_.RequestQuit(QuitMode::CloseWindows);
}

}  // namespace beacon::standin
