#include "addin/registration.h"

#include <windows.h>

#include <beacon_olk_adapter.h>

#include <string>

#include "com/error.h"
#include "com/server_registration.h"

namespace beacon {
namespace {

constexpr com::RegisteredClass kConnect = {L"Beacon Outlook Adapter", L"BeaconOLKAdapter.Connect", CLSID_Connect,
                                           LIBID_BeaconOLKAdapter};
constexpr DWORD kLoadAtStartup = 3;

bool IsEmpty(const wchar_t* key) {
    const com::UniqueKey opened = com::OpenForReading(HKEY_LOCAL_MACHINE, key);
    if (!opened) return false;
    DWORD keys = 1;
    DWORD values = 1;
    RegQueryInfoKeyW(opened.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    return keys == 0 && values == 0;
}

}  // namespace

void RegisterAddIn() {
    com::WriteClass(kConnect);
    com::WriteText(HKEY_LOCAL_MACHINE, kAddInKey, L"FriendlyName", kConnect.title);
    com::WriteText(HKEY_LOCAL_MACHINE, kAddInKey, L"Description", L"Connects Outlook with Beacon");
    com::WriteValue(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior", REG_DWORD, &kLoadAtStartup, sizeof kLoadAtStartup);
    com::RegisterOwnLibrary();
}

void UnregisterAddIn() {
    const std::wstring name = com::ProgIdKey(kConnect);
    const std::wstring key = com::ClassKey(kConnect);
    const LSTATUS failure = com::ServesOtherBitness(com::GuidText(kConnect.id))
                                ? com::DeleteKeys({kAddInKey, key})
                                : com::DeleteKeys({kAddInKey, name, key});
    for (const wchar_t* parent : {L"Software\\Microsoft\\Office\\Outlook\\Addins",
                                  L"Software\\Microsoft\\Office\\Outlook", L"Software\\Microsoft\\Office"}) {
        // RegDeleteKey fails when another installer has put something into the key meanwhile.
        if (!IsEmpty(parent) || RegDeleteKeyW(HKEY_LOCAL_MACHINE, parent) != ERROR_SUCCESS) break;
    }
    // The error for an unregistered library differs between systems, so look it up first.
    if (!com::LibraryFile(kConnect.library).empty()) com::UnregisterOwnLibrary(kConnect.library);
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(failure)));
}

}  // namespace beacon
