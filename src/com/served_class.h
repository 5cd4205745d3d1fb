#pragma once

#include <windows.h>

#include "com/class_factory.h"

namespace beacon::com {

/// The class of an in-process server. Each DLL defines one, which its entry points (src/dll.cpp) serve. The functions
/// raise errors.
struct ServedClass {
    const CLSID& id;
    ComPtr<IUnknown> (*make)();
    void (*registerServer)();
    void (*unregisterServer)();
    bool staysLoaded;  // from the first class object on, until the process ends
};

extern const ServedClass kServedClass;

}  // namespace beacon::com
