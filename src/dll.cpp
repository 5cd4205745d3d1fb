// The DLL's entry points. Nothing happens in DllMain but to remember the instance.
#include <windows.h>

#include <cstdlib>

#include "addin/connect.h"
#include "addin/registration.h"
#include "com/class_factory.h"
#include "com/module.h"

using namespace beacon;

#ifdef __GLIBCXX__
// What the run-time library calls when nothing catches an exception. Its own function would name the exception on a
// console that Outlook has not, and bring a tenth of the file's size along: printf and the names' demangler.
void __gnu_cxx::__verbose_terminate_handler() { std::abort(); }
#endif

namespace {
constexpr CLSID kConnectClass = {0x6E547C94, 0x44EC, 0x474B, {0xAC, 0x54, 0x1B, 0x05, 0xA2, 0xE3, 0x39, 0xB9}};
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
    if (classId != kConnectClass) return CLASS_E_CLASSNOTAVAILABLE;
    return com::Method([&] {
        const auto factory = com::MakeClassFactory([] {
            com::ComPtr<IUnknown> connect;
            com::Check(com::MakeObject<beacon::Connect>().As(&connect));
            return connect;
        });
        return factory->QueryInterface(interfaceId, object);
    });
}

extern "C" HRESULT WINAPI DllRegisterServer() {
    return com::Method([] { RegisterAddIn(); });
}

extern "C" HRESULT WINAPI DllUnregisterServer() {
    return com::Method([] { UnregisterAddIn(); });
}
