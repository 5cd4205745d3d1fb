#pragma once

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "common/threads.h"

namespace beacon::test {

/// A child process with redirected standard input, output and error. The destructor terminates it.
class ChildProcess {
public:
    /// Starts a program in the folder of this one. Throws std::runtime_error.
    ChildProcess(const std::wstring& program, const std::wstring& arguments);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    ~ChildProcess() { Kill(); }

    /// Writes to its standard input. Has no effect after its end.
    void Write(const std::string& text) const;

    void CloseInput() { input_.reset(); }

    /// Pumps messages until it has ended and all output has been read. Returns the exit code, or 259 after the
    /// time-out.
    DWORD WaitEnd(DWORD milliseconds = 8000);
    void Kill() const;

    /// Pumps messages until a line after the last match matches. Adds a test failure after the time-out.
    bool Wait(const testing::Matcher<const std::string&>& line, DWORD milliseconds = 5000);

    /// All lines so far, without line ends.
    const std::vector<std::string>& Lines() const { return lines_; }

private:
    void Read();

    standin::UniqueHandle process_;
    standin::UniqueHandle input_;
    standin::UniqueHandle output_;
    std::string line_;
    std::vector<std::string> lines_;
    size_t next_ = 0;
};

}  // namespace beacon::test
