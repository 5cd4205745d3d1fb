#pragma once

#include <windows.h>

#include <string>

namespace beacon::com {

/// The binary that contains this code. Its entry point sets the instance.
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE instance);

/// The path of its file. Raises an error if it is longer than MAX_PATH.
std::wstring ModulePath();

/// The number of objects, class factory locks, windows and hooks that need this binary's code.
long LiveThings();

/// Adds or removes one, for IClassFactory::LockServer.
void LockModule(bool lock) noexcept;

/// Counts as one live thing as long as it exists.
class KeepsModule {
public:
    KeepsModule() noexcept;
    KeepsModule(const KeepsModule&) noexcept;
    KeepsModule& operator=(const KeepsModule&) noexcept = default;
    ~KeepsModule();
};

}  // namespace beacon::com
