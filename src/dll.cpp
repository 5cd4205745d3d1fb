// The entry points of each DLL. DllMain does nothing but to remember the instance.
#include <windows.h>

#include <cstdlib>

#include "com/error.h"
#include "com/module.h"
#include "com/served_class.h"

using namespace beacon;

// The run-time calls this when nothing catches an exception. Its own version would print the exception's name, and
// needs printf and a demangler: a tenth of the file's size.
void __gnu_cxx::__verbose_terminate_handler() { std::abort(); }

/// Takes a reference to this DLL that is never released; Windows 2000 has no flag for it. COM would unload and load the
/// DLL again between two items, and each load costs what the C++ run-time does not give back.
static void StayLoaded() {
    static bool stays = false;
    if (!stays) stays = LoadLibraryW(com::ModulePath().c_str()) != nullptr;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        com::SetModuleInstance(instance);
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return com::LiveThings() == 0 ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (classId != com::kServedClass.id) return CLASS_E_CLASSNOTAVAILABLE;
    return com::Method([&] {
        if (com::kServedClass.staysLoaded) StayLoaded();
        return com::MakeClassFactory(com::kServedClass.make)->QueryInterface(interfaceId, object);
    });
}

extern "C" HRESULT WINAPI DllRegisterServer() { return com::Method(com::kServedClass.registerServer); }

extern "C" HRESULT WINAPI DllUnregisterServer() { return com::Method(com::kServedClass.unregisterServer); }
