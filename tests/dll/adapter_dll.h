#pragma once

#include <windows.h>

#include <string>

namespace beacon::test {

/// The DLL that was built beside this program, loaded while this lives.
class AdapterDll {
public:
    AdapterDll() : AdapterDll(Path()) {}

    explicit AdapterDll(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {}

    AdapterDll(const AdapterDll&) = delete;
    AdapterDll& operator=(const AdapterDll&) = delete;

    ~AdapterDll() {
        if (module_ != nullptr) FreeLibrary(module_);
    }

    static std::wstring Path() {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const std::wstring program = path;
        return program.substr(0, program.rfind(L'\\') + 1) + L"BeaconOLKAdapter.dll";
    }

    static bool IsLoaded() { return GetModuleHandleW(L"BeaconOLKAdapter.dll") != nullptr; }

    /// Calls an export without arguments; E_NOTIMPL when there is none of that name.
    HRESULT Call(const char* name) const {
        const auto function = reinterpret_cast<HRESULT(WINAPI*)()>(Export(name));
        return function == nullptr ? E_NOTIMPL : function();
    }

    void* Export(const char* name) const { return reinterpret_cast<void*>(GetProcAddress(module_, name)); }

    /// The library's image in memory.
    const BYTE* Base() const { return reinterpret_cast<const BYTE*>(module_); }

private:
    HMODULE module_;
};

}  // namespace beacon::test
