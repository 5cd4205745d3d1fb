#pragma once

#include <windows.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace beacon::tests {

/// Dispatches messages, and so incoming COM calls, until `done` or the time is over. The last value of `done`.
bool PumpUntil(const std::function<bool()>& done, DWORD milliseconds = 5000);

/// The path of a file in this program's folder.
std::wstring PathBeside(const std::wstring& name);

/// A stand-in engine that runs beside this program. It quits with this object, or is killed when it does not.
class EngineProcess {
public:
    /// Starts it with these options and waits for "# ready". Options beside --raw.
    explicit EngineProcess(const std::wstring& options = L"", bool raw = true);
    ~EngineProcess();
    EngineProcess(const EngineProcess&) = delete;
    EngineProcess& operator=(const EngineProcess&) = delete;

    void Command(const std::string& line);
    void CloseInput();
    /// Pumps until it has printed this whole line after the one found last. Records a failure when it does not.
    bool Wait(const std::string& line, DWORD milliseconds = 5000);
    /// The same for a line that begins so; the line, or "" in time.
    std::string WaitBeginning(const std::string& beginning, DWORD milliseconds = 5000);
    /// Pumps until it has ended and all its output is here. Exit code, or 259 when it runs on.
    DWORD WaitEnd(DWORD milliseconds = 8000);
    void Kill();
    std::vector<std::string> Lines() const;

private:
    void ReadOutput();
    std::string Find(const std::function<bool(const std::string&)>& matches, DWORD milliseconds);

    PROCESS_INFORMATION process_{};
    HANDLE input_ = nullptr;
    HANDLE output_ = nullptr;
    std::thread reader_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    bool ended_ = false;
    size_t next_ = 0;
};

}  // namespace beacon::tests
