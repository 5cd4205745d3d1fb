#include "outlook/observation/exit_report.h"

#include <psapi.h>

#include "common/automation_object.h"
#include "common/journal.h"
#include "common/program.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kProperty[] = L"PROP_OLK";

void Append(std::wstring& list, const std::wstring& entry) {
    if (!list.empty()) list += L", ";
    list += entry;
}

std::wstring Listed(size_t OutsideReference::*count) {
    std::wstring list;
    for (const OutsideReference& entry : OutsideReferences())
        if (entry.*count != 0) Append(list, entry.description + L": " + std::to_wstring(entry.*count));
    return list;
}

std::wstring PropertyOf(const Frame& frame) {
    const HANDLE value = frame.Handle() == nullptr ? nullptr : GetPropW(frame.Handle(), kProperty);
    if (value == nullptr) return {};
    wchar_t text[32];
    std::swprintf(text, 32, L"0x%llX", static_cast<unsigned long long>(reinterpret_cast<ULONG_PTR>(value)));
    return DecimalHandle(frame.Handle()) + L"=" + text;
}

struct Search {
    HMODULE module;
    std::wstring found;
};

BOOL CALLBACK NoteWindow(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    if (reinterpret_cast<HMODULE>(GetClassLongPtrW(window, GCLP_HMODULE)) == search.module) {
        wchar_t name[64] = L"";
        GetClassNameW(window, name, 64);
        Append(search.found, name);
    }
    return TRUE;
}

BOOL CALLBACK NoteTop(HWND window, LPARAM parameter) {
    NoteWindow(window, parameter);
    EnumChildWindows(window, NoteWindow, parameter);
    return TRUE;
}

// Address ranges of unloaded libraries, and whether one has been called since. Wine ignores the access violation in a
// message hook, so a vectored handler records it.
std::vector<MODULEINFO> g_unloaded;
bool g_calledUnloaded = false;

LONG CALLBACK NoteCall(EXCEPTION_POINTERS* exception) {
    const auto* const address = static_cast<const char*>(exception->ExceptionRecord->ExceptionAddress);
    for (const MODULEINFO& module : g_unloaded) {
        const auto* const base = static_cast<const char*>(module.lpBaseOfDll);
        if (address >= base && address < base + module.SizeOfImage) g_calledUnloaded = true;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

std::wstring OrNone(const std::wstring& text) { return text.empty() ? L"none" : text; }

std::wstring ExitReport::References() { return Listed(&OutsideReference::references); }

std::wstring ExitReport::Sinks() { return Listed(&OutsideReference::sinks); }

std::wstring ExitReport::Properties(const Outlook& outlook) {
    std::wstring list;
    const auto note = [&](const Frame& frame) {
        const std::wstring property = PropertyOf(frame);
        if (!property.empty()) Append(list, property);
    };
    for (const auto& explorer : outlook.OpenExplorers()) note(*explorer);
    for (const auto& inspector : outlook.OpenInspectors()) note(*inspector);
    return list;
}

std::wstring ExitReport::WindowsOf(const Addin& addin) {
    Search search{addin.Module(), {}};
    if (search.module == nullptr) return {};
    EnumThreadWindows(GetCurrentThreadId(), NoteTop, reinterpret_cast<LPARAM>(&search));
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;)
        if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId())
            NoteWindow(window, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::wstring ExitReport::UnloadAnswer(HMODULE library) {
    if (library == nullptr) return L"not loaded";
    using Function = HRESULT(WINAPI*)();
    const auto function =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow")));
    if (function == nullptr) return L"not exported";
    const HRESULT answer = function();
    if (answer == S_OK) return L"S_OK";
    return answer == S_FALSE ? L"S_FALSE" : ResultText(answer);
}

void ExitReport::NoteWindowEnd(const Frame& frame) {
    const std::wstring property = PropertyOf(frame);
    if (property.empty()) return;
    Say(L"PROP_OLK left on " + frame.Name());
    leftProperties_.push_back(property);
}

void ExitReport::Print(const Outlook& outlook) const {
    Say(L"references: " + OrNone(References()));
    Say(L"sinks: " + OrNone(Sinks()));
    std::wstring properties = Properties(outlook);
    for (const std::wstring& property : leftProperties_) Append(properties, property);
    Say(L"PROP_OLK: " + OrNone(properties));
    Say(L"property readers: " + (CountedReader::Alive() == 0 ? L"none" : std::to_wstring(CountedReader::Alive())));
}

bool ExitReport::PrintUnload(Outlook& outlook) const {
    std::vector<std::pair<const Addin*, MODULEINFO>> unloadable;
    for (const auto& addin : outlook.Addins().Addins()) {
        const HMODULE library = addin->Module();
        if (library == nullptr) continue;
        Say(L"windows of " + addin->ProgId() + L": " + OrNone(WindowsOf(*addin)));
        const std::wstring answer = UnloadAnswer(library);
        Say(L"DllCanUnloadNow: " + answer + L" (" + addin->ProgId() + L")");
        MODULEINFO place{};
        GetModuleInformation(GetCurrentProcess(), library, &place, sizeof place);
        if (answer == L"S_OK") unloadable.emplace_back(addin.get(), place);
    }
    if (unloadable.empty()) return true;
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);  // the first call may only mark the library
    for (const auto& [addin, place] : unloadable) {
        const bool gone = addin->Module() == nullptr;
        Say(L"library of " + addin->ProgId() + L": " + (gone ? L"unloaded" : L"still loaded"));
        if (gone) g_unloaded.push_back(place);
    }
    void* const handler = AddVectoredExceptionHandler(1, NoteCall);
    PostThreadMessageW(GetCurrentThreadId(), WM_KEYDOWN, VK_SHIFT, 0);
    for (int i = 0; i < 5; ++i) WaitAndPump(nullptr, 10);
    RemoveVectoredExceptionHandler(handler);
    Say(g_calledUnloaded ? L"hooks: an unloaded library was called" : L"hooks: none called after the unload");
    return !g_calledUnloaded;
}

}  // namespace beacon::standin
