#include "bare_calls.h"

#include "com/dual.h"
#include "com/error.h"
#include "engine/engine_link.h"
#include "engine/running_controller.h"
#include "outlook/object_model/events.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon::bench {
namespace {

using com::ComPtr;
using com::FromLong;
using com::FromText;
using com::Object;

// Of the fakes' items.
constexpr DISPID kClass = 1;
constexpr DISPID kEntryId = 2;
constexpr long kId = 77;  // of a link

/// The near end of a link, which nobody calls.
class Sink final : public com::Dual<IMessageDispatch, kEngineLibrary> {
public:
    STDMETHODIMP Connect(BSTR, IMessageDispatch*, long, VARIANT*) override { return S_OK; }

    STDMETHODIMP Disconnect(long, VARIANT*) override { return S_OK; }

    STDMETHODIMP get_id(long* value) override { return com::Give(value, kId); }

    STDMETHODIMP PutControl(BSTR, IMessageDispatch*, long, VARIANT*) override { return S_OK; }

    STDMETHODIMP PutMessage(BSTR, IMessageDispatch*, long, VARIANT*) override { return S_OK; }

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return S_OK; }
};

ComPtr<IMessageDispatch> MessageInterface(const Object& owner, const wchar_t* channel) {
    ComPtr<IMessageDispatch> end;
    const Object found = owner.CallObject(L"GetMessageInterface", {FromText(channel), FromLong(kId)});
    com::Check(found.Get()->QueryInterface(IID_PPV_ARGS(&end)));
    return end;
}

_variant_t Property(IDispatch* object, DISPID member) {
    DISPPARAMS none{};
    _variant_t value;
    object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr);
    return value;
}

void ReadSetting(HKEY root, const wchar_t* key, const wchar_t* name) {
    std::wstring value;
    GetRegValue(root, key, name, value);
}

}  // namespace

ComPtr<IMessageDispatch> EnginePeer() {
    const Object controller = RunningController();
    return MessageInterface(controller.CallObject(L"GetEngineInterface", {FromText(L"AppToEngine"), FromLong(kId)}),
                            L"AppToEngine");
}

BareSend::BareSend(ComPtr<IMessageDispatch> engine, std::vector<std::wstring> messages)
    : engine_(std::move(engine)), messages_(std::move(messages)) {
    CLSID id;
    com::Check(CLSIDFromProgID(L"Mapiprop.MAPIPropWrapper", &id));
    com::Check(CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_PPV_ARGS(&reader_)));
}

void BareSend::Look(IDispatch* item, IDispatch* previous) const {
    Property(item, kClass);
    Property(item, kClass);
    Property(previous, kEntryId);
    Property(item, kEntryId);
}

void BareSend::Read(IDispatch* item, std::initializer_list<long> tags) const {
    for (const long tag : tags) {
        _variant_t value;
        reader_->GetStringProperty(com::FromObject(item), tag, &value);
    }
}

void BareSend::ReadBody(IDispatch* item) const {
    _bstr_t body;
    reader_->GetStringPropertyLimited(com::FromObject(item), 0x1000001E, 3072, body.GetAddress());
}

void BareSend::PutAll() const {
    for (const std::wstring& message : messages_) {
        const _variant_t text = FromText(message);
        _variant_t result;
        engine_->PutMessage(text.bstrVal, nullptr, kId, &result);
    }
}

void BareSend::Mail(IDispatch* item, IDispatch* previous) const {
    Look(item, previous);
    ReadBody(item);
    Read(item, {0x0C1A001E, 0x004E001E, 0x0037001E});
    ReadBody(item);
    PutAll();
}

void BareSend::Contact(IDispatch* item, IDispatch* previous) const {
    Read(item, {0x3A06001F, 0x3A11001F, 0x3A16001F, 0x3A17001F});
    Look(item, previous);
    Read(item, {0x3A06001F, 0x3A11001F, 0x3003001F});
    PutAll();
}

BareStart::BareStart(IDispatch* outlook) {
    const Object application(outlook);
    const auto subscribe = [this](const Object& source, REFIID events) {
        com::EventSubscription subscription;
        subscription.Advise(source.Get(), events, [](DISPID, const com::EventArguments&) {});
        subscriptions_.push_back(std::move(subscription));
    };
    subscribe(application, standin::events::kApplication);
    application.GetText(L"Version");
    hook_ = SetWindowsHookExA(
        WH_GETMESSAGE, [](int code, WPARAM w, LPARAM l) -> LRESULT { return CallNextHookEx(nullptr, code, w, l); },
        nullptr, GetCurrentThreadId());
    subscribe(application.GetObject(L"Inspectors"), standin::events::kInspectors);
    subscribe(application.GetObject(L"Explorers"), standin::events::kExplorers);
    marked_ = FindWindowA("rctrl_renwnd32", nullptr);
    const Object explorer = application.GetObject(L"ActiveExplorer");
    subscribe(explorer, standin::events::kExplorer);
    SetPropA(marked_, "PROP_OLK", explorer.Get());
    form_ = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    for (const UINT_PTR timer : {1, 2, 1}) SetTimer(form_, timer, 2000, nullptr);
    for (int i = 0; i < 2; ++i) ReadSetting(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay");
    for (int i = 0; i < 2; ++i) ReadSetting(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar");
    ReadSetting(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate");
    Attach();
}

void BareStart::Attach() {
    const Object controller = RunningController();
    if (!controller) return;
    _variant_t ignored;
    const auto pair = [&](const Object& owner, const wchar_t* there, const wchar_t* back,
                          ComPtr<IMessageDispatch>& sink) {
        const ComPtr<IMessageDispatch> end = MessageInterface(owner, there);
        sink = com::MakeObject<Sink>();
        com::Check(end->Connect(_bstr_t(back), sink.Get(), kId, &ignored));
        return end;
    };
    pair(controller, L"AppToController", L"ControllerToApp", sinks_[0]);
    const Object engine = controller.CallObject(L"GetEngineInterface", {FromText(L"AppToEngine"), FromLong(kId)});
    pair(engine, L"AppToEngine", L"AppToEngine", sinks_[1])
        ->PutMessage(_bstr_t(L"<hello id=\"77\"/>"), nullptr, kId, &ignored);
}

BareStart::~BareStart() {
    for (const auto& sink : sinks_)
        if (sink != nullptr) CoDisconnectObject(sink.Get(), 0);
    RemovePropA(marked_, "PROP_OLK");
    DestroyWindow(form_);
    UnhookWindowsHookEx(hook_);
}

}  // namespace beacon::bench
