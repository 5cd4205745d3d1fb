#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "check/server.h"

namespace beacon::check {

/// Something that keeps the add-in from working, or may.
struct Finding {
    const char* id;  // as --json names it
    std::wstring what;
    std::wstring remedy;
};

struct InstalledOutlook {
    std::wstring version;  // "12.0"
    int bits;
};

struct AddIn {
    Server server;
    // The value that tells Outlook when to load it: the user's own goes before the machine's.
    std::optional<DWORD> ofMachine;
    std::optional<DWORD> ofUser;
};

enum class ControllerState { Absent, Hangs, Fails, Answers };

enum class Origin { Default, User, Machine };

struct SettingInForce {
    const wchar_t* name;
    std::wstring value;
    Origin origin;
    std::optional<std::wstring> registered;  // as it stands in the registry
};

struct Logs {
    bool on = false;
    std::wstring folder;  // "" while the environment does not tell where it is
    bool exists = false;
    std::vector<std::wstring> exceptions;  // the last lines of each file that begin with "Exception in"
    size_t exceptionCount = 0;             // of all
};

struct Report {
    std::vector<InstalledOutlook> outlooks;
    std::vector<AddIn> addIns;    // for programs of either bitness
    std::vector<Server> readers;  // the property reader, for those bitnesses that matter here
    ControllerState controller = ControllerState::Absent;
    std::vector<SettingInForce> settings;
    Logs logs;
    std::vector<Finding> findings;  // the gravest first
};

/// Looks at everything; the controller is given so many milliseconds to answer. Changes nothing.
Report Examine(DWORD patience);

/// For people: lines of text. For programs: one object. Both in UTF-16, with LF at the ends of lines.
std::wstring ReportAsText(const Report& report);
std::wstring ReportAsJson(const Report& report);

}  // namespace beacon::check
