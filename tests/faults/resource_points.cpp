#include "tests/faults/resource_points.h"

#include <windows.h>

#include <oleauto.h>
#include <olectl.h>
#include <winternl.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <set>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "com/error.h"
#include "com/text.h"
#include "tests/fakes/imports.h"

namespace beacon::standin {
namespace {

struct Library {
    const wchar_t* name;
    const char* base;
    ULONG size;  // 0 while it is not loaded
} g_libraries[] = {{L"BeaconOLKAdapter.dll", nullptr, 0}, {L"BeaconMapiProp.dll", nullptr, 0}};

DWORD g_thread = 0;
ResourcePlan g_plan;
unsigned g_counts[2];
bool g_recordsPaths = false;
std::vector<unsigned> g_firsts[2];
std::set<std::wstring> g_paths;
std::wstring g_met;
bool g_thrown = false;  // by one of the DLLs, and not caught by one yet
bool g_exceptionLeft = false;

/// A function that takes the place of an imported one.
struct Function {
    std::string_view name;
    void* replacement = nullptr;
    void* original = nullptr;
    Resource kind = Resource::Memory;
    intptr_t refusal = 0;  // the result of a refused request
};

std::vector<Function*> g_functions;  // all of them

bool IsRefused(const Function& function) {
    if (GetCurrentThreadId() != g_thread) return false;
    const auto kind = static_cast<size_t>(function.kind);
    const unsigned number = ++g_counts[kind];
    if (g_recordsPaths && ResourcePoints::IsNewPath(com::FromUtf8(function.name))) g_firsts[kind].push_back(number);
    if (g_plan.first == 0 || function.kind != g_plan.kind || number < g_plan.first ||
        number - g_plan.first >= g_plan.count)
        return false;
    if (number == g_plan.first) g_met = com::FromUtf8(function.name) + ResourcePoints::Stack();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    errno = ENOMEM;
    return true;
}

/// Defines the replacement of functions with this calling convention. The tag tells two functions of one type apart.
// NOLINTBEGIN(bugprone-macro-parentheses): the name of a template cannot have them
#define DEFINE_REPLACEMENT(NAME, CONVENTION)                                                                 \
    template <class Tag, class Result, class... Arguments>                                                   \
    struct NAME {                                                                                            \
        static Result CONVENTION Call(Arguments... arguments) {                                              \
            if (!IsRefused(function))                                                                        \
                return reinterpret_cast<Result(CONVENTION*)(Arguments...)>(function.original)(arguments...); \
            if constexpr (std::is_pointer_v<Result>)                                                         \
                return reinterpret_cast<Result>(function.refusal);                                           \
            else                                                                                             \
                return static_cast<Result>(function.refusal);                                                \
        }                                                                                                    \
        static inline Function function;                                                                     \
    };                                                                                                       \
    template <class Tag, class Result, class... Arguments>                                                   \
    Function* Replaceable(Result(CONVENTION*)(Arguments...), const char* name) {                             \
        using Made = NAME<Tag, Result, Arguments...>;                                                        \
        Made::function = {name, reinterpret_cast<void*>(&Made::Call)};                                       \
        return &Made::function;                                                                              \
    }
// NOLINTEND(bugprone-macro-parentheses)
DEFINE_REPLACEMENT(Cdecl, __cdecl)
#ifndef _WIN64
DEFINE_REPLACEMENT(Stdcall, __stdcall)
#endif

#ifdef _WIN64
constexpr DWORD kThrow = 0x20474343;  // what the run-time raises for a C++ exception

extern Function g_raise;
extern Function g_unwind;

// The module whose handler catches an exception unwinds the stack.
void WINAPI Raise(DWORD code, DWORD flags, DWORD count, const ULONG_PTR* arguments) {
    if (code == kThrow && GetCurrentThreadId() == g_thread) g_thrown = true;
    reinterpret_cast<decltype(&RaiseException)>(g_raise.original)(code, flags, count, arguments);
}

void WINAPI Unwind(PVOID frame, PVOID target, PEXCEPTION_RECORD record, PVOID value, PCONTEXT context,
                   PUNWIND_HISTORY_TABLE table) {
    if (GetCurrentThreadId() == g_thread) g_thrown = false;
    reinterpret_cast<decltype(&RtlUnwindEx)>(g_unwind.original)(frame, target, record, value, context, table);
}

void WINAPI UnwindOutside(PVOID frame, PVOID target, PEXCEPTION_RECORD record, PVOID value, PCONTEXT context,
                          PUNWIND_HISTORY_TABLE table) {
    if (GetCurrentThreadId() == g_thread && g_thrown) g_exceptionLeft = true;
    Unwind(frame, target, record, value, context, table);
}

Function g_raise{"RaiseException", reinterpret_cast<void*>(&Raise)};
Function g_unwind{"RtlUnwindEx", reinterpret_cast<void*>(&Unwind)};
#endif

#define NAMED(function) Replaceable<decltype([] {})>(&(function), #function)

/// Requests of one kind that return the same when they are refused.
const struct {
    Resource kind;
    intptr_t refusal;
    std::vector<Function*> functions;
} kGroups[] = {
    {Resource::Memory,
     0,
     {NAMED(malloc), NAMED(calloc), NAMED(realloc), NAMED(SysAllocString), NAMED(SysAllocStringLen),
      NAMED(SysAllocStringByteLen), NAMED(CoTaskMemAlloc), NAMED(GlobalAlloc), NAMED(GlobalLock), NAMED(LocalAlloc),
      NAMED(HeapAlloc), NAMED(VirtualAlloc), NAMED(FormatMessageW), NAMED(TlsSetValue)}},
    {Resource::Memory, -1, {NAMED(TlsAlloc)}},
    {Resource::Memory,
     E_OUTOFMEMORY,
     {NAMED(CreateErrorInfo), NAMED(CreateStreamOnHGlobal), NAMED(CoCreateInstance), NAMED(CLSIDFromProgID),
      NAMED(GetActiveObject), NAMED(DispInvoke), NAMED(LoadTypeLibEx), NAMED(OleLoadPicture), NAMED(VarBstrFromDate),
      NAMED(VariantChangeTypeEx), NAMED(VariantCopy), NAMED(VariantCopyInd)}},
    {Resource::System,
     0,
     {NAMED(LoadLibraryW),
      NAMED(RegisterClassW),
      NAMED(RegisterWindowMessageA),
      NAMED(CreateWindowExW),
      NAMED(SetPropA),
      NAMED(SetTimer),
      NAMED(SetWindowsHookExA),
      NAMED(CreateEventW),
      NAMED(CreateSemaphoreA),
      NAMED(ReadFile),
      NAMED(WriteFile),
      NAMED(CopyFileW),
      NAMED(DeleteFileW),
      NAMED(RegisterClipboardFormatA),
      NAMED(OpenClipboard),
      NAMED(EmptyClipboard),
      NAMED(GetClipboardData),
      NAMED(SetClipboardData),
      NAMED(GetDC),
      NAMED(CreateCompatibleDC),
      NAMED(CreateBitmap),
      NAMED(CreateHalftonePalette),
      NAMED(CopyEnhMetaFileW),
      NAMED(SelectObject),
      NAMED(GetDIBits),
      NAMED(BitBlt)}},
    {Resource::System, -1, {NAMED(CreateFileA), NAMED(CreateFileW), NAMED(FindFirstFileW)}},
    {Resource::System,
     ERROR_NO_SYSTEM_RESOURCES,
     {NAMED(RegOpenKeyA), NAMED(RegOpenKeyExW), NAMED(RegCreateKeyA), NAMED(RegCreateKeyExW), NAMED(RegQueryValueExA),
      NAMED(RegQueryValueExW), NAMED(RegSetValueExA), NAMED(RegSetValueExW)}},
};

void Replace(HMODULE library, Function& function) {
    if (void* const original = test::ReplaceImport(library, function.name, function.replacement))
        function.original = original;
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
    for (Library& ours : g_libraries) {
        if (_wcsicmp(library->name->Buffer, ours.name) != 0) continue;
        ours.base = reinterpret_cast<const char*>(library->base);
        ours.size = reason == kLoaded ? library->size : 0;
        if (reason != kLoaded) continue;
        for (Function* const function : g_functions) Replace(library->base, *function);
    }
}

}  // namespace

void ResourcePoints::Install() {
    g_thread = GetCurrentThreadId();
    for (const auto& group : kGroups)
        for (Function* const function : group.functions) {
            function->kind = group.kind;
            function->refusal = group.refusal;
            g_functions.push_back(function);
        }
    using Register = LONG(NTAPI*)(ULONG, void(CALLBACK*)(ULONG, const LoadedLibrary*, void*), void*, void**);
    void* const found =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "LdrRegisterDllNotification"));
    void* cookie = nullptr;
    com::Check(found == nullptr ? E_NOTIMPL : reinterpret_cast<Register>(found)(0, OnLibrary, nullptr, &cookie));
#ifdef _WIN64
    g_functions.insert(g_functions.end(), {&g_raise, &g_unwind});
    static Function outside{"RtlUnwindEx", reinterpret_cast<void*>(&UnwindOutside)};
    Replace(GetModuleHandleW(nullptr), outside);
#endif
}

void ResourcePoints::Start(const ResourcePlan& plan, bool recordsPaths) {
    g_plan = plan;
    g_recordsPaths = recordsPaths;
    g_counts[0] = g_counts[1] = 0;
    for (std::vector<unsigned>& firsts : g_firsts) firsts.clear();
    g_met.clear();
    g_thrown = g_exceptionLeft = false;
}

void ResourcePoints::Stop() {
    g_plan.first = 0;
    g_recordsPaths = false;
}

unsigned ResourcePoints::Count(Resource kind) { return g_counts[static_cast<size_t>(kind)]; }

const std::vector<unsigned>& ResourcePoints::Firsts(Resource kind) { return g_firsts[static_cast<size_t>(kind)]; }

bool ResourcePoints::IsNewPath(const std::wstring& name) { return g_paths.insert(name + Stack()).second; }

const std::wstring& ResourcePoints::Met() { return g_met; }

bool ResourcePoints::ExceptionLeft() { return g_exceptionLeft || g_thrown; }

std::wstring ResourcePoints::Stack() {
    void* frames[40];
    std::wstring text;
    const USHORT count = RtlCaptureStackBackTrace(0, std::size(frames), frames, nullptr);
    for (void* const frame : std::span(frames, count))
        for (const Library& library : g_libraries) {
            const auto offset = static_cast<size_t>(static_cast<char*>(frame) - library.base);
            if (offset >= library.size) continue;
            wchar_t digits[20];
            _ultow(static_cast<unsigned long>(offset), digits, 16);
            text += L" " + std::wstring(library.name) + L"+0x" + digits;
        }
    return text;
}

}  // namespace beacon::standin
