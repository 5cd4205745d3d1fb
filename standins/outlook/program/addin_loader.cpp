#include "outlook/program/addin_loader.h"

#include "com/server_registration.h"
#include "common/call_points.h"
#include "common/journal.h"
#include "outlook/bars/bar_model.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kAddinsKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";

DWORD ReadNumber(HKEY root, const std::wstring& key, const wchar_t* value) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS status = RegGetValueW(root, key.c_str(), value, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return status == ERROR_SUCCESS ? number : 0;
}

std::vector<std::wstring> SubKeys(HKEY root, const wchar_t* key) {
    std::vector<std::wstring> names;
    const com::UniqueKey opened = com::OpenForReading(root, key);
    wchar_t name[256];
    while (opened && RegEnumKeyW(opened.get(), static_cast<DWORD>(names.size()), name, 256) == ERROR_SUCCESS)
        names.emplace_back(name);
    return names;
}

/// The `custom` argument of each call: an empty array.
class CustomArguments {
public:
    CustomArguments() : array_(SafeArrayCreateVector(VT_VARIANT, 1, 0)) {}

    CustomArguments(const CustomArguments&) = delete;
    CustomArguments& operator=(const CustomArguments&) = delete;

    ~CustomArguments() { SafeArrayDestroy(array_); }

    SAFEARRAY** operator&() { return &array_; }

private:
    SAFEARRAY* array_;
};

template <class Call>
HRESULT SayCall(const Addin& addin, const std::wstring& what, Call&& call) {
    const ULONGLONG begin = GetTickCount64();
    const HRESULT result = call();
    Say(L"add-in " + addin.ProgId() + L": " + what + L" " + ResultText(result) + L" in " +
        std::to_wstring(GetTickCount64() - begin) + L" ms");
    return result;
}

}  // namespace

Addin::Addin(std::wstring progId, DWORD loadBehavior)
    : progId_(std::move(progId)),
      loadBehavior_(loadBehavior),
      instance_(std::make_shared<AutomationObject>(L"COMAddIn")) {
    instance_->SetLabel(progId_);
    CLSID id{};
    if (FAILED(CLSIDFromProgID(progId_.c_str(), &id))) return;
    const std::wstring key = L"CLSID\\" + com::GuidText(id) + L"\\InprocServer32";
    dllPath_ = com::ReadText(HKEY_CLASSES_ROOT, key, nullptr).value_or(L"");
}

HMODULE Addin::Module() const { return dllPath_.empty() ? nullptr : GetModuleHandleW(dllPath_.c_str()); }

void AddinLoader::ReadRegistry() {
    for (const std::wstring& progId : SubKeys(HKEY_LOCAL_MACHINE, kAddinsKey)) {
        if (Find(progId) != nullptr) continue;
        const std::wstring key = std::wstring(kAddinsKey) + L"\\" + progId;
        addins_.push_back(std::make_unique<Addin>(progId, ReadNumber(HKEY_LOCAL_MACHINE, key, L"LoadBehavior")));
    }
}

Addin* AddinLoader::Find(const std::wstring& progId) const {
    for (const auto& addin : addins_)
        if (SameName(addin->ProgId(), progId)) return addin.get();
    return nullptr;
}

bool AddinLoader::Connect(Addin& addin, ConnectMode mode) {
    if (addin.IsConnected()) return true;
    CLSID id{};
    com::ComPtr<IDTExtensibility2> object;
    HRESULT result = CLSIDFromProgID(addin.ProgId().c_str(), &id);
    if (SUCCEEDED(result)) {
        result = SayCall(addin, L"CoCreateInstance", [&] {
            com::ComPtr<IUnknown> made;
            const HRESULT created = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made));
            return FAILED(created) ? created
                                   : made->QueryInterface(__uuidof(IDTExtensibility2),
                                                          reinterpret_cast<void**>(object.GetAddressOf()));
        });
    } else {
        Say(L"add-in " + addin.ProgId() + L": no class of that name " + ResultText(result));
    }
    if (FAILED(result)) return false;
    const _variant_t application = HandOut(application_);
    const _variant_t instance = HandOut(addin.instance_);
    CustomArguments custom;
    addin.object_ = object;
    TheCallPoints().Watch(addin.Module());
    result = SayCall(addin, L"OnConnection mode " + std::to_wstring(static_cast<long>(mode)), [&] {
        return object->OnConnection(application.pdispVal, static_cast<long>(mode), instance.pdispVal, &custom);
    });
    if (FAILED(result)) addin.object_.Reset();
    return SUCCEEDED(result);
}

void AddinLoader::Disconnect(Addin& addin, RemoveMode mode) {
    if (!addin.IsConnected()) return;
    const com::ComPtr<IDTExtensibility2> object = std::move(addin.object_);
    CustomArguments custom;
    SayCall(addin, L"OnDisconnection mode " + std::to_wstring(static_cast<long>(mode)),
            [&] { return object->OnDisconnection(static_cast<long>(mode), &custom); });
}

void AddinLoader::Tell(const wchar_t* what, HRESULT (STDMETHODCALLTYPE IDTExtensibility2::*member)(SAFEARRAY**)) {
    for (const auto& addin : addins_) {
        const com::ComPtr<IDTExtensibility2> object = addin->object_;
        CustomArguments custom;
        if (object) SayCall(*addin, what, [&] { return (object.Get()->*member)(&custom); });
    }
}

void AddinLoader::StartupComplete() { Tell(L"OnStartupComplete", &IDTExtensibility2::OnStartupComplete); }

void AddinLoader::BeginShutdown() { Tell(L"OnBeginShutdown", &IDTExtensibility2::OnBeginShutdown); }

}  // namespace beacon::standin
