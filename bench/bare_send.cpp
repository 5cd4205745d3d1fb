#include "bare_send.h"

#include <utility>

#include "com/error.h"
#include "com/text.h"
#include "engine/running_controller.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon::bench {
namespace {

constexpr long kId = 77;  // of the link
constexpr long kBodyTag = 0x1000001E;

void GetProperty(IDispatch* object, DISPID member) {
    DISPPARAMS none{};
    _variant_t value;
    object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr);
}

}  // namespace

BareSend::BareSend(std::vector<std::wstring> messages) : messages_(std::move(messages)) {
    const com::Object controller = RunningController();
    const com::Object engine =
        controller.CallObject(L"GetEngineInterface", {com::FromText(L"AppToEngine"), com::FromLong(kId)});
    const com::Object peer =
        engine.CallObject(L"GetMessageInterface", {com::FromText(L"AppToEngine"), com::FromLong(kId)});
    com::Check(peer.Get()->QueryInterface(IID_PPV_ARGS(&engine_)));
    CLSID id;
    com::Check(CLSIDFromProgID(L"Mapiprop.MAPIPropWrapper", &id));
    com::Check(CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_PPV_ARGS(&reader_)));
}

void BareSend::Send(IDispatch* item, IDispatch* previous) const {
    constexpr DISPID kClass = 1;  // numbers of the fakes' members
    constexpr DISPID kEntryId = 2;
    GetProperty(item, kClass);
    GetProperty(item, kClass);
    GetProperty(previous, kEntryId);
    GetProperty(item, kEntryId);
    FindWindowExA(nullptr, nullptr, "#32770", nullptr);
    for (int i = 0; i < 2; ++i) {
        std::wstring most;
        GetRegValue(HKEY_LOCAL_MACHINE, kMachineAdapterKey, setting::kMaxDocUnits, most);
        _bstr_t body;
        reader_->GetStringPropertyLimited(com::FromObject(item), kBodyTag, 3072, body.GetAddress());
    }
    for (const long tag : {0x0C1A001E, 0x004E001E, 0x0037001E}) {
        _variant_t value;
        reader_->GetStringProperty(com::FromObject(item), tag, &value);
    }
    for (const std::wstring& message : messages_) {
        const _variant_t text = com::FromText(message);
        _variant_t result;
        engine_->PutMessage(text.bstrVal, nullptr, kId, &result);
    }
}

}  // namespace beacon::bench
