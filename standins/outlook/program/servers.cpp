#include "outlook/program/servers.h"

#include "com/class_factory.h"
#include "com/server_registration.h"
#include "common/journal.h"
#include "outlook/observation/counted_reader.h"

namespace beacon::standin {
namespace {

constexpr CLSID kOutlookApplication = {0x0006F03A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// CLSIDFromProgID reads only the registry, so a served class needs its name there. An installed class keeps its
// entries.
void PublishName(const wchar_t* progId, REFCLSID id) {
    CLSID known{};
    if (SUCCEEDED(CLSIDFromProgID(progId, &known))) return;
    wchar_t text[40];
    StringFromGUID2(id, text, 40);
    const std::wstring name = std::wstring(L"Software\\Classes\\") + progId;
    const std::wstring key = std::wstring(L"Software\\Classes\\CLSID\\") + text;
    try {
        com::WriteText(HKEY_LOCAL_MACHINE, name, nullptr, progId);
        com::WriteText(HKEY_LOCAL_MACHINE, name + L"\\CLSID", nullptr, text);
        com::WriteText(HKEY_LOCAL_MACHINE, key, nullptr, progId);
        com::WriteText(HKEY_LOCAL_MACHINE, key + L"\\ProgID", nullptr, progId);
    } catch (const com::Error& error) {
        Say(L"cannot write registry key " + name + L": " + error.description);
    }
}

DWORD Serve(REFCLSID id, com::ObjectMaker maker) {
    const com::ComPtr<IClassFactory> factory = com::MakeClassFactory(std::move(maker));
    DWORD cookie = 0;
    com::Check(CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie));
    return cookie;
}

}  // namespace

Servers::Servers(std::shared_ptr<AutomationObject> application) {
    PublishName(L"Outlook.Application", kOutlookApplication);
    cookies_.push_back(Serve(kOutlookApplication, [application = std::move(application)] {
        return com::ComPtr<IUnknown>(static_cast<IDispatch*>(application.get()));
    }));
    cookies_.push_back(Serve(__uuidof(MAPIPropWrapper), [] {
        const CallPoint call(CallPoint::OnBehalf{}, [] { return std::wstring(L"create the property reader"); });
        com::Check(call.Result());
        return com::ComPtr<IUnknown>(new CountedReader);
    }));
}

Servers::~Servers() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace beacon::standin
