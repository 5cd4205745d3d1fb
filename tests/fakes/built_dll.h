#pragma once

#include <windows.h>

#include <string>

#include "common/program.h"

namespace beacon::test {

/// A DLL of the project. The destructor unloads it.
class BuiltDll {
public:
    explicit BuiltDll(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {}

    BuiltDll(const BuiltDll&) = delete;
    BuiltDll& operator=(const BuiltDll&) = delete;

    ~BuiltDll() {
        if (module_ != nullptr) FreeLibrary(module_);
    }

    static std::wstring Path(const wchar_t* name) { return standin::ProgramFolder() + L"\\" + name; }

    static bool IsLoaded(const wchar_t* name) { return GetModuleHandleW(name) != nullptr; }

    /// Calls an export without arguments. E_NOTIMPL if it does not exist.
    HRESULT Call(const char* name) const {
        const auto function = reinterpret_cast<HRESULT(WINAPI*)()>(Export(name));
        return function == nullptr ? E_NOTIMPL : function();
    }

    void* Export(const char* name) const { return reinterpret_cast<void*>(GetProcAddress(module_, name)); }

private:
    HMODULE module_;
};

}  // namespace beacon::test
