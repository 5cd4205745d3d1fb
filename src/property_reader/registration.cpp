#include "property_reader/registration.h"

#include <windows.h>

#include <mapi_prop.h>

#include <iterator>
#include <string>

#include "com/error.h"
#include "com/module.h"
#include "com/server_registration.h"

namespace beacon {
namespace {

constexpr com::RegisteredClass kReader = {L"MAPI property reader", L"Mapiprop.MAPIPropWrapper", CLSID_MAPIPropWrapper,
                                          LIBID_Mapiprop};

bool IsSame(const std::wstring& text, const std::wstring& other) { return lstrcmpiW(text.c_str(), other.c_str()) == 0; }

bool IsThisFile(const std::wstring& file) { return IsSame(file, com::ModulePath()); }

/// Whether another program's file serves this class. A file that is missing or cannot be loaded here serves nothing; a
/// file with the name of this one is an older copy of it.
bool IsAnothers(const std::wstring& classId) {
    const std::wstring key = L"Software\\Classes\\CLSID\\" + classId;
    if (!com::MachineText(key + L"\\LocalServer32").empty()) return true;
    const std::wstring file = com::MachineText(key + L"\\InprocServer32");
    // The system also finds a file without a folder.
    wchar_t path[2 * MAX_PATH];
    wchar_t* name = nullptr;
    const DWORD length = SearchPathW(nullptr, file.c_str(), nullptr, std::size(path), path, &name);
    if (length >= std::size(path)) return true;
    if (length == 0 || name == nullptr) return false;  // nothing, or a folder
    const std::wstring own = com::ModulePath();
    return !IsSame(name, own.substr(own.rfind(L'\\') + 1)) && com::BitsOfFile(path) == 8 * sizeof(void*);
}

}  // namespace

void RegisterReader() {
    const std::wstring own = com::GuidText(kReader.id);
    const std::wstring named = com::MachineText(com::ProgIdKey(kReader) + L"\\CLSID");
    const bool isNamed = !named.empty() && !IsSame(named, own);
    if (IsAnothers(own) || (isNamed && (IsAnothers(named) || com::ServesOtherBitness(named))))
        com::Check(HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS));
    com::WriteClass(kReader);
    com::RegisterOwnLibrary();
}

void UnregisterReader() {
    const std::wstring own = com::GuidText(kReader.id);
    const std::wstring name = com::ProgIdKey(kReader);
    const std::wstring key = com::ClassKey(kReader);
    if (!IsThisFile(com::MachineText(key + L"\\InprocServer32"))) return;
    const bool nameIsFree = IsSame(com::MachineText(name + L"\\CLSID"), own) && !com::ServesOtherBitness(own);
    const LSTATUS failure = nameIsFree ? com::DeleteKeys({name, key}) : com::DeleteKeys({key});
    if (IsThisFile(com::LibraryFile(kReader.library))) com::UnregisterOwnLibrary(kReader.library);
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(failure)));
}

}  // namespace beacon
