#pragma once

#include "tests/standins/child_process.h"

namespace beacon::tests {

/// A stand-in engine that runs beside this program.
class EngineProcess : public ChildProcess {
public:
    /// Starts it with these options beside --raw and waits until it is ready.
    explicit EngineProcess(const std::wstring& options = L"")
        : ChildProcess(L"standin_engine.exe", L"--raw " + options) {
        Wait("# ready", 20000);
    }

    // In order where it can: a killed server's class object stays in Wine's table and is offered to later clients.
    ~EngineProcess() {
        Write("quit\n");
        WaitEnd(5000);
    }

    void Command(const std::string& line) { Write(line + "\n"); }
};

/// Runs it to its end with these options. Exit code.
inline DWORD RunEngine(const std::wstring& options) { return ChildProcess(L"standin_engine.exe", options).WaitEnd(); }

}  // namespace beacon::tests
