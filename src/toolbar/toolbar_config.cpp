#include "toolbar/toolbar_config.h"

#include <array>
#include <cwctype>
#include <optional>

#include "com/error.h"
#include "com/module.h"
#include "com/text.h"
#include "support/log.h"
#include "support/numbers.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon {
namespace {

constexpr long kEngineIsReady = 3;
constexpr OLE_COLOR kMagenta = 0x00FF00FF;
// Numbers of the bitmaps among the resources of this binary.
constexpr long kFirstBitmap = 100;

struct BuiltIn {
    const wchar_t* caption;
    const wchar_t* tooltip;
};

constexpr std::array<BuiltIn, ToolbarConfig::kButtons> kBuiltIn = {{
    {L"Beacon", L"Show information related to this item"},
    {L"Backpack", L"Open the backpack"},
    {L"Search", L"Start a new search"},
    {L"Search in Context", L"Search within the chosen context"},
    {L"Focus", L"Bring the information on this item to the front"},
    {L"Refresh", L"Analyse this item again"},
}};

std::optional<std::wstring> Setting(const std::wstring& name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value)) return std::nullopt;
    return value;
}

std::optional<long> NumberSetting(const std::wstring& name) {
    const std::optional<std::wstring> text = Setting(name);
    return text ? ParseLong(*text) : std::nullopt;
}

void CheckIndex(long index) {
    if (index < 0 || index >= ToolbarConfig::kButtons) com::Raise(com::kSubscriptOutOfRange);
}

std::wstring ButtonValue(const wchar_t* name, long index) { return name + std::to_wstring(index); }

bool IsFalse(std::wstring text) {
    for (wchar_t& character : text) character = static_cast<wchar_t>(std::towlower(character));
    return text == L"0" || text == L"false";
}

template <class Value, class Body>
HRESULT Give(Value* target, Body&& body) {
    if (target == nullptr) return E_POINTER;
    *target = Value{};
    return com::Method([&] { *target = body(); });
}

HRESULT GiveText(BSTR* target, const wchar_t* name, const wchar_t* builtIn) {
    return Give(target, [&] { return com::NewBstr(Setting(name).value_or(builtIn)); });
}

std::wstring LayoutKey(BSTR application) { return kUserAdaptersKey + com::ToText(application) + L"\\Layout"; }

bool ControllerIsRunning() {
    CLSID controller;
    if (FAILED(CLSIDFromProgID(L"BeaconController.Application", &controller))) return false;
    com::ComPtr<IUnknown> running;
    return SUCCEEDED(GetActiveObject(controller, nullptr, &running));
}

std::wstring NewTemporaryPath(long index) {
    static long count = 0;
    wchar_t folder[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    if (length == 0 || length > MAX_PATH) com::Check(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    return std::wstring(folder, length) + L"beacon-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(++count) + L"-button" + std::to_wstring(index) + L".bmp";
}

void WriteFileAnew(const std::wstring& path, const void* bytes, DWORD size) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr);
    if (file == INVALID_HANDLE_VALUE) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    DWORD written = 0;
    const bool done = WriteFile(file, bytes, size, &written, nullptr) != FALSE && written == size;
    const DWORD code = done ? ERROR_SUCCESS : ERROR_WRITE_FAULT;
    CloseHandle(file);
    if (done) return;
    DeleteFileW(path.c_str());
    com::Check(HRESULT_FROM_WIN32(code));
}

}  // namespace

com::ComPtr<IToolbarConfig> MakeToolbarConfig() {
    com::ComPtr<IToolbarConfig> config;
    const HRESULT result = CoCreateInstance(__uuidof(::ToolbarConfig), nullptr, CLSCTX_ALL, IID_PPV_ARGS(&config));
    if (FAILED(result) || config == nullptr) config = com::MakeObject<ToolbarConfig>();
    return config;
}

ToolbarConfig::~ToolbarConfig() {
    for (const std::wstring& path : written_)
        if (!path.empty()) DeleteFileW(path.c_str());
}

STDMETHODIMP ToolbarConfig::BeginCommand() { return S_OK; }

STDMETHODIMP ToolbarConfig::CommandDone(long, long* result) {
    return Give(result, [] { return 0L; });
}

STDMETHODIMP ToolbarConfig::NewSearch(long hWnd, BSTR text) {
    return com::Method([&] {
        LogMsg(L"ToolbarConfig: the utility server is missing, no search for window ", hWnd, L" with text <",
               com::ToText(text), L">");
    });
}

STDMETHODIMP ToolbarConfig::get_ContextMode(long* value) {
    return Give(value, [] { return NumberSetting(L"ContextMode").value_or(1); });
}

STDMETHODIMP ToolbarConfig::get_ContextWarningTitle(BSTR* value) {
    return GiveText(value, L"ContextWarningTitle", L"Beacon");
}

STDMETHODIMP ToolbarConfig::get_ContextWarningText(BSTR* value) {
    return GiveText(value, L"ContextWarningText", L"Please choose a context before you search in it.");
}

STDMETHODIMP ToolbarConfig::get_DefaultContextText(BSTR* value) {
    return GiveText(value, L"DefaultContextText", L"<no context>");
}

STDMETHODIMP ToolbarConfig::get_ButtonCount(long* value) {
    return Give(value, [] { return kButtons; });
}

STDMETHODIMP ToolbarConfig::get_ButtonCaption(long i, BSTR* value) {
    return Give(value, [&] {
        CheckIndex(i);
        return com::NewBstr(
            Setting(ButtonValue(L"ButtonCaption", i)).value_or(kBuiltIn[static_cast<size_t>(i)].caption));
    });
}

STDMETHODIMP ToolbarConfig::get_ButtonTooltip(long i, BSTR* value) {
    return Give(value, [&] {
        CheckIndex(i);
        return com::NewBstr(
            Setting(ButtonValue(L"ButtonTooltip", i)).value_or(kBuiltIn[static_cast<size_t>(i)].tooltip));
    });
}

STDMETHODIMP ToolbarConfig::get_ButtonEnabled(long i, VARIANT_BOOL* value) {
    return Give(value, [&] {
        CheckIndex(i);
        const std::optional<std::wstring> text = Setting(ButtonValue(L"ButtonEnabled", i));
        return text && IsFalse(*text) ? VARIANT_FALSE : VARIANT_TRUE;
    });
}

STDMETHODIMP ToolbarConfig::get_ButtonMaskColor(long i, OLE_COLOR* value) {
    return Give(value, [&] {
        CheckIndex(i);
        const std::optional<long> number = NumberSetting(ButtonValue(L"ButtonMaskColor", i));
        return number ? static_cast<OLE_COLOR>(*number) : kMagenta;
    });
}

STDMETHODIMP ToolbarConfig::get_ButtonBitmapPath(long i, BSTR* value) {
    return Give(value, [&] {
        CheckIndex(i);
        const std::optional<std::wstring> path = Setting(ButtonValue(L"ButtonBitmapPath", i));
        return com::NewBstr(path ? *path : BuiltInBitmap(i));
    });
}

std::wstring ToolbarConfig::BuiltInBitmap(long index) {
    std::wstring& path = written_[index];
    if (!path.empty() && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return path;
    const HRSRC resource =
        FindResourceW(com::ModuleInstance(), MAKEINTRESOURCEW(kFirstBitmap + index), MAKEINTRESOURCEW(10) /*RCDATA*/);
    const HGLOBAL loaded = resource == nullptr ? nullptr : LoadResource(com::ModuleInstance(), resource);
    if (loaded == nullptr) com::Check(HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND));
    const std::wstring fresh = NewTemporaryPath(index);
    WriteFileAnew(fresh, LockResource(loaded), SizeofResource(com::ModuleInstance(), resource));
    return path = fresh;
}

STDMETHODIMP ToolbarConfig::get_EngineState(long* value) {
    return Give(value, [] { return ControllerIsRunning() ? kEngineIsReady : 0L; });
}

STDMETHODIMP ToolbarConfig::SaveLayout(BSTR app, long height, long width, long left, long top, long rowIndex,
                                       BSTR position) {
    return com::Method([&] {
        const std::wstring key = LayoutKey(app);
        SetRegDword(HKEY_CURRENT_USER, key, L"Height", height);
        SetRegDword(HKEY_CURRENT_USER, key, L"Width", width);
        SetRegDword(HKEY_CURRENT_USER, key, L"Left", left);
        SetRegDword(HKEY_CURRENT_USER, key, L"Top", top);
        SetRegDword(HKEY_CURRENT_USER, key, L"RowIndex", rowIndex);
        SetRegString(HKEY_CURRENT_USER, key, L"Position", com::ToText(position));
    });
}

STDMETHODIMP ToolbarConfig::LoadLayout(BSTR app, long* height, long* width, long* left, long* top, long* rowIndex,
                                       BSTR* position) {
    if (height == nullptr || width == nullptr || left == nullptr || top == nullptr || rowIndex == nullptr ||
        position == nullptr)
        return E_POINTER;
    *position = nullptr;
    return com::Method([&] {
        const std::wstring key = LayoutKey(app);
        std::wstring name;
        if (!GetRegValue(HKEY_CURRENT_USER, key, L"Position", name))
            com::Check(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        *height = modGetDword(HKEY_CURRENT_USER, key, L"Height");
        *width = modGetDword(HKEY_CURRENT_USER, key, L"Width");
        *left = modGetDword(HKEY_CURRENT_USER, key, L"Left");
        *top = modGetDword(HKEY_CURRENT_USER, key, L"Top");
        *rowIndex = modGetDword(HKEY_CURRENT_USER, key, L"RowIndex");
        *position = com::NewBstr(name);
    });
}

}  // namespace beacon
