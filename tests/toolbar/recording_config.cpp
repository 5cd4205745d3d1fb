#include "recording_config.h"

#include "com/dual.h"
#include "com/text.h"

namespace beacon::test {
namespace {

HRESULT Text(BSTR* target, const std::wstring& text) {
    return com::Method([&] { *target = com::NewBstr(text); });
}

class RecordingConfig final : public com::Dual<IToolbarConfig, 2> {
public:
    explicit RecordingConfig(ConfigRecord& record) : record_(record) { ++record.created; }

    STDMETHODIMP BeginCommand() override { return Note(L"BeginCommand"); }

    STDMETHODIMP get_ContextMode(long* value) override { return Number(value, record_.contextMode); }

    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override { return Text(value, L"A title nobody else has"); }

    STDMETHODIMP get_ContextWarningText(BSTR* value) override { return Text(value, L"Choose first"); }

    STDMETHODIMP get_DefaultContextText(BSTR* value) override { return Text(value, record_.defaultContext); }

    STDMETHODIMP get_ButtonBitmapPath(long i, BSTR* value) override {
        return Text(value, record_.bitmapFolder + L"\\button" + std::to_wstring(i) + L".bmp");
    }

    STDMETHODIMP get_ButtonCaption(long i, BSTR* value) override { return Text(value, record_.captions[i]); }

    STDMETHODIMP get_ButtonTooltip(long i, BSTR* value) override { return Text(value, L"tip " + record_.captions[i]); }

    STDMETHODIMP get_ButtonEnabled(long i, VARIANT_BOOL* value) override {
        *value = record_.enabled[i] ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

    STDMETHODIMP get_ButtonMaskColor(long, OLE_COLOR* value) override {
        *value = 0x00FF00FF;
        return S_OK;
    }

    STDMETHODIMP get_ButtonCount(long* value) override { return Number(value, record_.buttonCount); }

    STDMETHODIMP get_EngineState(long* value) override {
        if (record_.engineStateFailure != S_OK) return std::exchange(record_.engineStateFailure, S_OK);
        return Number(value, record_.engineState);
    }

    STDMETHODIMP CommandDone(long hWnd, long* result) override {
        *result = 0;
        return Note(L"CommandDone " + std::to_wstring(hWnd));
    }

    STDMETHODIMP NewSearch(long hWnd, BSTR text) override {
        Note(L"NewSearch " + std::to_wstring(hWnd) + L" <" + com::ToText(text) + L">");
        if (record_.onNewSearch) record_.onNewSearch();
        return S_OK;
    }

    STDMETHODIMP SaveLayout(BSTR app, long height, long width, long left, long top, long row, BSTR position) override {
        std::wstring line = L"SaveLayout " + com::ToText(app);
        for (const long number : {height, width, left, top, row}) line += L" " + std::to_wstring(number);
        return Note(line + L" " + com::ToText(position));
    }

    STDMETHODIMP LoadLayout(BSTR, long*, long*, long*, long*, long*, BSTR*) override { return E_NOTIMPL; }

    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved4() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved5() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved6() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved9() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved11() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved18() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved21() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved22() override { return E_NOTIMPL; }

private:
    static HRESULT Number(long* target, long number) {
        *target = number;
        return S_OK;
    }

    HRESULT Note(const std::wstring& call) {
        record_.calls.push_back(call);
        return S_OK;
    }

    ConfigRecord& record_;
};

}  // namespace

com::ComPtr<IClassFactory> MakeConfigFactory(ConfigRecord& record) {
    return com::MakeClassFactory([&record] {
        if (record.refuse) com::Raise(com::kCannotCreateObject);
        const auto config = com::MakeObject<RecordingConfig>(record);
        return com::ComPtr<IUnknown>(static_cast<IUnknown*>(config.Get()));
    });
}

}  // namespace beacon::test
