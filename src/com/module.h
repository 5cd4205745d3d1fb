#pragma once

#include <windows.h>

#include <string>

namespace beacon::com {

/// The binary this code is linked into; set by its entry point, needed for type libraries, windows and registration.
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE instance);

/// Its file. Throws when the path is longer than MAX_PATH.
std::wstring ModulePath();

/// How many things of this binary are alive that would crash the host if its code were unloaded: objects, class
/// factories' locks, windows, hooks.
long LiveThings();

/// A lock without an object, for IClassFactory::LockServer.
void LockModule(bool lock) noexcept;

/// Held by everything that must keep the binary loaded.
class KeepsModule {
public:
    KeepsModule() noexcept;
    KeepsModule(const KeepsModule&) noexcept;
    KeepsModule& operator=(const KeepsModule&) noexcept = default;
    ~KeepsModule();
};

}  // namespace beacon::com
