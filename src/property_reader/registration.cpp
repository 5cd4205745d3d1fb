#include "property_reader/registration.h"

#include <windows.h>

#include <string>

#include "com/error.h"
#include "com/module.h"
#include "com/server_registration.h"

namespace beacon {
namespace {

constexpr GUID kLibrary = {0x53329747, 0x6296, 0x4990, {0xBB, 0x17, 0xEB, 0x73, 0xF5, 0x13, 0x01, 0xBD}};

constexpr com::RegisteredClass kReader = {L"MAPI property reader", L"Mapiprop.MAPIPropWrapper",
                                          L"{C3EEC785-E482-475A-BB9A-D368521FD50A}",
                                          L"{53329747-6296-4990-BB17-EB73F51301BD}"};

bool IsSame(const std::wstring& text, const std::wstring& other) { return lstrcmpiW(text.c_str(), other.c_str()) == 0; }

bool IsThisFile(const std::wstring& file) { return IsSame(file, com::ModulePath()); }

/// Whether this class is served by something else than this file.
bool IsAnothers(const std::wstring& classId) {
    const std::wstring key = L"Software\\Classes\\CLSID\\" + classId;
    if (!com::ReadText(key + L"\\LocalServer32", nullptr).empty()) return true;
    const std::wstring file = com::ReadText(key + L"\\InprocServer32", nullptr);
    // A file without its folder is looked for as the system does.
    return !IsThisFile(file) && SearchPathW(nullptr, file.c_str(), nullptr, 0, nullptr, nullptr) != 0;
}

}  // namespace

void RegisterReader() {
    const std::wstring named = com::ReadText(com::ProgIdKey(kReader) + L"\\CLSID", nullptr);
    const bool isNamed = !named.empty() && !IsSame(named, kReader.id);
    if (IsAnothers(kReader.id) || (isNamed && (IsAnothers(named) || com::ServesOtherBitness(named)))) return;
    com::WriteClass(kReader);
    com::RegisterOwnLibrary();
}

void UnregisterReader() {
    const std::wstring name = com::ProgIdKey(kReader);
    const std::wstring key = com::ClassKey(kReader);
    if (!IsThisFile(com::ReadText(key + L"\\InprocServer32", nullptr))) return;
    const bool nameIsFree =
        IsSame(com::ReadText(name + L"\\CLSID", nullptr), kReader.id) && !com::ServesOtherBitness(kReader.id);
    const LSTATUS failure = nameIsFree ? com::DeleteKeys({name, key}) : com::DeleteKeys({key});
    if (IsThisFile(com::LibraryFile(kLibrary))) com::UnregisterOwnLibrary(kLibrary);
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(failure)));
}

}  // namespace beacon
