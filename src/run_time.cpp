// What the C++ run-time does by itself in a DLL that others' process loads and unloads any number of times: MinGW's own
// gives back neither handles nor memory nor indexes of thread storage, and lets itself be confused with another's.
#include <windows.h>

#ifdef __GLIBCXX__

#include <cxxabi.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

/// The run-time's own, and in none of its headers: frees what it took at its start for exceptions without memory.
namespace __gnu_cxx {
void __freeres();
}

/// As the run-time knows it.
struct __cxxabiv1::__cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

namespace {

/// The run-time's locks: each makes a semaphore when it is used first, and none closes it. Some are used before this
/// is initialised, and after its end, where no other thread can hold them.
class Semaphores {
public:
    HANDLE Make(SECURITY_ATTRIBUTES* security, LONG initial, LONG most) noexcept {
        const HANDLE semaphore = CreateSemaphoreA(security, initial, most, nullptr);
        const LONG made = InterlockedIncrement(&made_);
        if (made <= static_cast<LONG>(std::size(all_))) all_[made - 1] = semaphore;
        return semaphore;
    }

    constexpr Semaphores() = default;
    Semaphores(const Semaphores&) = delete;
    Semaphores& operator=(const Semaphores&) = delete;

    ~Semaphores() {
        for (const HANDLE semaphore : all_)
            if (semaphore != nullptr) CloseHandle(semaphore);
    }

private:
    HANDLE all_[8]{};  // two are made, of 32 bits three
    volatile LONG made_ = 0;
};

constinit Semaphores semaphores;

HANDLE WINAPI MakeSemaphore(SECURITY_ATTRIBUTES* security, LONG initial, LONG most, const wchar_t* /*none is named*/) {
    return semaphores.Make(security, initial, most);
}

/// The exceptions that each thread is handling. The system has 1,088 indexes of thread storage; this takes one, and
/// gives it back with what the threads have got.
class ThreadStates {
public:
    ThreadStates() : index_(TlsAlloc()) {}

    ThreadStates(const ThreadStates&) = delete;
    ThreadStates& operator=(const ThreadStates&) = delete;

    ~ThreadStates() {
        TlsFree(index_);
        __gnu_cxx::__freeres();
        while (first_ != nullptr) std::free(std::exchange(first_, first_->next));
    }

    abi::__cxa_eh_globals* OfThisThread() noexcept {
        const DWORD error = GetLastError();
        auto* state = static_cast<State*>(TlsGetValue(index_));
        if (state == nullptr) state = Make();
        SetLastError(error);
        return &state->globals;
    }

private:
    struct State {
        abi::__cxa_eh_globals globals;
        State* next;
    };

    // A system that has no memory or index left has one for all threads: the DLL's work is on Outlook's.
    State* Make() noexcept {
        auto* const state = static_cast<State*>(std::calloc(1, sizeof(State)));
        if (state == nullptr || !TlsSetValue(index_, state)) {
            std::free(state);
            return &last_;
        }
        void* volatile* const first = reinterpret_cast<void* volatile*>(&first_);
        do state->next = first_;
        while (InterlockedCompareExchangePointer(first, state, state->next) != state->next);
        return state;
    }

    const DWORD index_;
    State* first_ = nullptr;
    State last_{};
};

// Before all other objects of the DLL, and after them.
[[gnu::init_priority(101)]] ThreadStates states;

}  // namespace

#ifdef _WIN64
#define IMPORT(name, bytes) "__imp_" name
#else
#define IMPORT(name, bytes) "__imp__" name "@" bytes
#endif

/// What the run-time calls where it says CreateSemaphoreW: the linker takes this before the system's.
extern "C" {
extern decltype(&MakeSemaphore) const importedCreateSemaphore asm(IMPORT("CreateSemaphoreW", "16"));
decltype(&MakeSemaphore) const importedCreateSemaphore = &MakeSemaphore;
}

#ifndef _WIN64

/// The run-time's start looks for the shared unwinder, which any other program's DLL may have brought into Outlook. If
/// it were found, it would get this DLL's tables, and the unwinder in this DLL, left without them, would end the
/// process at the first exception.
static HMODULE WINAPI FindModule(const char* name) {
    if (std::strcmp(name, "libgcc_s_dw2-1.dll") == 0) return nullptr;
    wchar_t wide[MAX_PATH];
    return MultiByteToWideChar(CP_ACP, 0, name, -1, wide, MAX_PATH) == 0 ? nullptr : GetModuleHandleW(wide);
}

extern "C" {
extern decltype(&FindModule) const importedGetModuleHandle asm(IMPORT("GetModuleHandleA", "4"));
decltype(&FindModule) const importedGetModuleHandle = &FindModule;
}

#endif

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept { return states.OfThisThread(); }

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept { return states.OfThisThread(); }

#endif
