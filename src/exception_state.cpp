// Where the C++ run-time keeps the exceptions that a thread is handling, for a DLL that may be unloaded.
#include <windows.h>

#ifdef __GLIBCXX__

#include <cxxabi.h>

#include <cstdlib>
#include <utility>

/// As the run-time knows it.
struct __cxxabiv1::__cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

namespace {

/// MinGW's own keeping takes one of the system's 1,088 indexes of thread storage at the first exception, and does not
/// give it back when the DLL is unloaded. This does, and frees what its threads have got.
class ThreadStates {
public:
    ThreadStates() : index_(TlsAlloc()) {}

    ThreadStates(const ThreadStates&) = delete;
    ThreadStates& operator=(const ThreadStates&) = delete;

    ~ThreadStates() {
        TlsFree(index_);
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

    // Without memory there is nothing left but the end.
    State* Make() noexcept {
        auto* const state = static_cast<State*>(std::calloc(1, sizeof(State)));
        if (state == nullptr || !TlsSetValue(index_, state)) std::abort();
        void* volatile* const first = reinterpret_cast<void* volatile*>(&first_);
        do state->next = first_;
        while (InterlockedCompareExchangePointer(first, state, state->next) != state->next);
        return state;
    }

    const DWORD index_;
    State* first_ = nullptr;
};

// Before all other objects of the DLL, and after them.
[[gnu::init_priority(101)]] ThreadStates states;

}  // namespace

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept { return states.OfThisThread(); }

extern "C" abi::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept { return states.OfThisThread(); }

#endif
