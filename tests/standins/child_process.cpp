#include "child_process.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace beacon::tests {

bool PumpUntil(const std::function<bool()>& done, DWORD milliseconds) {
    for (const ULONGLONG start = GetTickCount64();;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (done()) return true;
        if (GetTickCount64() - start >= milliseconds) return false;
        MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

std::wstring PathBeside(const std::wstring& name) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1) + name;
}

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE childInput = nullptr;
    HANDLE childOutput = nullptr;
    CreatePipe(&childInput, &input_, &inherited, 0);
    CreatePipe(&output_, &childOutput, &inherited, 1 << 20);  // it may print while this program is in a call to it
    SetHandleInformation(input_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = childInput;
    startup.hStdOutput = childOutput;
    startup.hStdError = childOutput;
    std::wstring command = L"\"" + PathBeside(program) + L"\" " + arguments;
    const BOOL started =
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process_);
    CloseHandle(childInput);
    CloseHandle(childOutput);
    if (!started) throw std::runtime_error("cannot start the program");
}

ChildProcess::~ChildProcess() {
    if (!HasEnded()) Kill();
    CloseInput();
    CloseHandle(output_);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
}

void ChildProcess::Write(const std::string& text) {
    DWORD written = 0;
    WriteFile(input_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void ChildProcess::CloseInput() {
    if (const HANDLE input = std::exchange(input_, nullptr); input != nullptr) CloseHandle(input);
}

DWORD ChildProcess::WaitEnd(DWORD milliseconds) {
    PumpUntil(
        [this] {
            const bool ended = HasEnded();
            Read();
            return ended;
        },
        milliseconds);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
}

void ChildProcess::Kill() {
    TerminateProcess(process_.hProcess, 99);
    WaitForSingleObject(process_.hProcess, 5000);
}

bool ChildProcess::Wait(const std::string& line, DWORD milliseconds) {
    return Find([&](const std::string& candidate) { return candidate == line; }, milliseconds);
}

bool ChildProcess::WaitBeginning(const std::string& beginning, DWORD milliseconds) {
    return Find([&](const std::string& candidate) { return candidate.starts_with(beginning); }, milliseconds);
}

bool ChildProcess::HasEnded() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0; }

// Programs that outlive this one (Wine starts some) may hold the pipe's other end, so its end is not waited for.
void ChildProcess::Read() {
    DWORD waiting = 0;
    while (PeekNamedPipe(output_, nullptr, 0, nullptr, &waiting, nullptr) && waiting != 0) {
        char chunk[4096];
        DWORD read = 0;
        if (!ReadFile(output_, chunk, sizeof(chunk), &read, nullptr)) return;
        for (const char c : std::string_view(chunk, read)) {
            line_ += c;
            if (c != '\n') continue;
            line_.resize(line_.size() - (line_.ends_with("\r\n") ? 2 : 1));
            lines_.push_back(std::exchange(line_, {}));
        }
    }
}

bool ChildProcess::Find(const std::function<bool(const std::string&)>& matches, DWORD milliseconds) {
    const size_t first = next_;
    const auto comes = [&] {
        Read();
        while (next_ < lines_.size())
            if (matches(lines_[next_++])) return true;
        return false;
    };
    if (PumpUntil(comes, milliseconds)) return true;
    std::string seen;
    for (size_t at = first; at < lines_.size(); ++at) seen += "\n  " + lines_[at];
    ADD_FAILURE() << "the line did not come; since the one found last came:" << seen;
    return false;
}

}  // namespace beacon::tests
