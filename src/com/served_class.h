#pragma once

#include <windows.h>

#include "com/class_factory.h"

namespace beacon::com {

/// What an in-process server of this project serves. Every DLL defines one, and its entry points (src/dll.cpp) serve
/// it. The functions raise errors.
struct ServedClass {
    CLSID id;
    ComPtr<IUnknown> (*make)();
    void (*enter)();  // into the registry
    void (*leave)();
};

extern const ServedClass kServedClass;

}  // namespace beacon::com
