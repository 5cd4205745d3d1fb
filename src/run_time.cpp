// What the C++ run-time keeps for itself, in a DLL that may be loaded and unloaded any number of times: MinGW's own
// gives back neither handles nor memory nor indexes of thread storage.
#include <windows.h>

#ifdef __GLIBCXX__

#include <cxxabi.h>

#include <cstdlib>
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
        for (const HANDLE semaphore : all_) {
            if (semaphore != nullptr) CloseHandle(semaphore);
        }
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

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept { return states.OfThisThread(); }

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept { return states.OfThisThread(); }

#endif
