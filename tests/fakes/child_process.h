#pragma once

#include <windows.h>

#include <gmock/gmock-matchers.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/program.h"
#include "common/threads.h"
#include "tests/fakes/pump.h"

namespace beacon::test {

/// A child process with redirected standard input, output and error. The destructor terminates it.
class ChildProcess {
public:
    /// Starts a program in the folder of this one. Throws std::runtime_error.
    ChildProcess(const std::wstring& program, const std::wstring& arguments) {
        SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        HANDLE input = nullptr;
        HANDLE output = nullptr;
        CreatePipe(&startup.hStdInput, &input, &inherited, 0);
        CreatePipe(&output, &startup.hStdOutput, &inherited, 1 << 20);  // it may print while this process waits for it
        startup.hStdError = startup.hStdOutput;
        input_.reset(input);
        output_.reset(output);
        for (const HANDLE own : {input, output}) SetHandleInformation(own, HANDLE_FLAG_INHERIT, 0);
        std::wstring command = L"\"" + standin::ProgramFolder() + L"\\" + program + L"\" " + arguments;
        PROCESS_INFORMATION started{};
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started);
        for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, started.hThread}) CloseHandle(handle);
        process_.reset(started.hProcess);
        if (process_ == nullptr) throw std::runtime_error("cannot start the program");
    }

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    ~ChildProcess() { Kill(); }

    /// Writes to its standard input. Has no effect after its end.
    void Write(const std::string& text) const {
        DWORD written = 0;
        WriteFile(input_.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }

    /// Pumps messages until it has ended and all output has been read. Returns the exit code, or 259 after the
    /// time-out.
    DWORD WaitEnd(DWORD milliseconds = 8000) {
        Pump(milliseconds, [this] {
            const bool ended = WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0;
            Read();
            return ended;
        });
        DWORD code = 0;
        GetExitCodeProcess(process_.get(), &code);
        return code;
    }

    void Kill() const {
        TerminateProcess(process_.get(), 99);
        WaitForSingleObject(process_.get(), 5000);
    }

    /// Pumps messages until a line after the last match matches. Adds a test failure after the time-out.
    bool Wait(const testing::Matcher<const std::string&>& line, DWORD milliseconds = 5000) {
        const auto first = static_cast<std::ptrdiff_t>(next_);
        const auto comes = [&] {
            Read();
            while (next_ < lines_.size())
                if (line.Matches(lines_[next_++])) return true;
            return false;
        };
        if (Pump(milliseconds, comes)) return true;
        ADD_FAILURE() << "no line " << testing::DescribeMatcher<const std::string&>(line)
                      << " came; since the last found: "
                      << testing::PrintToString(std::vector(lines_.begin() + first, lines_.end()));
        return false;
    }

    /// All lines so far, without line ends.
    const std::vector<std::string>& Lines() const { return lines_; }

private:
    // Does not wait for the end of the pipe: programs that Wine starts may keep the other end open.
    void Read() {
        DWORD waiting = 0;
        while (PeekNamedPipe(output_.get(), nullptr, 0, nullptr, &waiting, nullptr) && waiting != 0) {
            char chunk[4096];
            DWORD read = 0;
            if (!ReadFile(output_.get(), chunk, sizeof(chunk), &read, nullptr)) return;
            for (const char c : std::string_view(chunk, read)) {
                line_ += c;
                if (c != '\n') continue;
                line_.resize(line_.size() - (line_.ends_with("\r\n") ? 2 : 1));
                lines_.push_back(std::exchange(line_, {}));
            }
        }
    }

    standin::UniqueHandle process_;
    standin::UniqueHandle input_;
    standin::UniqueHandle output_;
    std::string line_;
    std::vector<std::string> lines_;
    size_t next_ = 0;
};

}  // namespace beacon::test
