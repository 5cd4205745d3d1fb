#include "running_outlook.h"

#include <windows.h>

#include <cstdio>
#include <stdexcept>

namespace beacon::test {
namespace {

constexpr char kProgId[] = "StandinTest.Addin";
constexpr char kClassId[] = "{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}";

constexpr char kStore[] = R"({"folder": "Inbox", "items": [
 {"class": "mail", "entryId": "A1", "subject": "Budget", "senderName": "Anna", "to": "Paul", "receivedBy": "Paul",
  "body": "The first line of the budget.\r\nThe second line.\r\n"},
 {"class": "mail", "entryId": "A2", "subject": "Gr\u00fc\u00dfe \u6771\u4eac", "body": "Ein Text.", "html": "<p>Ein Text.</p>"},
 {"class": "contact", "entryId": "C1", "fullName": "Anna Weber", "firstName": "Anna", "lastName": "Weber"}]})";

std::string Folder(bool temporary) {
    char path[MAX_PATH];
    if (temporary) {
        GetTempPathA(MAX_PATH, path);
        return path;
    }
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string text(path);
    return text.substr(0, text.rfind('\\') + 1);
}

std::string WriteTemporary(const char* name, const std::string& text) {
    const std::string path = Folder(true) + std::to_string(GetCurrentProcessId()) + name;
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) throw std::runtime_error("cannot write " + path);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
    return path;
}

void SetText(const std::string& key, const char* name, const std::string& text) {
    RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(), static_cast<DWORD>(text.size() + 1));
}

const std::string kAddinKey = std::string("Software\\Microsoft\\Office\\Outlook\\Addins\\") + kProgId;

void Register(bool withAddin) {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, kAddinKey.c_str());
    if (!withAddin) return;
    const std::string classes = "Software\\Classes\\";
    SetText(classes + kProgId + "\\CLSID", nullptr, kClassId);
    SetText(classes + "CLSID\\" + kClassId + "\\InprocServer32", nullptr, Folder(false) + "standin_test_addin.dll");
    SetText(classes + "CLSID\\" + kClassId + "\\InprocServer32", "ThreadingModel", "Apartment");
    SetText(kAddinKey, "FriendlyName", "Test");
    const DWORD behavior = 3;
    RegSetKeyValueA(HKEY_LOCAL_MACHINE, kAddinKey.c_str(), "LoadBehavior", REG_DWORD, &behavior, sizeof behavior);
}

struct Pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;

    Pipe() {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        CreatePipe(&read, &write, &inherited, 1 << 20);
    }

    void Close(HANDLE& end) {
        if (end != nullptr) CloseHandle(end);
        end = nullptr;
    }

    ~Pipe() {
        Close(read);
        Close(write);
    }
};

// Programs that outlive the one that is run (Wine starts some) may hold the pipe's other end, so its end is not waited
// for.
void ReadUntilEnd(HANDLE process, HANDLE pipe, std::string& all) {
    const ULONGLONG limit = GetTickCount64() + 20000;
    for (bool ended = false; !ended;) {
        ended = WaitForSingleObject(process, 10) == WAIT_OBJECT_0;
        if (!ended && GetTickCount64() > limit) TerminateProcess(process, 99);
        DWORD waiting = 0;
        while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) && waiting != 0) {
            char buffer[4096];
            DWORD count = 0;
            if (!ReadFile(pipe, buffer, sizeof buffer, &count, nullptr)) break;
            all.append(buffer, count);
        }
    }
}

void Split(Ended& run) {
    for (size_t start = 0; start < run.all.size();) {
        size_t end = run.all.find('\n', start);
        if (end == std::string::npos) end = run.all.size();
        std::string line = run.all.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        run.lines.push_back(line);
        start = end + 1;
    }
}

}  // namespace

size_t Ended::Count(const std::string& part) const {
    size_t count = 0;
    for (size_t at = all.find(part); at != std::string::npos; at = all.find(part, at + 1)) ++count;
    return count;
}

std::vector<std::string> Ended::After(const std::string& start) const {
    std::vector<std::string> result;
    for (const std::string& line : lines)
        if (line.compare(0, start.size(), start) == 0) result.push_back(line.substr(start.size()));
    return result;
}

Ended RunOutlook(const Start& start) {
    Register(start.withAddin);
    std::string command = "\"" + Folder(false) + "standin_outlook.exe\" --store \"" +
                          WriteTemporary("store.json", kStore) + "\" " + start.arguments;
    if (!start.script.empty()) command += " --script \"" + WriteTemporary("script.txt", start.script) + "\"";
    SetEnvironmentVariableA("TEST_ADDIN", start.addin.c_str());
    Pipe output;
    Pipe input;
    SetHandleInformation(output.read, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(input.write, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.read;
    startup.hStdOutput = output.write;
    startup.hStdError = output.write;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("cannot start " + command);
    output.Close(output.write);
    DWORD count = 0;
    WriteFile(input.write, start.input.data(), static_cast<DWORD>(start.input.size()), &count, nullptr);
    input.Close(input.write);
    Ended run;
    ReadUntilEnd(process.hProcess, output.read, run.all);
    GetExitCodeProcess(process.hProcess, &run.code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    Split(run);
    return run;
}

}  // namespace beacon::test
