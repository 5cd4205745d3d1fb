// GoogleTest's place for what it cannot find out itself. The compiler's thread model has no std::mutex and no
// std::condition_variable; all that GoogleTest needs them for on Windows is this.
#pragma once

#ifdef _WIN32
#include <windows.h>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

class Notification {
public:
    Notification() = default;

    ~Notification() { CloseHandle(event_); }

    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    void Notify() { SetEvent(event_); }

    void WaitForNotification() { WaitForSingleObject(event_, INFINITE); }

private:
    const HANDLE event_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

}  // namespace testing::internal
#endif
