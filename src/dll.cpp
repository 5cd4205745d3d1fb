#include <windows.h>
#include "com/module.h"
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) beacon::com::SetModuleInstance(instance);
    return TRUE;
}
extern "C" HRESULT __stdcall DllCanUnloadNow() { return S_OK; }
extern "C" HRESULT __stdcall DllGetClassObject(REFCLSID, REFIID, void**) { return E_FAIL; }
extern "C" HRESULT __stdcall DllRegisterServer() { return S_OK; }
extern "C" HRESULT __stdcall DllUnregisterServer() { return S_OK; }
