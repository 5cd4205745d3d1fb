#include "recording_config.h"

#include "com/text.h"
#include "standins/common/toolbar_config_base.h"

namespace beacon::test {
namespace {

constexpr int kEngineLibrary = 2;

class RecordingConfig final : public standin::ToolbarConfigBase<kEngineLibrary> {
public:
    explicit RecordingConfig(ConfigRecord& record) : record_(record) {}

    STDMETHODIMP BeginCommand() override { return Note(L"BeginCommand", L""); }

    STDMETHODIMP get_ContextMode(long* value) override { return Give(L"ContextMode", value, record_.contextMode); }

    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override {
        return Text(L"ContextWarningTitle", value, L"A title nobody else has");
    }

    STDMETHODIMP get_ContextWarningText(BSTR* value) override {
        return Text(L"ContextWarningText", value, L"Choose first");
    }

    STDMETHODIMP get_DefaultContextText(BSTR* value) override {
        return Text(L"DefaultContextText", value, record_.defaultContext);
    }

    STDMETHODIMP get_ButtonBitmapPath(long i, BSTR* value) override {
        return Text(L"ButtonBitmapPath", value, record_.bitmapFolder + L"\\button" + std::to_wstring(i) + L".bmp");
    }

    STDMETHODIMP get_ButtonCaption(long i, BSTR* value) override {
        return Text(L"ButtonCaption", value, record_.captions[i]);
    }

    STDMETHODIMP get_ButtonTooltip(long i, BSTR* value) override {
        return Text(L"ButtonTooltip", value, L"tip " + record_.captions[i]);
    }

    STDMETHODIMP get_ButtonEnabled(long i, VARIANT_BOOL* value) override {
        return Give(L"ButtonEnabled", value, record_.enabled[i] ? VARIANT_TRUE : VARIANT_FALSE);
    }

    STDMETHODIMP get_ButtonMaskColor(long i, OLE_COLOR* value) override {
        return Give(L"ButtonMaskColor", value, record_.maskColors[i]);
    }

    STDMETHODIMP get_ButtonCount(long* value) override { return Give(L"ButtonCount", value, record_.buttonCount); }

    STDMETHODIMP get_EngineState(long* value) override { return Give(L"EngineState", value, record_.engineState); }

    STDMETHODIMP CommandDone(long hWnd, long* result) override {
        *result = 0;
        return Note(L"CommandDone", L" " + std::to_wstring(hWnd));
    }

    STDMETHODIMP NewSearch(long hWnd, BSTR text) override {
        return Note(L"NewSearch", L" " + std::to_wstring(hWnd) + L" <" + com::ToText(text) + L">");
    }

    STDMETHODIMP SaveLayout(BSTR app, long height, long width, long left, long top, long row, BSTR position) override {
        std::wstring line = L" " + com::ToText(app);
        for (const long number : {height, width, left, top, row}) line += L" " + std::to_wstring(number);
        return Note(L"SaveLayout", line + L" " + com::ToText(position));
    }

    STDMETHODIMP LoadLayout(BSTR, long*, long*, long*, long*, long*, BSTR*) override { return E_NOTIMPL; }

private:
    HRESULT Enter(const wchar_t* member) {
        if (record_.onCall) record_.onCall(member);
        const auto failure = record_.failures.extract(member);
        return failure.empty() ? S_OK : failure.mapped();
    }

    template <class Value>
    HRESULT Give(const wchar_t* member, Value* target, std::type_identity_t<Value> value) {
        const HRESULT result = Enter(member);
        if (SUCCEEDED(result)) *target = value;
        return result;
    }

    HRESULT Text(const wchar_t* member, BSTR* target, const std::wstring& text) {
        return Give(member, target, com::NewBstr(text));
    }

    HRESULT Note(const wchar_t* member, const std::wstring& arguments) {
        record_.calls.push_back(member + arguments);
        return Enter(member);
    }

    ConfigRecord& record_;
};

}  // namespace

com::ComPtr<IClassFactory> MakeConfigFactory(ConfigRecord& record) {
    return com::MakeClassFactory([&record] {
        ++record.asked;
        if (record.onCall) record.onCall(L"");
        com::Check(record.refusal);
        const auto config = com::MakeObject<RecordingConfig>(record);
        return com::ComPtr<IUnknown>(static_cast<IUnknown*>(config.Get()));
    });
}

}  // namespace beacon::test
