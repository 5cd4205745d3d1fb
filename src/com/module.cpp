#include "com/module.h"

namespace beacon::com {
namespace {
HINSTANCE g_instance = nullptr;
LONG g_live = 0;
}  // namespace

HINSTANCE ModuleInstance() { return g_instance; }

void SetModuleInstance(HINSTANCE instance) { g_instance = instance; }

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
