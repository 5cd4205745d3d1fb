// Replaces parts of MinGW's static run-time that would end Outlook when memory is short, or when another program has
// brought its own unwinder into the process.
#include <windows.h>

#include <cxxabi.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>

/// As the run-time declares it.
struct __cxxabiv1::__cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

namespace {

constexpr size_t kHeaderRoom = 256;  // the run-time's header, 128 bytes at most, ends where the exception begins

/// Memory for one exception that is thrown when there is no other.
struct alignas(16) ReservedException {
    unsigned char memory[1024];
};

ReservedException reserve[32];
volatile LONG isTaken[std::size(reserve)];

void* TakeFromReserve(size_t size) noexcept {
    if (size > sizeof *reserve) return nullptr;
    for (size_t i = 0; i < std::size(reserve); ++i)
        if (InterlockedExchange(&isTaken[i], 1) == 0) return &reserve[i];
    return nullptr;
}

/// The exceptions that a thread is handling.
struct ThreadState {
    volatile LONG thread;
    abi::__cxa_eh_globals globals;
};

ThreadState states[64];  // the DLLs work on one thread each; every other that ever throws takes a place

abi::__cxa_eh_globals* StateOfThisThread() noexcept {
    const auto thread = static_cast<LONG>(GetCurrentThreadId());
    for (ThreadState& state : states)
        if (state.thread == thread || InterlockedCompareExchange(&state.thread, thread, 0) == 0) return &state.globals;
    // No place is left: take that of a thread without exceptions, which has most likely ended.
    ThreadState* idle = states;
    while (idle + 1 != std::end(states) &&
           (idle->globals.caughtExceptions != nullptr || idle->globals.uncaughtExceptions != 0))
        ++idle;
    InterlockedExchange(&idle->thread, thread);
    return &idle->globals;
}

}  // namespace

extern "C" {

// The run-time's own reserve is allocated when the DLL is loaded, and never freed.
void* __cxxabiv1::__cxa_allocate_exception(size_t size) noexcept {
    void* memory = std::malloc(kHeaderRoom + size);
    if (memory == nullptr) memory = TakeFromReserve(kHeaderRoom + size);
    if (memory == nullptr) std::terminate();
    std::memset(memory, 0, kHeaderRoom);
    return static_cast<unsigned char*>(memory) + kHeaderRoom;
}

void __cxxabiv1::__cxa_free_exception(void* exception) noexcept {
    auto* const memory = reinterpret_cast<ReservedException*>(static_cast<unsigned char*>(exception) - kHeaderRoom);
    if (memory >= reserve && memory < std::end(reserve))
        InterlockedExchange(&isTaken[memory - reserve], 0);
    else
        std::free(memory);
}

// The run-time's own state is allocated at a thread's first exception, and aborts the process when that fails.
abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept { return StateOfThisThread(); }

abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept { return StateOfThisThread(); }
}

#ifndef _WIN64

/// At its start, the run-time registers this DLL's unwind tables with a shared unwinder if another program has loaded
/// one. This DLL's own unwinder would then not find them, and the first exception would terminate the process.
static HMODULE WINAPI FindModule(const char* name) {
    if (name == nullptr) return GetModuleHandleW(nullptr);
    if (std::strcmp(name, "libgcc_s_dw2-1.dll") == 0) return nullptr;
    wchar_t wide[MAX_PATH];
    return MultiByteToWideChar(CP_ACP, 0, name, -1, wide, MAX_PATH) == 0 ? nullptr : GetModuleHandleW(wide);
}

extern "C" {
extern decltype(&FindModule) const importedGetModuleHandle asm("__imp__GetModuleHandleA@4");
decltype(&FindModule) const importedGetModuleHandle = &FindModule;
}

#endif
