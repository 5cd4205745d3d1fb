#pragma once

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "common/threads.h"

namespace beacon::test {

/// A program that runs beside this one, with its standard input and its lines of output, those of standard error among
/// them. It is killed when it outlives this object.
class ChildProcess {
public:
    /// A program in this one's folder. Throws std::runtime_error when it cannot be started.
    ChildProcess(const std::wstring& program, const std::wstring& arguments);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    ~ChildProcess() { Kill(); }

    /// Gives it standard input; has no effect when it has ended.
    void Write(const std::string& text) const;

    void CloseInput() { input_.reset(); }

    /// Pumps until it has ended and all its output is here. Exit code, or 259 when it runs on.
    DWORD WaitEnd(DWORD milliseconds = 8000);
    void Kill() const;

    /// Pumps until it has printed such a line after the one found last. Records a failure when it does not.
    bool Wait(const testing::Matcher<const std::string&>& line, DWORD milliseconds = 5000);

    /// So far, without line ends.
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
