#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "check/server.h"

namespace beacon::check {

/// A problem that keeps the add-in from working, or may.
struct Finding {
    const char* id;
    std::wstring what;
    std::wstring remedy;
};

struct InstalledOutlook {
    std::wstring version;  // "12.0"
    int bits;
};

struct AddIn {
    Server server;
    // LoadBehavior tells Outlook when to load the add-in. The user's value overrides the machine's.
    std::optional<DWORD> ofMachine;
    std::optional<DWORD> ofUser;
};

enum class ControllerState { Absent, Hangs, Fails, Answers };

enum class Origin { Default, User, Machine };

struct SettingInForce {
    const wchar_t* name;
    std::wstring value;
    Origin origin;
    std::optional<std::wstring> registered;  // as the registry has it
};

struct Logs {
    bool on = false;
    std::wstring folder;  // ends in a backslash; empty if the environment variable AppData is not set
    bool exists = false;
    std::wstring blockedBy;                // a file where the folder belongs; empty if there is none
    std::vector<std::wstring> unwritable;  // existing logs that the add-in cannot write
    std::vector<std::wstring> exceptions;  // the last lines of each file that begin with "Exception in"
    size_t exceptionCount = 0;
};

struct Report {
    std::vector<InstalledOutlook> outlooks;
    std::vector<AddIn> addIns;    // one for each bitness of this system
    std::vector<Server> readers;  // the property reader, for each bitness that matters here
    ControllerState controller = ControllerState::Absent;
    std::vector<SettingInForce> settings;
    Logs logs;
    std::vector<Finding> findings;  // in the order in which to deal with them
};

/// Checks the installation without changing anything. The engine's controller has `timeout` milliseconds to answer.
Report Examine(DWORD timeout);

/// Text for people, and one JSON object for programs (docs/install.md describes it). Lines end in LF.
std::wstring ReportAsText(const Report& report);
std::wstring ReportAsJson(const Report& report);

}  // namespace beacon::check
