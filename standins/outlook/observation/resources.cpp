#include "outlook/observation/resources.h"

#include <windows.h>

#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace beacon::standin {
namespace {

// An entry of the table of GDI handles, to which the process environment block points; neither is in the headers.
struct Entry {
    std::uint64_t object;
    std::uint16_t owner[2];
    std::uint16_t generation;
    std::uint8_t type;  // 0: free
    std::uint8_t flags;
    std::uint64_t user;
};

constexpr size_t kEntries = 0x4000;
constexpr size_t kTable = sizeof(void*) == 8 ? 0xF8 : 0x94;

// Wine does not implement GetProcessHandleCount.
size_t Handles() {
    std::vector<char> buffer(1 << 16);
    constexpr auto kMismatch = static_cast<NTSTATUS>(0xC0000004);
    NTSTATUS status = kMismatch;
    while ((status = NtQuerySystemInformation(SystemHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()),
                                              nullptr)) == kMismatch)
        buffer.resize(2 * buffer.size());
    if (status != 0) return 0;
    const auto* const all = reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(buffer.data());
    return static_cast<size_t>(std::count_if(
        all->Handle, all->Handle + all->Count,
        [own = GetCurrentProcessId()](const SYSTEM_HANDLE_ENTRY& entry) { return entry.OwnerPid == own; }));
}

size_t HeapInUse() {
    std::array<HANDLE, 64> heaps;
    const DWORD count = std::min<DWORD>(GetProcessHeaps(heaps.size(), heaps.data()), heaps.size());
    size_t used = 0;
    for (const HANDLE heap : std::span(heaps).first(count)) {
        HeapLock(heap);
        for (PROCESS_HEAP_ENTRY entry{}; HeapWalk(heap, &entry) != FALSE;)
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) used += entry.cbData;
        HeapUnlock(heap);
    }
    return used;
}

BOOL CALLBACK Count(HWND window, LPARAM count) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) ++*reinterpret_cast<size_t*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    Count(window, count);
    EnumChildWindows(window, Count, count);
    return TRUE;
}

size_t CountWindows() {
    size_t count = 0;
    const auto parameter = reinterpret_cast<LPARAM>(&count);
    EnumWindows(CountWithChildren, parameter);
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;)
        CountWithChildren(window, parameter);
    return count;
}

}  // namespace

size_t Resources::GdiObjects() {
    // Wine does not implement this function.
    if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); count != 0) return count;
    const auto* const process = reinterpret_cast<const char*>(NtCurrentTeb()->ProcessEnvironmentBlock);
    const auto* const table = *reinterpret_cast<const Entry* const*>(process + kTable);
    if (table == nullptr) return 0;
    return static_cast<size_t>(
        std::count_if(table, table + kEntries, [](const Entry& entry) { return entry.type != 0; }));
}

Resources Resources::Now() {
    Resources now;
    PROCESS_MEMORY_COUNTERS memory{};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory) != FALSE)
        now.memory = memory.PagefileUsage / 1024;
    now.heap = HeapInUse() / 1024;
    now.handles = Handles();
    now.gdiObjects = GdiObjects();
    now.windows = CountWindows();
    return now;
}

std::wstring Resources::Text() const {
    return L"memory KB " + std::to_wstring(memory) + L", heap KB " + std::to_wstring(heap) + L", handles " +
           std::to_wstring(handles) + L", GDI objects " + std::to_wstring(gdiObjects) + L", windows " +
           std::to_wstring(windows);
}

}  // namespace beacon::standin
