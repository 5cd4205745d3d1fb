#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "com/class_factory.h"
#include "com/text.h"
#include "standins/common/toolbar_config_base.h"

namespace beacon::test {

/// The utility server in this process: what it answers, and what it has been told. No reference from outside ends it.
class FakeConfig final : public standin::ToolbarConfigBase<2> {
public:
    FakeConfig() { AddRef(); }

    /// Of this one object; the factory must not outlive it.
    com::ComPtr<IClassFactory> Factory() {
        return com::MakeClassFactory([this] {
            ++asked;
            if (onCall) onCall(L"");
            com::Check(refusal);
            return com::ComPtr<IUnknown>(static_cast<IUnknown*>(this));
        });
    }

    STDMETHODIMP BeginCommand() override { return Note(L"BeginCommand"); }

    STDMETHODIMP get_ContextMode(long* value) override { return Give(L"ContextMode", value, contextMode); }

    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override {
        return Text(L"ContextWarningTitle", value, L"A title nobody else has");
    }

    STDMETHODIMP get_ContextWarningText(BSTR* value) override {
        return Text(L"ContextWarningText", value, L"Choose first");
    }

    STDMETHODIMP get_DefaultContextText(BSTR* value) override {
        return Text(L"DefaultContextText", value, L"No context");
    }

    STDMETHODIMP get_ButtonBitmapPath(long i, BSTR* value) override {
        return Text(L"ButtonBitmapPath", value, bitmapFolder + L"\\button" + std::to_wstring(i) + L".bmp");
    }

    STDMETHODIMP get_ButtonCaption(long i, BSTR* value) override { return Text(L"ButtonCaption", value, captions[i]); }

    STDMETHODIMP get_ButtonTooltip(long i, BSTR* value) override {
        return Text(L"ButtonTooltip", value, L"tip " + captions[i]);
    }

    STDMETHODIMP get_ButtonEnabled(long i, VARIANT_BOOL* value) override {
        return Give(L"ButtonEnabled", value, i == disabled ? VARIANT_FALSE : VARIANT_TRUE);
    }

    STDMETHODIMP get_ButtonMaskColor(long i, OLE_COLOR* value) override {
        return Give(L"ButtonMaskColor", value, maskColors.contains(i) ? maskColors[i] : 0xFF00FF);
    }

    STDMETHODIMP get_ButtonCount(long* value) override { return Give(L"ButtonCount", value, buttonCount); }

    STDMETHODIMP get_EngineState(long* value) override { return Give(L"EngineState", value, engineState); }

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

    long contextMode = 1;
    long buttonCount = 6;
    long engineState = 3;
    long disabled = -1;  ///< the number of a button
    std::wstring captions[8] = {L"Beacon", L"Backpack", L"Search", L"In context",
                                L"Focus",  L"Refresh",  L"More",   L"Most"};
    std::map<long, OLE_COLOR> maskColors;  ///< magenta where there is none
    std::wstring bitmapFolder;

    HRESULT refusal = S_OK;  ///< how objects fail to be created
    int asked = 0;           ///< for an object
    /// "BeginCommand", "CommandDone 5", "NewSearch 5 <text>", "SaveLayout ...".
    std::vector<std::wstring> calls;
    /// Runs inside every call, as from outside while the caller waits, with the member's name ("" inside a creation).
    std::function<void(const std::wstring&)> onCall;
    /// What the member of this name returns at its next call.
    std::map<std::wstring, HRESULT> failures;

private:
    template <class Value>
    HRESULT Give(const wchar_t* member, Value* target, std::type_identity_t<Value> value) {
        if (onCall) onCall(member);
        const auto failure = failures.extract(member);
        if (!failure.empty()) return failure.mapped();
        *target = value;
        return S_OK;
    }

    HRESULT Text(const wchar_t* member, BSTR* target, const std::wstring& text) {
        return Give(member, target, com::NewBstr(text));
    }

    HRESULT Note(const wchar_t* member, const std::wstring& arguments = {}) {
        calls.push_back(member + arguments);
        int nothing = 0;
        return Give(member, &nothing, 0);
    }
};

}  // namespace beacon::test
