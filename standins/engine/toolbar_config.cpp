#include "engine/toolbar_config.h"

#include <algorithm>
#include <iterator>

#include "com/text.h"
#include "common/toolbar_config_base.h"
#include "engine/controller_entry.h"
#include "engine/message_channel.h"

namespace beacon::standin {
namespace {

constexpr long kReady = 3;

std::wstring Description(const ToolbarLayout& layout) {
    std::wstring text;
    for (const long number : layout.numbers) text += L" " + std::to_wstring(number);
    return text + L" " + layout.position;
}

class ToolbarConfig final : public ToolbarConfigBase<kUtilLibrary> {
public:
    ToolbarConfig(ToolbarSettings& settings, Monitor& monitor) : settings_(settings), monitor_(monitor) {}

    STDMETHODIMP BeginCommand() override {
        return CountedMethod(L"BeginCommand", [&] { return Report(L"BeginCommand"); });
    }

    STDMETHODIMP get_ContextMode(LONG* value) override {
        return Counted(L"ContextMode", [&] { return com::Give(value, settings_.contextMode); });
    }

    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override {
        return Counted(L"ContextWarningTitle", [&] { return com::GiveText(value, L"Beacon"); });
    }

    STDMETHODIMP get_ContextWarningText(BSTR* value) override {
        return Counted(L"ContextWarningText",
                       [&] { return com::GiveText(value, L"Choose a context before you search in context."); });
    }

    STDMETHODIMP get_DefaultContextText(BSTR* value) override {
        return Counted(L"DefaultContextText", [&] { return com::GiveText(value, L"No context"); });
    }

    STDMETHODIMP get_ButtonBitmapPath(LONG i, BSTR* value) override {
        return OfButton(L"ButtonBitmapPath", i, [&](const ToolbarButton&) {
            return com::GiveText(value, settings_.bitmaps + L"\\button" + std::to_wstring(i) + L".bmp");
        });
    }

    STDMETHODIMP get_ButtonCaption(LONG i, BSTR* value) override {
        return OfButton(L"ButtonCaption", i,
                        [&](const ToolbarButton& button) { return com::GiveText(value, button.caption); });
    }

    STDMETHODIMP get_ButtonTooltip(LONG i, BSTR* value) override {
        return OfButton(L"ButtonTooltip", i,
                        [&](const ToolbarButton& button) { return com::GiveText(value, button.tooltip); });
    }

    STDMETHODIMP get_ButtonEnabled(LONG i, VARIANT_BOOL* value) override {
        return OfButton(L"ButtonEnabled", i,
                        [&](const ToolbarButton& button) { return com::GiveBool(value, button.enabled); });
    }

    STDMETHODIMP get_ButtonMaskColor(LONG i, OLE_COLOR* value) override {
        return OfButton(L"ButtonMaskColor", i,
                        [&](const ToolbarButton& button) { return com::Give(value, button.maskColor); });
    }

    STDMETHODIMP get_ButtonCount(LONG* value) override {
        return Counted(L"ButtonCount", [&] {
            return com::Give(value, settings_.buttonCount.value_or(static_cast<LONG>(settings_.buttons.size())));
        });
    }

    STDMETHODIMP get_EngineState(LONG* value) override {
        return Counted(L"EngineState", [&] {
            return com::Give(value,
                             settings_.engineState ? *settings_.engineState : (IsControllerRunning() ? kReady : 0));
        });
    }

    STDMETHODIMP CommandDone(LONG hWnd, LONG* result) override {
        return CountedMethod(L"CommandDone", [&] {
            const HRESULT given = com::Give(result, 0);
            return FAILED(given) ? given : Report(L"CommandDone " + std::to_wstring(hWnd));
        });
    }

    STDMETHODIMP NewSearch(LONG hWnd, BSTR text) override {
        return CountedMethod(L"NewSearch",
                             [&] { return Report(L"NewSearch " + std::to_wstring(hWnd) + L" " + com::ToText(text)); });
    }

    STDMETHODIMP SaveLayout(BSTR app, LONG height, LONG width, LONG left, LONG top, LONG rowIndex,
                            BSTR position) override {
        return CountedMethod(L"SaveLayout", [&] {
            const std::wstring name = com::ToText(app);
            settings_.layouts[name] = {{height, width, left, top, rowIndex}, com::ToText(position)};
            return Report(L"SaveLayout " + name + Description(settings_.layouts[name]));
        });
    }

    STDMETHODIMP LoadLayout(BSTR app, LONG* height, LONG* width, LONG* left, LONG* top, LONG* rowIndex,
                            BSTR* position) override {
        LONG* const targets[] = {height, width, left, top, rowIndex};
        if (position == nullptr || std::ranges::find(targets, nullptr) != std::end(targets)) return E_POINTER;
        *position = nullptr;
        return CountedMethod(L"LoadLayout", [&] {
            const std::wstring name = com::ToText(app);
            const ToolbarLayout& layout = settings_.layouts[name];
            for (size_t i = 0; i < std::size(targets); ++i) *targets[i] = layout.numbers[i];
            com::Check(com::GiveText(position, layout.position));
            return Report(L"LoadLayout " + name + Description(layout));
        });
    }

private:
    template <class Use>
    HRESULT OfButton(const wchar_t* member, LONG index, Use use, const void* caller = RETURN_ADDRESS()) {
        const auto body = [&] {
            if (index >= 0 && index < static_cast<LONG>(settings_.buttons.size()))
                return use(settings_.buttons[static_cast<size_t>(index)]);
            Report(L"fault toolbar: no button " + std::to_wstring(index));
            return DISP_E_BADINDEX;
        };
        return Counted(member, body, caller);
    }

    HRESULT Report(const std::wstring& event) {
        return com::Method([&] { monitor_.Event(event); });
    }

    ToolbarSettings& settings_;
    Monitor& monitor_;
};

}  // namespace

com::ComPtr<IUnknown> MakeToolbarConfig(ToolbarSettings& settings, Monitor& monitor) {
    return com::ComPtr<IUnknown>(com::MakeObject<ToolbarConfig>(settings, monitor).Get());
}

}  // namespace beacon::standin
