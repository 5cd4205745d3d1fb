// The entry points of each DLL. Nothing happens in DllMain but to remember the instance.
#include <windows.h>

#include <cstdlib>

#include "com/error.h"
#include "com/module.h"
#include "com/served_class.h"

using namespace beacon;

#ifdef __GLIBCXX__
// What the run-time library calls when nothing catches an exception. Its own function would name the exception on a
// console that Outlook has not, and bring a tenth of the file's size along: printf and the names' demangler.
void __gnu_cxx::__verbose_terminate_handler() { std::abort(); }
#endif

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
    return com::Method(
        [&] { return com::MakeClassFactory(com::kServedClass.make)->QueryInterface(interfaceId, object); });
}

extern "C" HRESULT WINAPI DllRegisterServer() { return com::Method(com::kServedClass.enter); }

extern "C" HRESULT WINAPI DllUnregisterServer() { return com::Method(com::kServedClass.leave); }
