// What the C++ run-time keeps for itself, in a DLL that may be loaded and unloaded any number of times: MinGW's own
// gives back neither handles nor memory nor indexes of thread storage.
#include <windows.h>

#ifdef __GLIBCXX__

#include <cxxabi.h>

#include <cstdlib>
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

/// The guard of a local static: whether it is made is asked for in the first byte by the compiler's own code, too; the
/// second half holds the thread that is making it, 0 for none.
struct Guard {
    volatile LONG made;
    volatile LONG maker;
};

Guard* GuardOf(abi::__guard* guard) { return reinterpret_cast<Guard*>(guard); }

}  // namespace

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept { return states.OfThisThread(); }

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept { return states.OfThisThread(); }

extern "C" int __cxxabiv1::__cxa_guard_acquire(__guard* guard) {
    const auto self = static_cast<LONG>(GetCurrentThreadId());
    for (;; Sleep(0)) {
        const LONG maker = InterlockedCompareExchange(&GuardOf(guard)->maker, self, 0);
        if (maker == self) throw __gnu_cxx::recursive_init_error();
        if (maker != 0) continue;
        if (GuardOf(guard)->made == 0) return 1;
        __cxa_guard_abort(guard);
        return 0;
    }
}

extern "C" void __cxxabiv1::__cxa_guard_release(__guard* guard) noexcept {
    InterlockedExchange(&GuardOf(guard)->made, 1);
    __cxa_guard_abort(guard);
}

extern "C" void __cxxabiv1::__cxa_guard_abort(__guard* guard) noexcept {
    InterlockedExchange(&GuardOf(guard)->maker, 0);
}

#endif
