#include "running_outlook.h"

#include <fstream>

#include "com/text.h"
#include "tests/standins/child_process.h"

namespace beacon::tests {
namespace {

constexpr char kStore[] = R"({"folder": "Inbox", "items": [
 {"class": "mail", "entryId": "A1", "subject": "Budget", "senderName": "Anna", "to": "Paul", "receivedBy": "Paul",
  "body": "The first line of the budget.\r\nThe second line.\r\n"},
 {"class": "mail", "entryId": "A2", "subject": "Gr\u00fc\u00dfe \u6771\u4eac", "body": "Ein Text.", "html": "<p>Ein Text.</p>"},
 {"class": "contact", "entryId": "C1", "fullName": "Anna Weber", "firstName": "Anna", "lastName": "Weber"}]})";

std::wstring WriteTemporary(const wchar_t* name, const std::string& text) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + std::to_wstring(GetCurrentProcessId()) + name;
    std::ofstream(com::ToAnsi(path), std::ios::binary) << text;
    return path;
}

void SetText(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

void Register(bool withAddin) {
    const std::wstring classes = L"Software\\Classes\\";
    const std::wstring server = classes + L"CLSID\\{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}\\InprocServer32";
    const std::wstring addin = L"Software\\Microsoft\\Office\\Outlook\\Addins\\StandinTest.Addin";
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, addin.c_str());
    if (!withAddin) return;
    SetText(classes + L"StandinTest.Addin\\CLSID", nullptr, L"{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}");
    SetText(server, nullptr, PathBeside(L"standin_test_addin.dll"));
    SetText(server, L"ThreadingModel", L"Apartment");
    SetText(addin, L"FriendlyName", L"Test");
    const DWORD behavior = 3;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, addin.c_str(), L"LoadBehavior", REG_DWORD, &behavior, sizeof behavior);
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
        if (line.starts_with(start)) result.push_back(line.substr(start.size()));
    return result;
}

Ended RunOutlook(const Start& start) {
    Register(start.withAddin);
    std::wstring arguments = L"--store \"" + WriteTemporary(L"store.json", kStore) + L"\" " + start.arguments;
    if (!start.script.empty()) arguments += L" --script \"" + WriteTemporary(L"script.txt", start.script) + L"\"";
    SetEnvironmentVariableW(L"TEST_ADDIN", start.addin.c_str());
    ChildProcess outlook(L"standin_outlook.exe", arguments);
    outlook.Write(start.input);
    outlook.CloseInput();
    Ended run;
    run.code = outlook.WaitEnd(20000);
    run.lines = outlook.Lines();
    for (const std::string& line : run.lines) run.all += line + "\n";
    return run;
}

}  // namespace beacon::tests
