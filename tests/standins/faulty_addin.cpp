// An add-in that leaves a reference and a hook behind, and opens a message box at the start.
#include <windows.h>

#include "add_in_designer.h"
#include "com/dual.h"
#include "com/served_class.h"
#include "com/server_registration.h"

namespace beacon {
namespace {

LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) { return CallNextHookEx(nullptr, code, wParam, lParam); }

class FaultyAddin final : public com::Dual<IDTExtensibility2, 1> {
public:
    STDMETHODIMP OnConnection(IDispatch* application, long, IDispatch*, SAFEARRAY**) override {
        application->AddRef();
        SetWindowsHookExA(WH_GETMESSAGE, Hook, nullptr, GetCurrentThreadId());
        return S_OK;
    }

    STDMETHODIMP OnDisconnection(long, SAFEARRAY**) override { return S_OK; }

    STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }

    STDMETHODIMP OnStartupComplete(SAFEARRAY**) override {
        MessageBoxA(nullptr, "", "Faulty add-in", MB_OK);
        return S_OK;
    }

    STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override { return S_OK; }
};

constexpr CLSID kClass = {0x5D0B7A4E, 0x1C0F, 0x4B57, {0x9B, 0x0D, 0x1F, 0x6C, 0x3A, 0x1F, 0x5E, 0x21}};

void Register() {
    constexpr DWORD loadAtStartup = 3;
    com::WriteClass({L"Faulty add-in", L"Faulty.Addin", kClass, IID_NULL});
    com::WriteValue(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Office\\Outlook\\Addins\\Faulty.Addin", L"LoadBehavior",
                    REG_DWORD, &loadAtStartup, sizeof loadAtStartup);
}

}  // namespace
}  // namespace beacon

const beacon::com::ServedClass beacon::com::kServedClass = {
    beacon::kClass, [] { return ComPtr<IUnknown>(new beacon::FaultyAddin); }, beacon::Register, [] {}, false};
