#include "toolbar/config_client.h"

#include "toolbar/toolbar_config.h"

namespace beacon {
namespace {

bool ServerHasDied(HRESULT result) {
    return result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) || result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) ||
           result == RPC_E_DISCONNECTED || result == RPC_E_SERVER_DIED || result == RPC_E_SERVER_DIED_DNE ||
           result == CO_E_OBJNOTCONNECTED;
}

}  // namespace

com::ComPtr<IToolbarConfig> ConfigClient::Config() {
    if (config_ == nullptr) config_ = MakeToolbarConfig();
    return config_;
}

void ConfigClient::Check(HRESULT result) {
    if (SUCCEEDED(result)) return;
    // The object's error text belongs to the thread: letting go of the object first could change it.
    try {
        com::Check(result, config_.Get());
    } catch (...) {
        if (ServerHasDied(result)) config_.Reset();
        throw;
    }
}

long ConfigClient::ButtonCount() {
    long value = 0;
    Check(Config()->get_ButtonCount(&value));
    return value;
}

std::wstring ConfigClient::ButtonCaption(long index) {
    _bstr_t value;
    Check(Config()->get_ButtonCaption(index, value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

std::wstring ConfigClient::ButtonTooltip(long index) {
    _bstr_t value;
    Check(Config()->get_ButtonTooltip(index, value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

std::wstring ConfigClient::ButtonBitmapPath(long index) {
    _bstr_t value;
    Check(Config()->get_ButtonBitmapPath(index, value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

bool ConfigClient::ButtonEnabled(long index) {
    VARIANT_BOOL value = VARIANT_FALSE;
    Check(Config()->get_ButtonEnabled(index, &value));
    return value != VARIANT_FALSE;
}

OLE_COLOR ConfigClient::ButtonMaskColor(long index) {
    OLE_COLOR value = 0;
    Check(Config()->get_ButtonMaskColor(index, &value));
    return value;
}

long ConfigClient::ContextMode() {
    long value = 0;
    Check(Config()->get_ContextMode(&value));
    return value;
}

std::wstring ConfigClient::DefaultContextText() {
    _bstr_t value;
    Check(Config()->get_DefaultContextText(value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

std::wstring ConfigClient::ContextWarningTitle() {
    _bstr_t value;
    Check(Config()->get_ContextWarningTitle(value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

std::wstring ConfigClient::ContextWarningText() {
    _bstr_t value;
    Check(Config()->get_ContextWarningText(value.GetAddress()));
    return com::ToText(value.GetBSTR());
}

long ConfigClient::EngineState() {
    long value = 0;
    Check(Config()->get_EngineState(&value));
    return value;
}

void ConfigClient::BeginCommand() { Check(Config()->BeginCommand()); }

void ConfigClient::CommandDone(long hWnd) {
    long ignored = 0;
    Check(Config()->CommandDone(hWnd, &ignored));
}

void ConfigClient::NewSearch(long hWnd, const std::wstring& text) {
    _bstr_t copy(com::NewBstr(text), false);
    Check(Config()->NewSearch(hWnd, copy.GetBSTR()));
}

void ConfigClient::SaveLayout(const std::wstring& application, const Layout& layout) {
    _bstr_t app(com::NewBstr(application), false);
    _bstr_t position(com::NewBstr(layout.position), false);
    Check(Config()->SaveLayout(app.GetBSTR(), layout.height, layout.width, layout.left, layout.top, layout.rowIndex,
                               position.GetBSTR()));
}

ConfigClient::Layout ConfigClient::LoadLayout(const std::wstring& application) {
    _bstr_t app(com::NewBstr(application), false);
    _bstr_t position;
    Layout layout;
    Check(Config()->LoadLayout(app.GetBSTR(), &layout.height, &layout.width, &layout.left, &layout.top,
                               &layout.rowIndex, position.GetAddress()));
    layout.position = com::ToText(position.GetBSTR());
    return layout;
}

}  // namespace beacon
