#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

namespace beacon::test {

/// Replaces a function that a loaded DLL imports. Returns the original; null if the DLL does not import it.
inline void* ReplaceImport(HMODULE library, std::string_view function, void* replacement) {
    auto* const base = reinterpret_cast<char*>(library);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    void* original = nullptr;
    for (auto* from = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); from->FirstThunk != 0; ++from) {
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
             name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            if (function != reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name)
                continue;
            DWORD protection = 0;
            VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection);
            original = reinterpret_cast<void*>(address->u1.Function);
            address->u1.Function = reinterpret_cast<uintptr_t>(replacement);
            VirtualProtect(address, sizeof *address, protection, &protection);
        }
    }
    return original;
}

}  // namespace beacon::test
