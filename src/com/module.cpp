#include "com/module.h"

#include "com/error.h"

namespace beacon::com {
namespace {
HINSTANCE g_instance = nullptr;
LONG g_live = 0;
}  // namespace

HINSTANCE ModuleInstance() { return g_instance; }

void SetModuleInstance(HINSTANCE instance) { g_instance = instance; }

std::wstring ModulePath() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(g_instance, path, MAX_PATH);
    if (length == 0 || length == MAX_PATH) Check(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
    return std::wstring(path, length);
}

long LiveThings() { return g_live; }

void LockModule(bool lock) noexcept {
    if (lock)
        InterlockedIncrement(&g_live);
    else
        InterlockedDecrement(&g_live);
}

KeepsModule::KeepsModule() noexcept { InterlockedIncrement(&g_live); }

KeepsModule::KeepsModule(const KeepsModule&) noexcept { InterlockedIncrement(&g_live); }

KeepsModule::~KeepsModule() { InterlockedDecrement(&g_live); }

}  // namespace beacon::com
