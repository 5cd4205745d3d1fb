#include "engine_process.h"

#include <gtest/gtest.h>

#include <utility>

namespace beacon::tests {

std::wstring PathBeside(const std::wstring& name) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1) + name;
}

bool PumpUntil(const std::function<bool()>& done, DWORD milliseconds) {
    for (const ULONGLONG start = GetTickCount64();;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (done()) return true;
        if (GetTickCount64() - start >= milliseconds) return false;
        MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

EngineProcess::EngineProcess(const std::wstring& options, bool raw) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE childInput = nullptr;
    HANDLE childOutput = nullptr;
    CreatePipe(&childInput, &input_, &inherited, 0);
    CreatePipe(&output_, &childOutput, &inherited, 0);
    SetHandleInformation(input_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = childInput;
    startup.hStdOutput = childOutput;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring command = L"\"" + PathBeside(L"standin_engine.exe") + L"\" " + (raw ? L"--raw " : L"") + options;
    EXPECT_TRUE(
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process_));
    CloseHandle(childInput);
    CloseHandle(childOutput);
    reader_ = std::thread([this] { ReadOutput(); });
    if (raw) Wait("# ready", 20000);
}

EngineProcess::~EngineProcess() {
    // In order where it can: a killed server's class object stays in Wine's table and is offered to later clients.
    if (input_ != nullptr) Command("quit");
    if (WaitEnd(5000) == STILL_ACTIVE) Kill();
    CloseInput();
    reader_.join();
    CloseHandle(output_);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
}

void EngineProcess::Command(const std::string& line) {
    const std::string bytes = line + "\n";
    DWORD written = 0;
    WriteFile(input_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);  // fails when it has ended
}

void EngineProcess::CloseInput() {
    if (const HANDLE input = std::exchange(input_, nullptr); input != nullptr) CloseHandle(input);
}

bool EngineProcess::Wait(const std::string& line, DWORD milliseconds) {
    return !Find([&](const std::string& candidate) { return candidate == line; }, milliseconds).empty();
}

std::string EngineProcess::WaitBeginning(const std::string& beginning, DWORD milliseconds) {
    return Find([&](const std::string& candidate) { return candidate.starts_with(beginning); }, milliseconds);
}

DWORD EngineProcess::WaitEnd(DWORD milliseconds) {
    PumpUntil(
        [this] {
            const std::lock_guard lock(mutex_);
            return ended_ && WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0;
        },
        milliseconds);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
}

void EngineProcess::Kill() {
    TerminateProcess(process_.hProcess, 99);
    WaitForSingleObject(process_.hProcess, 5000);
}

std::vector<std::string> EngineProcess::Lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

void EngineProcess::ReadOutput() {
    std::string line;
    char chunk[4096];
    DWORD read = 0;
    while (ReadFile(output_, chunk, sizeof(chunk), &read, nullptr) && read > 0) {
        const std::lock_guard lock(mutex_);
        for (const char c : std::string_view(chunk, read))
            if (c == '\n')
                lines_.push_back(std::exchange(line, std::string()));
            else
                line += c;
    }
    const std::lock_guard lock(mutex_);
    ended_ = true;
}

std::string EngineProcess::Find(const std::function<bool(const std::string&)>& matches, DWORD milliseconds) {
    std::string found;
    const size_t first = next_;
    PumpUntil(
        [&] {
            const std::lock_guard lock(mutex_);
            while (next_ < lines_.size()) {
                if (!matches(lines_[next_++])) continue;
                found = lines_[next_ - 1];
                return true;
            }
            return false;
        },
        milliseconds);
    if (found.empty()) {
        std::string seen;
        const std::vector<std::string> lines = Lines();
        for (size_t at = first; at < lines.size(); ++at) seen += "\n  " + lines[at];
        ADD_FAILURE() << "the line did not come; since the one found last came:" << seen;
    }
    return found;
}

}  // namespace beacon::tests
