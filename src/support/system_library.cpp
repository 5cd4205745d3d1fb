#include "support/system_library.h"

#include <windows.h>

#include <string>

namespace beacon {

void* FindSystemFunction(const wchar_t* library, const char* name) {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    const HMODULE module = LoadLibraryW((std::wstring(folder, length) + L"\\" + library).c_str());
    return module == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(module, name));
}

}  // namespace beacon
