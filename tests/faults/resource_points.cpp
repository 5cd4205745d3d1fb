#include "tests/faults/resource_points.h"

#include <windows.h>

#include <oleauto.h>
#include <psapi.h>
#include <winternl.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <type_traits>

#include "com/error.h"
#include "com/text.h"

namespace beacon::standin {
namespace {

constexpr const wchar_t* kLibraries[] = {L"BeaconOLKAdapter.dll", L"BeaconMapiProp.dll"};

DWORD g_thread = 0;
ResourcePlan g_plan;
unsigned g_counts[2];
std::wstring g_met;
bool g_thrown = false;  // by one of the DLLs, and not caught by one yet
bool g_exceptionLeft = false;

bool IsRefused(Resource kind, const char* function) {
    if (GetCurrentThreadId() != g_thread) return false;
    const unsigned number = ++g_counts[static_cast<size_t>(kind)];
    if (g_plan.first == 0 || kind != g_plan.kind || number < g_plan.first || number - g_plan.first >= g_plan.count)
        return false;
    if (number == g_plan.first) g_met = com::FromUtf8(function) + ResourcePoints::Stack();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    errno = ENOMEM;
    return true;
}

/// A function that takes the place of an imported one.
struct Row {
    std::string_view name;
    void* replacement;
    void** original;
};

/// Defines the replacement of a function with this calling convention. It returns kFailure when the request is refused.
/// The tag tells two functions of one type apart.
#define DEFINE_REPLACEMENT(NAME, CONVENTION)                                                        \
    template <Resource kKind, intptr_t kFailure, class Tag, class Result, class... Arguments>       \
    struct NAME {                                                                                   \
        static Result CONVENTION Call(Arguments... arguments) {                                     \
            if (!IsRefused(kKind, name))                                                            \
                return reinterpret_cast<Result(CONVENTION*)(Arguments...)>(original)(arguments...); \
            if constexpr (std::is_pointer_v<Result>)                                                \
                return reinterpret_cast<Result>(kFailure);                                          \
            else                                                                                    \
                return static_cast<Result>(kFailure);                                               \
        }                                                                                           \
        static inline const char* name = nullptr;                                                   \
        static inline void* original = nullptr;                                                     \
    };                                                                                              \
    template <Resource kKind, intptr_t kFailure, class Tag, class Result, class... Arguments>       \
    Row MakeRow(Result(CONVENTION*)(Arguments...), const char* name) {                              \
        using Made = NAME<kKind, kFailure, Tag, Result, Arguments...>;                              \
        Made::name = name;                                                                          \
        return {name, reinterpret_cast<void*>(&Made::Call), &Made::original};                       \
    }
DEFINE_REPLACEMENT(Cdecl, __cdecl)
#ifndef _WIN64
DEFINE_REPLACEMENT(Stdcall, __stdcall)
#endif

#ifdef _WIN64
void* g_raise = nullptr;
void* g_unwind = nullptr;

constexpr DWORD kThrow = 0x20474343;  // what the run-time raises for a C++ exception

// The module whose handler catches an exception unwinds the stack.
void WINAPI Raise(DWORD code, DWORD flags, DWORD count, const ULONG_PTR* arguments) {
    if (code == kThrow && GetCurrentThreadId() == g_thread) g_thrown = true;
    reinterpret_cast<decltype(&RaiseException)>(g_raise)(code, flags, count, arguments);
}

void WINAPI Unwind(PVOID frame, PVOID target, PEXCEPTION_RECORD record, PVOID value, PCONTEXT context,
                   PUNWIND_HISTORY_TABLE table) {
    if (GetCurrentThreadId() == g_thread) g_thrown = false;
    reinterpret_cast<decltype(&RtlUnwindEx)>(g_unwind)(frame, target, record, value, context, table);
}

void WINAPI UnwindOutside(PVOID frame, PVOID target, PEXCEPTION_RECORD record, PVOID value, PCONTEXT context,
                          PUNWIND_HISTORY_TABLE table) {
    if (GetCurrentThreadId() == g_thread && g_thrown) g_exceptionLeft = true;
    Unwind(frame, target, record, value, context, table);
}
#endif

#define ROW(kind, function, failure) \
    MakeRow<Resource::kind, static_cast<intptr_t>(failure), decltype([] {})>(&function, #function)

const Row kRows[] = {
    ROW(Memory, malloc, 0),
    ROW(Memory, calloc, 0),
    ROW(Memory, realloc, 0),
    ROW(Memory, SysAllocString, 0),
    ROW(Memory, SysAllocStringLen, 0),
    ROW(Memory, SysAllocStringByteLen, 0),
    ROW(Memory, CoTaskMemAlloc, 0),
    ROW(Memory, GlobalAlloc, 0),
    ROW(Memory, GlobalLock, 0),
    ROW(Memory, LocalAlloc, 0),
    ROW(Memory, HeapAlloc, 0),
    ROW(Memory, VirtualAlloc, 0),
    ROW(Memory, FormatMessageW, 0),
    ROW(Memory, TlsAlloc, TLS_OUT_OF_INDEXES),
    ROW(Memory, TlsSetValue, FALSE),
    ROW(Memory, CreateErrorInfo, E_OUTOFMEMORY),
    ROW(Memory, CreateStreamOnHGlobal, E_OUTOFMEMORY),
    ROW(Memory, CoCreateInstance, E_OUTOFMEMORY),
    ROW(Memory, CLSIDFromProgID, E_OUTOFMEMORY),
    ROW(Memory, GetActiveObject, E_OUTOFMEMORY),
    ROW(Memory, DispInvoke, E_OUTOFMEMORY),
    ROW(Memory, LoadTypeLibEx, E_OUTOFMEMORY),
    ROW(Memory, OleLoadPicture, E_OUTOFMEMORY),
    ROW(Memory, VarBstrFromDate, E_OUTOFMEMORY),
    ROW(Memory, VariantChangeTypeEx, E_OUTOFMEMORY),
    ROW(Memory, VariantCopy, E_OUTOFMEMORY),
    ROW(Memory, VariantCopyInd, E_OUTOFMEMORY),
    ROW(System, LoadLibraryW, 0),
    ROW(System, RegisterClassW, 0),
    ROW(System, RegisterWindowMessageA, 0),
    ROW(System, RegisterClipboardFormatA, 0),
    ROW(System, CreateWindowExW, 0),
    ROW(System, SetPropA, FALSE),
    ROW(System, SetTimer, 0),
    ROW(System, SetWindowsHookExA, 0),
    ROW(System, OpenClipboard, FALSE),
    ROW(System, EmptyClipboard, FALSE),
    ROW(System, GetClipboardData, 0),
    ROW(System, SetClipboardData, 0),
    ROW(System, GetDC, 0),
    ROW(System, CreateCompatibleDC, 0),
    ROW(System, CreateBitmap, 0),
    ROW(System, CreateHalftonePalette, 0),
    ROW(System, CopyEnhMetaFileW, 0),
    ROW(System, SelectObject, 0),
    ROW(System, GetDIBits, 0),
    ROW(System, BitBlt, FALSE),
    ROW(System, CreateEventW, 0),
    ROW(System, CreateSemaphoreA, 0),
    ROW(System, CreateFileA, -1),
    ROW(System, CreateFileW, -1),
    ROW(System, ReadFile, FALSE),
    ROW(System, WriteFile, FALSE),
    ROW(System, CopyFileW, FALSE),
    ROW(System, DeleteFileW, FALSE),
    ROW(System, FindFirstFileW, -1),
    ROW(System, RegOpenKeyA, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegOpenKeyExW, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegCreateKeyA, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegCreateKeyExW, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegQueryValueExA, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegQueryValueExW, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegSetValueExA, ERROR_NO_SYSTEM_RESOURCES),
    ROW(System, RegSetValueExW, ERROR_NO_SYSTEM_RESOURCES),
#ifdef _WIN64
    {"RaiseException", reinterpret_cast<void*>(&Raise), &g_raise},
    {"RtlUnwindEx", reinterpret_cast<void*>(&Unwind), &g_unwind},
#endif
};

void Replace(HMODULE library, const Row& row) {
    auto* const base = reinterpret_cast<char*>(library);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); from->FirstThunk != 0; ++from) {
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
             name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            if (row.name != reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name)
                continue;
            DWORD protection = 0;
            VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection);
            *row.original = reinterpret_cast<void*>(address->u1.Function);
            address->u1.Function = reinterpret_cast<uintptr_t>(row.replacement);
            VirtualProtect(address, sizeof *address, protection, &protection);
        }
    }
}

/// What the system tells of a library before it runs any of its code.
struct LoadedLibrary {
    ULONG flags;
    const UNICODE_STRING* path;
    const UNICODE_STRING* name;
    HMODULE base;
    ULONG size;
};

void CALLBACK OnLibrary(ULONG reason, const LoadedLibrary* library, void*) {
    constexpr ULONG kLoaded = 1;
    if (reason != kLoaded) return;
    for (const wchar_t* const name : kLibraries)
        if (_wcsicmp(library->name->Buffer, name) == 0)
            for (const Row& row : kRows) Replace(library->base, row);
}

}  // namespace

void ResourcePoints::Install() {
    g_thread = GetCurrentThreadId();
    using Register = LONG(NTAPI*)(ULONG, void(CALLBACK*)(ULONG, const LoadedLibrary*, void*), void*, void**);
    void* const found =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "LdrRegisterDllNotification"));
    void* cookie = nullptr;
    com::Check(found == nullptr ? E_NOTIMPL : reinterpret_cast<Register>(found)(0, OnLibrary, nullptr, &cookie));
#ifdef _WIN64
    static void* ignored;
    Replace(GetModuleHandleW(nullptr), {"RtlUnwindEx", reinterpret_cast<void*>(&UnwindOutside), &ignored});
#endif
}

void ResourcePoints::Start(const ResourcePlan& plan) {
    g_plan = plan;
    g_counts[0] = g_counts[1] = 0;
    g_met.clear();
    g_thrown = g_exceptionLeft = false;
}

void ResourcePoints::Stop() { g_plan.first = 0; }

unsigned ResourcePoints::Count(Resource kind) { return g_counts[static_cast<size_t>(kind)]; }

const std::wstring& ResourcePoints::Met() { return g_met; }

bool ResourcePoints::ExceptionLeft() { return g_exceptionLeft || g_thrown; }

std::wstring ResourcePoints::Stack() {
    void* frames[40];
    std::wstring text;
    const USHORT count = RtlCaptureStackBackTrace(0, std::size(frames), frames, nullptr);
    for (const wchar_t* const name : kLibraries) {
        MODULEINFO place{};
        const HMODULE library = GetModuleHandleW(name);
        if (library == nullptr || !GetModuleInformation(GetCurrentProcess(), library, &place, sizeof place)) continue;
        for (USHORT i = 0; i < count; ++i) {
            const auto offset = reinterpret_cast<uintptr_t>(frames[i]) - reinterpret_cast<uintptr_t>(library);
            if (offset >= place.SizeOfImage) continue;
            wchar_t hexadecimal[20];
            _ultow(static_cast<unsigned long>(offset), hexadecimal, 16);
            text += L" " + std::wstring(name) + L"+0x" + hexadecimal;
        }
    }
    return text;
}

}  // namespace beacon::standin
