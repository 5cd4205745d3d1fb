#include "toolbar/config_client.h"

#include <beacon_util.h>

#include <string_view>
#include <utility>

#include "com/error.h"
#include "com/object.h"
#include "support/string_values.h"
#include "toolbar/own_definition.h"

namespace beacon {
namespace {

bool IsNotInstalled(HRESULT result) {
    return result == REGDB_E_CLASSNOTREG || result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ||
           result == HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
}

/// The definition of the engine's utility server.
class UtilityServer final : public ToolbarDefinition {
public:
    explicit UtilityServer(com::ComPtr<IToolbarConfig> server) : server_(std::move(server)) {}

    bool HasDied() const override { return died_; }

    long ButtonCount() override { return Value<long>(&IToolbarConfig::get_ButtonCount); }

    std::wstring ButtonCaption(long index) override { return Text(&IToolbarConfig::get_ButtonCaption, index); }

    std::wstring ButtonTooltip(long index) override { return Text(&IToolbarConfig::get_ButtonTooltip, index); }

    std::wstring ButtonBitmapPath(long index) override { return Text(&IToolbarConfig::get_ButtonBitmapPath, index); }

    bool ButtonEnabled(long index) override {
        return Value<VARIANT_BOOL>(&IToolbarConfig::get_ButtonEnabled, index) != VARIANT_FALSE;
    }

    OLE_COLOR ButtonMaskColor(long index) override {
        return Value<OLE_COLOR>(&IToolbarConfig::get_ButtonMaskColor, index);
    }

    long ContextMode() override { return Value<long>(&IToolbarConfig::get_ContextMode); }

    std::wstring DefaultContextText() override { return Text(&IToolbarConfig::get_DefaultContextText); }

    std::wstring ContextWarningTitle() override { return Text(&IToolbarConfig::get_ContextWarningTitle); }

    std::wstring ContextWarningText() override { return Text(&IToolbarConfig::get_ContextWarningText); }

    long EngineState() override { return Value<long>(&IToolbarConfig::get_EngineState); }

    void BeginCommand() override { Call(&IToolbarConfig::BeginCommand); }

    void CommandDone(long hWnd) override { Value<long>(&IToolbarConfig::CommandDone, hWnd); }

    void NewSearch(long hWnd, const std::wstring& text) override {
        Call(&IToolbarConfig::NewSearch, hWnd, _bstr_t(text.c_str()).GetBSTR());
    }

    void SaveLayout(const std::wstring& application, const BarLayout& layout) override {
        Call(&IToolbarConfig::SaveLayout, _bstr_t(application.c_str()).GetBSTR(), layout.height, layout.width,
             layout.left, layout.top, layout.rowIndex, _bstr_t(layout.position.c_str()).GetBSTR());
    }

    BarLayout LoadLayout(const std::wstring& application) override {
        BarLayout layout;
        _bstr_t position;
        Call(&IToolbarConfig::LoadLayout, _bstr_t(application.c_str()).GetBSTR(), &layout.height, &layout.width,
             &layout.left, &layout.top, &layout.rowIndex, position.GetAddress());
        layout.position = com::ToText(position.GetBSTR());
        return layout;
    }

private:
    template <class Member, class... Arguments>
    void Call(Member member, Arguments... arguments) {
        const HRESULT result = (server_.Get()->*member)(arguments...);
        if (com::ServerHasDied(result)) died_ = true;
        com::Check(result, server_.Get());
    }

    template <class Result, class Member, class... Arguments>
    Result Value(Member member, Arguments... arguments) {
        Result value{};
        Call(member, arguments..., &value);
        return value;
    }

    template <class Member, class... Arguments>
    std::wstring Text(Member member, Arguments... arguments) {
        constexpr size_t kLongestText = 1024;  // a caption or warning of millions of characters would block Outlook
        _bstr_t value;
        Call(member, arguments..., value.GetAddress());
        std::wstring text = com::ToText(value.GetBSTR());
        Shorten(text, kLongestText);
        return text;
    }

    const com::ComPtr<IToolbarConfig> server_;
    bool died_ = false;
};

}  // namespace

std::shared_ptr<ToolbarDefinition> ConfigClient::Get() {
    if (IsCreated()) return definition_;
    com::Check(failure_);
    com::ComPtr<IToolbarConfig> server;
    HRESULT result = CoCreateInstance(__uuidof(::ToolbarConfig), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                      IID_PPV_ARGS(&server));
    if (SUCCEEDED(result) && server == nullptr) result = E_NOINTERFACE;
    if (SUCCEEDED(result)) {
        hadServer_ = true;
        definition_ = std::make_shared<UtilityServer>(std::move(server));
    } else if (IsNotInstalled(result) && !hadServer_) {
        definition_ = std::make_shared<OwnDefinition>();
    } else {
        failure_ = result;
        com::Check(result);
    }
    return definition_;
}

}  // namespace beacon
