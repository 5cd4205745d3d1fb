#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <utility>

/// Replacements for parts of the standard library that MinGW lacks in its win32 thread model.
namespace beacon::standin {

/// A mutex for std::scoped_lock.
class Mutex {
public:
    void lock() { AcquireSRWLockExclusive(&lock_); }

    void unlock() { ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};

struct CloseHandleDeleter {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

/// Owns a kernel handle.
using UniqueHandle = std::unique_ptr<void, CloseHandleDeleter>;

/// Runs the body, which must not throw, on a new thread. Returns the thread, or null if it cannot be created.
inline UniqueHandle StartThread(std::function<void()> body) {
    using Body = std::function<void()>;

    struct Start {
        static DWORD WINAPI Run(void* body) {
            (*std::unique_ptr<Body>(static_cast<Body*>(body)))();
            return 0;
        }
    };

    auto given = std::make_unique<Body>(std::move(body));
    UniqueHandle thread(CreateThread(nullptr, 0, &Start::Run, given.get(), 0, nullptr));
    if (thread) static_cast<void>(given.release());
    return thread;
}

}  // namespace beacon::standin
