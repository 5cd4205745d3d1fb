#include "engine/registration.h"

#include <oleauto.h>

#include <string>

#include "com/dual.h"
#include "com/server_registration.h"
#include "com/text.h"
#include "common/program.h"

// The import library has it, the header lacks it: from now on this process registers type libraries for the user.
extern "C" void WINAPI OaEnablePerUserTLibRegistration();

namespace beacon::standin {
namespace {

const std::wstring kClasses = L"Software\\Classes\\";
// Says which entries are ours; its data is the program that made them.
constexpr wchar_t kMark[] = L"StandinEngine";
const HKEY kRoots[] = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};

struct Class {
    const wchar_t* id;
    const wchar_t* name;
    const wchar_t* description;
};

constexpr Class kController{L"{05F44787-D470-4D95-BE1E-C710C4BFECB0}", L"BeaconController.Application",
                            L"Beacon controller (stand-in)"};
constexpr Class kToolbar{L"{78256BD9-A478-4B56-8867-BB0E43D157BF}", L"BeaconUtil.ToolbarConfig",
                         L"Beacon toolbar configuration (stand-in)"};

std::wstring Read(HKEY root, const std::wstring& key, const wchar_t* name) {
    wchar_t buffer[1024];
    DWORD size = sizeof(buffer);
    if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS) return {};
    return buffer;
}

bool Exists(HKEY root, const std::wstring& key) {
    HKEY open = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &open) != ERROR_SUCCESS) return false;
    RegCloseKey(open);
    return true;
}

// One key with its default value, made unless another program has made it.
bool Claim(HKEY root, const std::wstring& key, const std::wstring& value) {
    if (Exists(root, key) && Read(root, key, kMark).empty()) return false;
    com::WriteText(root, key, nullptr, value);
    com::WriteText(root, key, kMark, ProgramPath());
    return true;
}

void RegisterClass(HKEY root, const Class& which, bool server) {
    const std::wstring byName = kClasses + which.name;
    const std::wstring byId = kClasses + L"CLSID\\" + which.id;
    if (Claim(root, byName, which.description)) com::WriteText(root, byName + L"\\CLSID", nullptr, which.id);
    if (!Claim(root, byId, which.description)) return;
    com::WriteText(root, byId + L"\\ProgID", nullptr, which.name);
    if (server) com::WriteText(root, byId + L"\\LocalServer32", nullptr, L"\"" + ProgramPath() + L"\"");
}

// Ordinary users may not write to the machine's classes; their own serve as well.
HRESULT RegisterSomewhere(const Class& which, bool server) {
    HRESULT result = E_FAIL;
    for (const HKEY root : kRoots) {
        result = com::Method([&] { RegisterClass(root, which, server); });
        if (SUCCEEDED(result)) break;
    }
    return result;
}

void Remove(HKEY root, const Class& which) {
    for (const std::wstring& key : {kClasses + which.name, kClasses + L"CLSID\\" + which.id})
        if (!Read(root, key, kMark).empty()) RegDeleteTreeW(root, key.c_str());
}

}  // namespace

HRESULT RegisterController() {
    // Registers the first library among the program's resources.
    com::ComPtr<ITypeLib> library;
    std::wstring path = ProgramPath();
    HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
    if (FAILED(result)) return result;
    result = RegisterTypeLib(library.Get(), path.data(), nullptr);
    if (FAILED(result)) {
        OaEnablePerUserTLibRegistration();
        result = RegisterTypeLib(library.Get(), path.data(), nullptr);
    }
    if (FAILED(result)) return result;
    return RegisterSomewhere(kController, false);
}

HRESULT RegisterToolbar() { return RegisterSomewhere(kToolbar, true); }

HRESULT UnregisterAll() {
    return com::Method([&] {
        for (const HKEY root : kRoots) {
            Remove(root, kController);
            Remove(root, kToolbar);
        }
        com::ComPtr<ITypeLib> library;
        com::Check(LoadTypeLibEx(ProgramPath().c_str(), REGKIND_NONE, &library));
        TLIBATTR* attributes = nullptr;
        com::Check(library->GetLibAttr(&attributes));
        const TLIBATTR own = *attributes;
        library->ReleaseTLibAttr(attributes);
        BSTR registered = nullptr;
        if (FAILED(QueryPathOfRegTypeLib(own.guid, own.wMajorVerNum, own.wMinorVerNum, own.lcid, &registered))) return;
        const std::wstring path = com::ToText(registered);
        SysFreeString(registered);
        // Another engine may have registered it; then it stays.
        if (lstrcmpiW(path.c_str(), ProgramPath().c_str()) != 0) return;
        const HRESULT machine = UnRegisterTypeLib(own.guid, own.wMajorVerNum, own.wMinorVerNum, own.lcid, own.syskind);
        if (FAILED(machine)) {
            OaEnablePerUserTLibRegistration();
            com::Check(UnRegisterTypeLib(own.guid, own.wMajorVerNum, own.wMinorVerNum, own.lcid, own.syskind));
        }
    });
}

}  // namespace beacon::standin
