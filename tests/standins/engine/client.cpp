#include "client.h"

#include <utility>

namespace beacon::tests {
namespace {

ComPtr<IMessageDispatch> Dispatcher(const com::Object& owner, const wchar_t* channel, long handle) {
    const com::Object found = owner.CallObject(L"GetMessageInterface", {com::FromText(channel), com::FromLong(handle)});
    ComPtr<IMessageDispatch> dispatcher;
    com::Check(found.Get()->QueryInterface(IID_PPV_ARGS(&dispatcher)));
    return dispatcher;
}

}  // namespace

STDMETHODIMP Sink::Connect(BSTR type, IMessageDispatch*, LONG id, VARIANT* result) {
    return Keep(L"connect " + com::ToText(type) + L" " + std::to_wstring(id), result);
}

STDMETHODIMP Sink::Disconnect(LONG id, VARIANT* result) {
    if (onDisconnect) std::exchange(onDisconnect, nullptr)();
    return Keep(L"disconnect " + std::to_wstring(id), result);
}

STDMETHODIMP Sink::get_id(LONG* value) {
    *value = id_;
    return S_OK;
}

STDMETHODIMP Sink::PutControl(BSTR text, IMessageDispatch*, LONG id, VARIANT* result) {
    return Keep(L"control " + std::to_wstring(id) + L" " + com::ToText(text), result);
}

STDMETHODIMP Sink::PutMessage(BSTR text, IMessageDispatch*, LONG id, VARIANT* result) {
    return Keep(L"message " + std::to_wstring(id) + L" " + com::ToText(text), result);
}

STDMETHODIMP Sink::Status(BSTR text, IDispatch*, LONG, VARIANT* result) {
    return Keep(L"status " + com::ToText(text), result);
}

HRESULT Sink::Keep(const std::wstring& call, VARIANT* result) {
    calls.push_back(call);
    VariantInit(result);
    return S_OK;
}

com::Object FindController() {
    CLSID id;
    if (FAILED(CLSIDFromProgID(L"BeaconController.Application", &id))) return {};
    ComPtr<IUnknown> found;
    if (FAILED(GetActiveObject(id, nullptr, &found))) return {};
    ComPtr<IDispatch> dispatch;
    if (FAILED(found.As(&dispatch))) return {};
    return com::Object(dispatch);
}

HRESULT MakeToolbar(ComPtr<IToolbarConfig>& config) {
    return CoCreateInstance(__uuidof(ToolbarConfig), nullptr, CLSCTX_LOCAL_SERVER, IID_PPV_ARGS(&config));
}

Client::Client(long window) : handle(window) {
    const com::Object found = FindController();
    controller = Dispatcher(found, L"AppToController", handle);
    controllerSink = com::MakeObject<Sink>(handle);
    const com::Object engineObject =
        found.CallObject(L"GetEngineInterface", {com::FromText(L"AppToEngine"), com::FromLong(handle)});
    engine = Dispatcher(engineObject, L"AppToEngine", handle);
    engineSink = com::MakeObject<Sink>(handle);
}

Client::~Client() {
    if (connected_) {
        _variant_t result;
        engine->Disconnect(handle, &result);  // fails when the engine has ended
        controller->Disconnect(handle, &result);
    }
    CoDisconnectObject(controllerSink.Get(), 0);
    CoDisconnectObject(engineSink.Get(), 0);
}

void Client::Connect() {
    _variant_t result;
    connected_ = true;
    com::Check(controller->Connect(_bstr_t(L"ControllerToApp"), controllerSink.Get(), handle, &result));
    com::Check(engine->Connect(_bstr_t(L"AppToEngine"), engineSink.Get(), handle, &result));
    com::Check(Message(L"<hello id=\"" + std::to_wstring(handle) + L"\"/>"));
}

void Client::SayGoodbye() {
    const std::wstring exit = L"<exit id=\"" + std::to_wstring(handle) + L"\"/>";
    _variant_t result;
    com::Check(Control(exit));
    com::Check(Message(exit));
    com::Check(engine->Disconnect(handle, &result));
    com::Check(controller->Disconnect(handle, &result));
    connected_ = false;
}

HRESULT Client::Message(const std::wstring& text, long id) {
    const _bstr_t argument(com::NewBstr(text), false);
    _variant_t result(1L);  // must come back empty
    const HRESULT code = engine->PutMessage(argument, nullptr, id == 0 ? handle : id, &result);
    return SUCCEEDED(code) && result.vt != VT_EMPTY ? E_UNEXPECTED : code;
}

HRESULT Client::Control(const std::wstring& text) {
    const _bstr_t argument(com::NewBstr(text), false);
    _variant_t result(1L);
    const HRESULT code = controller->PutControl(argument, controllerSink.Get(), handle, &result);
    return SUCCEEDED(code) && result.vt != VT_EMPTY ? E_UNEXPECTED : code;
}

long Client::IdOf(IMessageDispatch* dispatcher) const {
    LONG id = -1;
    com::Check(dispatcher->get_id(&id));
    return id;
}

}  // namespace beacon::tests
