#include "toolbar/own_definition.h"

#include <optional>

#include "com/error.h"
#include "com/handle.h"
#include "com/module.h"
#include "com/text.h"
#include "engine/running_controller.h"
#include "support/log.h"
#include "support/numbers.h"
#include "support/registry.h"
#include "support/settings.h"
#include "support/string_values.h"
#include "toolbar/bar_places.h"

namespace beacon {
namespace {

constexpr OLE_COLOR kMagenta = 0x00FF00FF;
// Resource ids of the bitmaps, in the order of the buttons.
constexpr long kFirstBitmap = 100;

std::optional<std::wstring> Setting(const std::wstring& name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value)) return std::nullopt;
    return value;
}

std::optional<long> NumberSetting(const std::wstring& name) {
    const std::optional<std::wstring> text = Setting(name);
    return text ? ParseLong(*text) : std::nullopt;
}

std::wstring TextSetting(const std::wstring& name, const wchar_t* builtIn) { return Setting(name).value_or(builtIn); }

/// The name of the registry value of a button.
std::wstring OfButton(const wchar_t* name, long index) {
    if (index < 0 || index >= OwnDefinition::kButtons) com::Raise(com::kSubscriptOutOfRange);
    return name + DecimalText(index);
}

bool IsFalse(const std::wstring& text) { return text == L"0" || UpperAscii(text) == L"FALSE"; }

std::wstring LayoutKey(const std::wstring& application) { return kUserAdaptersKey + application + L"\\Layout"; }

struct LayoutValue {
    const wchar_t* name;
    long BarLayout::*member;
};

constexpr LayoutValue kLayoutValues[] = {{L"Height", &BarLayout::height},
                                         {L"Width", &BarLayout::width},
                                         {L"Left", &BarLayout::left},
                                         {L"Top", &BarLayout::top},
                                         {L"RowIndex", &BarLayout::rowIndex}};
constexpr wchar_t kPosition[] = L"Position";

std::wstring NewTemporaryPath(long index) {
    static long count = 0;
    wchar_t folder[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    if (length == 0 || length > MAX_PATH) com::Check(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    return std::wstring(folder, length) + L"beacon-" + DecimalText(GetCurrentProcessId()) + L"-" +
           DecimalText(++count) + L"-button" + DecimalText(index) + L".bmp";
}

/// Writes a new file and returns its path. Never replaces a file, and never follows a link.
std::wstring WriteNewFile(long index, const void* bytes, DWORD size) {
    constexpr int kTries = 100;
    std::wstring path;
    com::UniqueHandle file;
    for (int i = 0; i < kTries && file == nullptr; ++i) {
        path = NewTemporaryPath(index);
        file = com::OwnFile(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY, nullptr));
        if (file == nullptr && GetLastError() != ERROR_FILE_EXISTS) break;
    }
    if (file == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    DWORD written = 0;
    const bool isWritten = WriteFile(file.get(), bytes, size, &written, nullptr) != FALSE && written == size;
    file.reset();
    if (!isWritten) {
        DeleteFileW(path.c_str());
        com::Check(HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
    }
    return path;
}

}  // namespace

OwnDefinition::~OwnDefinition() {
    for (const std::wstring& path : written_)
        if (!path.empty()) DeleteFileW(path.c_str());
}

std::wstring OwnDefinition::ButtonCaption(long index) {
    const std::wstring name = OfButton(L"ButtonCaption", index);
    return TextSetting(name, kBarPlaces[index].caption);
}

std::wstring OwnDefinition::ButtonTooltip(long index) {
    const std::wstring name = OfButton(L"ButtonTooltip", index);
    return TextSetting(name, kBarPlaces[index].tooltip);
}

std::wstring OwnDefinition::ButtonBitmapPath(long index) {
    const std::optional<std::wstring> path = Setting(OfButton(L"ButtonBitmapPath", index));
    return path ? *path : BuiltInBitmap(index);
}

std::wstring OwnDefinition::BuiltInBitmap(long index) {
    std::wstring& path = written_[static_cast<size_t>(index)];
    if (!path.empty() && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return path;
    const HMODULE module = com::ModuleInstance();
    const HRSRC resource =
        FindResourceW(module, MAKEINTRESOURCEW(kFirstBitmap + index), MAKEINTRESOURCEW(10) /*RCDATA*/);
    const HGLOBAL loaded = resource == nullptr ? nullptr : LoadResource(module, resource);
    if (loaded == nullptr) com::Check(HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND));
    return path = WriteNewFile(index, LockResource(loaded), SizeofResource(module, resource));
}

bool OwnDefinition::ButtonEnabled(long index) { return !IsFalse(TextSetting(OfButton(L"ButtonEnabled", index), L"1")); }

OLE_COLOR OwnDefinition::ButtonMaskColor(long index) {
    const std::optional<long> number = NumberSetting(OfButton(L"ButtonMaskColor", index));
    return number ? static_cast<OLE_COLOR>(*number) : kMagenta;
}

long OwnDefinition::ContextMode() { return NumberSetting(L"ContextMode").value_or(kContextBoxIsShown); }

std::wstring OwnDefinition::DefaultContextText() { return TextSetting(L"DefaultContextText", L"<no context>"); }

std::wstring OwnDefinition::ContextWarningTitle() { return TextSetting(L"ContextWarningTitle", L"Beacon"); }

std::wstring OwnDefinition::ContextWarningText() {
    return TextSetting(L"ContextWarningText", L"Please choose a context before you search in it.");
}

long OwnDefinition::EngineState() { return RunningController() ? kEngineIsReady : 0; }

void OwnDefinition::NewSearch(long hWnd, const std::wstring& text) {
    LogMsg(L"ToolbarConfig: the utility server is missing, no search for window ", hWnd, L" with text <", text, L">");
}

void OwnDefinition::SaveLayout(const std::wstring& application, const BarLayout& layout) {
    const std::wstring key = LayoutKey(application);
    for (const LayoutValue& value : kLayoutValues)
        SetRegDword(HKEY_CURRENT_USER, key, value.name, layout.*value.member);
    SetRegString(HKEY_CURRENT_USER, key, kPosition, layout.position);
}

BarLayout OwnDefinition::LoadLayout(const std::wstring& application) {
    const std::wstring key = LayoutKey(application);
    BarLayout layout;
    if (!GetRegValue(HKEY_CURRENT_USER, key, kPosition, layout.position))
        com::Check(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    for (const LayoutValue& value : kLayoutValues)
        layout.*value.member = modGetDword(HKEY_CURRENT_USER, key, value.name);
    return layout;
}

}  // namespace beacon
