#include "engine/toolbar_config.h"

#include <map>

#include "com/dual.h"
#include "engine/controller_entry.h"
#include "engine/message_channel.h"

namespace beacon::standin {
namespace {

constexpr OLE_COLOR kMagenta = 0x00FF00FF;
constexpr long kReady = 3;

struct Layout {
    long height = 0;
    long width = 0;
    long left = 0;
    long top = 0;
    long rowIndex = 0;
    std::wstring position = L"Top";
};

std::wstring LayoutKey(const std::wstring& application) {
    return L"Software\\Corvantis\\Beacon\\Standin\\Layout\\" + application;
}

struct LayoutValue {
    const wchar_t* name;
    long Layout::*member;
};

constexpr LayoutValue kLayoutValues[] = {{L"Height", &Layout::height},
                                         {L"Width", &Layout::width},
                                         {L"Left", &Layout::left},
                                         {L"Top", &Layout::top},
                                         {L"RowIndex", &Layout::rowIndex}};

void Store(const std::wstring& application, const Layout& layout) {
    const std::wstring key = LayoutKey(application);
    for (const LayoutValue& value : kLayoutValues) {
        const long number = layout.*value.member;
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), value.name, REG_DWORD, &number, sizeof(number));
    }
    const auto size = static_cast<DWORD>((layout.position.size() + 1) * sizeof(wchar_t));
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"Position", REG_SZ, layout.position.c_str(), size);
}

Layout Load(const std::wstring& application) {
    Layout layout;
    const std::wstring key = LayoutKey(application);
    for (const LayoutValue& value : kLayoutValues) {
        DWORD size = sizeof(long);
        RegGetValueW(HKEY_CURRENT_USER, key.c_str(), value.name, RRF_RT_REG_DWORD, nullptr, &(layout.*value.member),
                     &size);
    }
    wchar_t position[64];
    DWORD size = sizeof(position);
    if (RegGetValueW(HKEY_CURRENT_USER, key.c_str(), L"Position", RRF_RT_REG_SZ, nullptr, position, &size) ==
        ERROR_SUCCESS)
        layout.position = position;
    return layout;
}

class ToolbarConfig final : public com::Dual<IToolbarConfig, kUtilLibrary> {
public:
    ToolbarConfig(const ToolbarSettings& settings, Monitor& monitor) : settings_(settings), monitor_(monitor) {}

    STDMETHODIMP BeginCommand() override {
        return com::Method([&] { monitor_.Event(L"BeginCommand"); });
    }

    STDMETHODIMP get_ContextMode(LONG* value) override { return Number(value, settings_.contextMode); }

    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override { return Text(value, L"Beacon"); }

    STDMETHODIMP get_ContextWarningText(BSTR* value) override {
        return Text(value, L"Choose a context before you search in context.");
    }

    STDMETHODIMP get_DefaultContextText(BSTR* value) override { return Text(value, L"No context"); }

    STDMETHODIMP get_ButtonBitmapPath(LONG i, BSTR* value) override {
        return Button(i, [&](const ToolbarButton&) {
            return Text(value, settings_.bitmaps + L"\\button" + std::to_wstring(i) + L".bmp");
        });
    }

    STDMETHODIMP get_ButtonCaption(LONG i, BSTR* value) override {
        return Button(i, [&](const ToolbarButton& button) { return Text(value, button.caption); });
    }

    STDMETHODIMP get_ButtonTooltip(LONG i, BSTR* value) override {
        return Button(i, [&](const ToolbarButton& button) { return Text(value, button.tooltip); });
    }

    STDMETHODIMP get_ButtonEnabled(LONG i, VARIANT_BOOL* value) override {
        if (value == nullptr) return E_POINTER;
        return Button(i, [&](const ToolbarButton& button) {
            *value = button.enabled ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        });
    }

    STDMETHODIMP get_ButtonMaskColor(LONG i, OLE_COLOR* value) override {
        if (value == nullptr) return E_POINTER;
        return Button(i, [&](const ToolbarButton&) {
            *value = kMagenta;
            return S_OK;
        });
    }

    STDMETHODIMP get_ButtonCount(LONG* value) override {
        return Number(value, static_cast<long>(settings_.buttons.size()));
    }

    STDMETHODIMP get_EngineState(LONG* value) override {
        return Number(value, settings_.engineState ? *settings_.engineState : (IsControllerRunning() ? kReady : 0));
    }

    STDMETHODIMP CommandDone(LONG hWnd, LONG* result) override {
        if (result == nullptr) return E_POINTER;
        *result = 0;
        return com::Method([&] { monitor_.Event(L"CommandDone " + std::to_wstring(hWnd)); });
    }

    STDMETHODIMP NewSearch(LONG hWnd, BSTR text) override {
        return com::Method([&] { monitor_.Event(L"NewSearch " + std::to_wstring(hWnd) + L" " + com::ToText(text)); });
    }

    STDMETHODIMP SaveLayout(BSTR app, LONG height, LONG width, LONG left, LONG top, LONG rowIndex,
                            BSTR position) override {
        return com::Method([&] {
            const std::wstring application = com::ToText(app);
            const Layout layout{height, width, left, top, rowIndex, com::ToText(position)};
            Store(application, layout);
            Layouts()[application] = layout;
            Report(L"SaveLayout", application, layout);
        });
    }

    STDMETHODIMP LoadLayout(BSTR app, LONG* height, LONG* width, LONG* left, LONG* top, LONG* rowIndex,
                            BSTR* position) override {
        if (height == nullptr || width == nullptr || left == nullptr || top == nullptr || rowIndex == nullptr ||
            position == nullptr)
            return E_POINTER;
        *position = nullptr;
        return com::Method([&] {
            const std::wstring application = com::ToText(app);
            const auto known = Layouts().find(application);
            const Layout layout = known != Layouts().end() ? known->second : Load(application);
            *height = layout.height;
            *width = layout.width;
            *left = layout.left;
            *top = layout.top;
            *rowIndex = layout.rowIndex;
            *position = com::NewBstr(layout.position);
            Report(L"LoadLayout", application, layout);
        });
    }

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
    // One memory for all objects of the program: a client may save through one and load through another.
    static std::map<std::wstring, Layout>& Layouts() {
        static std::map<std::wstring, Layout> layouts;
        return layouts;
    }

    static HRESULT Number(LONG* target, long value) {
        if (target == nullptr) return E_POINTER;
        *target = value;
        return S_OK;
    }

    static HRESULT Text(BSTR* target, const std::wstring& value) {
        if (target == nullptr) return E_POINTER;
        *target = nullptr;
        return com::Method([&] { *target = com::NewBstr(value); });
    }

    template <class Use>
    HRESULT Button(LONG index, Use use) {
        if (index < 0 || index >= static_cast<long>(settings_.buttons.size())) {
            return com::Method([&] {
                monitor_.Event(L"fault toolbar: no button " + std::to_wstring(index));
                com::Check(DISP_E_BADINDEX);
            });
        }
        return use(settings_.buttons[static_cast<size_t>(index)]);
    }

    void Report(const wchar_t* member, const std::wstring& application, const Layout& layout) {
        std::wstring line = std::wstring(member) + L" " + application;
        for (const LayoutValue& value : kLayoutValues) line += L" " + std::to_wstring(layout.*value.member);
        monitor_.Event(line + L" " + layout.position);
    }

    const ToolbarSettings& settings_;
    Monitor& monitor_;
};

}  // namespace

com::ComPtr<IUnknown> MakeToolbarConfig(const ToolbarSettings& settings, Monitor& monitor) {
    return com::ComPtr<IUnknown>(com::MakeObject<ToolbarConfig>(settings, monitor).Get());
}

}  // namespace beacon::standin
