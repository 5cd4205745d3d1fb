#include "com/server_registration.h"

#include <oleauto.h>
#include <wrl/client.h>

#include "com/error.h"
#include "com/handle.h"
#include "com/module.h"

namespace beacon::com {
namespace {

constexpr bool kIs64Bits = sizeof(void*) == 8;

void CheckCode(LSTATUS code) { Check(HRESULT_FROM_WIN32(static_cast<DWORD>(code))); }

// Windows 2000 has neither RegSetKeyValueW nor RegDeleteTreeW.
LSTATUS DeleteTree(HKEY parent, const wchar_t* key) {
    HKEY opened = nullptr;
    LSTATUS code = RegOpenKeyExW(parent, key, 0, KEY_ENUMERATE_SUB_KEYS, &opened);
    if (code != ERROR_SUCCESS) return code;
    UniqueKey handle(opened);
    wchar_t name[256];
    while (code == ERROR_SUCCESS && RegEnumKeyW(opened, 0, name, 256) == ERROR_SUCCESS) code = DeleteTree(opened, name);
    handle.reset();
    return code == ERROR_SUCCESS ? RegDeleteKeyW(parent, key) : code;
}

}  // namespace

UniqueKey OpenForReading(HKEY hive, const std::wstring& key, REGSAM view) {
    HKEY opened = nullptr;
    RegOpenKeyExW(hive, key.c_str(), 0, KEY_READ | view, &opened);
    return UniqueKey(opened);
}

void WriteValue(HKEY hive, const std::wstring& key, const wchar_t* name, DWORD type, const void* data, size_t size) {
    HKEY opened = nullptr;
    CheckCode(RegCreateKeyExW(hive, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr));
    const UniqueKey handle(opened);
    CheckCode(RegSetValueExW(opened, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size)));
}

void WriteText(HKEY hive, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    WriteValue(hive, key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

std::wstring ProgIdKey(const RegisteredClass& served) { return std::wstring(L"Software\\Classes\\") + served.progId; }

std::wstring ClassKey(const RegisteredClass& served) { return L"Software\\Classes\\CLSID\\" + GuidText(served.id); }

std::wstring GuidText(REFGUID id) {
    wchar_t text[40];
    StringFromGUID2(id, text, 40);
    return text;
}

void WriteClass(const RegisteredClass& served) {
    const auto write = [](const std::wstring& key, const wchar_t* name, const std::wstring& text) {
        WriteText(HKEY_LOCAL_MACHINE, key, name, text);
    };
    const std::wstring name = ProgIdKey(served);
    const std::wstring key = ClassKey(served);
    write(name, nullptr, served.title);
    write(name + L"\\CLSID", nullptr, GuidText(served.id));
    write(key, nullptr, served.title);
    write(key + L"\\InprocServer32", nullptr, ModulePath());
    write(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    write(key + L"\\ProgID", nullptr, served.progId);
    write(key + L"\\TypeLib", nullptr, GuidText(served.library));
    write(key + L"\\Version", nullptr, L"1.0");
}

std::optional<std::wstring> ReadText(HKEY hive, const std::wstring& key, const wchar_t* name, REGSAM view) {
    const UniqueKey handle = OpenForReading(hive, key, view);
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (!handle || RegQueryValueExW(handle.get(), name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return {};
    if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
    std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
    if (RegQueryValueExW(handle.get(), name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size) !=
        ERROR_SUCCESS)
        return {};
    text.resize(text.find(L'\0'));  // the value may end with any number of NULs
    if (type == REG_SZ) return text;
    std::wstring expanded(32768, L'\0');
    const DWORD length = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    if (length == 0 || length > expanded.size()) return text;
    expanded.resize(length - 1);
    return expanded;
}

std::wstring MachineText(const std::wstring& key) { return ReadText(HKEY_LOCAL_MACHINE, key, nullptr).value_or(L""); }

int BitsOfFile(const std::wstring& file) {
    const UniqueHandle handle =
        OwnFile(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, 0, nullptr));
    const auto read = [&handle](void* target, DWORD size) {
        DWORD done = 0;
        return ReadFile(handle.get(), target, size, &done, nullptr) && done == size;
    };

    struct {
        DWORD signature;
        WORD machine;
    } header{};

    IMAGE_DOS_HEADER dos{};
    if (handle == nullptr || !read(&dos, sizeof dos) || dos.e_magic != IMAGE_DOS_SIGNATURE ||
        SetFilePointer(handle.get(), dos.e_lfanew, nullptr, FILE_BEGIN) == INVALID_SET_FILE_POINTER ||
        !read(&header, sizeof header) || header.signature != IMAGE_NT_SIGNATURE)
        return 0;
    return header.machine == IMAGE_FILE_MACHINE_AMD64 ? 64 : header.machine == IMAGE_FILE_MACHINE_I386 ? 32 : 0;
}

REGSAM OtherView() {
    if (kIs64Bits) return KEY_WOW64_32KEY;
    // Windows 2000 does not have the function.
    using Function = BOOL WINAPI(HANDLE, BOOL*);
    auto* const isWow64 = reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "IsWow64Process")));
    BOOL is = FALSE;
    return isWow64 != nullptr && isWow64(GetCurrentProcess(), &is) && is ? KEY_WOW64_64KEY : 0;
}

bool ServesOtherBitness(const std::wstring& classId) {
    const REGSAM view = OtherView();
    if (view == 0) return false;
    const std::wstring key = L"Software\\Classes\\CLSID\\" + classId;
    return OpenForReading(HKEY_LOCAL_MACHINE, key + L"\\InprocServer32", view) != nullptr ||
           OpenForReading(HKEY_LOCAL_MACHINE, key + L"\\LocalServer32", view) != nullptr;
}

LSTATUS DeleteKeys(std::initializer_list<std::wstring> keys) {
    LSTATUS failure = ERROR_SUCCESS;
    for (const std::wstring& key : keys) {
        const LSTATUS code = DeleteTree(HKEY_LOCAL_MACHINE, key.c_str());
        if (code != ERROR_SUCCESS && code != ERROR_FILE_NOT_FOUND) failure = code;
    }
    return failure;
}

void RegisterOwnLibrary() {
    std::wstring path = ModulePath();
    Microsoft::WRL::ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
    Check(RegisterTypeLib(library.Get(), path.data(), nullptr));
}

std::wstring LibraryFile(REFGUID library) {
    return MachineText(L"Software\\Classes\\TypeLib\\" + GuidText(library) + L"\\1.0\\0\\" +
                       (kIs64Bits ? L"win64" : L"win32"));
}

void UnregisterOwnLibrary(REFGUID library) {
    // The system reads the registered file, which may no longer exist.
    RegisterOwnLibrary();
    Check(UnRegisterTypeLib(library, 1, 0, LOCALE_NEUTRAL, kIs64Bits ? SYS_WIN64 : SYS_WIN32));
}

}  // namespace beacon::com
