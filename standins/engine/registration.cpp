#include "engine/registration.h"

#include <cwchar>
#include <string>

#include "beacon_util.h"
#include "com/server_registration.h"
#include "common/program.h"

namespace beacon::standin {
namespace {

struct Class {
    const wchar_t* id;
    const wchar_t* name;
    const wchar_t* description;
    std::wstring server;  // command line for LocalServer32; empty: none

    std::wstring NameKey() const { return std::wstring(L"Software\\Classes\\") + name; }

    std::wstring IdKey() const { return std::wstring(L"Software\\Classes\\CLSID\\") + id; }
};

Class Controller() {
    return {L"{05F44787-D470-4D95-BE1E-C710C4BFECB0}",
            L"BeaconController.Application",
            L"Beacon controller (stand-in)",
            {}};
}

Class Toolbar() {
    return {L"{78256BD9-A478-4B56-8867-BB0E43D157BF}", L"BeaconUtil.ToolbarConfig",
            L"Beacon toolbar configuration (stand-in)", L"\"" + ProgramPath() + L"\""};
}

// The description tells a key of this program from that of an installed engine, which is left alone.
bool IsFree(const std::wstring& key, const Class& which) {
    const std::wstring description = com::MachineText(key);
    return description.empty() || description == which.description;
}

void Register(const Class& which) {
    const auto write = [](const std::wstring& key, const std::wstring& value) {
        com::WriteText(HKEY_LOCAL_MACHINE, key, nullptr, value);
    };
    if (IsFree(which.NameKey(), which)) {
        write(which.NameKey(), which.description);
        write(which.NameKey() + L"\\CLSID", which.id);
    }
    if (!IsFree(which.IdKey(), which)) return;
    write(which.IdKey(), which.description);
    write(which.IdKey() + L"\\ProgID", which.name);
    if (!which.server.empty()) write(which.IdKey() + L"\\LocalServer32", which.server);
}

void Unregister(const Class& which) {
    for (const std::wstring& key : {which.NameKey(), which.IdKey()})
        if (IsFree(key, which)) com::DeleteKeys({key});
}

}  // namespace

void RegisterController() {
    com::RegisterOwnLibrary();
    Register(Controller());
}

void RegisterToolbar() { Register(Toolbar()); }

void UnregisterAll() {
    Unregister(Controller());
    Unregister(Toolbar());
    // An installed engine may serve the library; then it stays.
    if (_wcsicmp(com::LibraryFile(LIBID_BeaconUtilLib).c_str(), ProgramPath().c_str()) == 0)
        com::UnregisterOwnLibrary(LIBID_BeaconUtilLib);
}

}  // namespace beacon::standin
