#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Where the function that this stands in returns to; as a default argument, where the calling function does.
#define RETURN_ADDRESS() __builtin_return_address(0)

namespace beacon::standin {

/// What one call of an add-in meets.
struct CallPlan {
    unsigned number = 0;           // of the call, from 1; 0: none
    HRESULT result = S_OK;         // a failure is the answer, and the call has no effect
    DWORD hang = 0;                // ms before the answer
    std::function<void()> before;  // run inside the call, before and after it has its effect
    std::function<void()> after;
};

/// Every call that a watched library makes to objects of this process has a number; each can be made to fail, to hang,
/// or to be entered again from inside. Whose call it is tells the address that it returns to, so what the stand-ins do
/// among themselves is not counted. For one thread; without a watched library a call costs one comparison.
class CallPoints {
public:
    /// Counts the calls of this library from now on; null: of none.
    void Watch(HMODULE library);

    /// The next call is number 1; the plan holds for the calls from here on.
    void Start(CallPlan plan);

    unsigned Count() const { return count_; }

    /// What the planned call was ("Explorer.Invoke Caption"), empty until it comes.
    const std::wstring& Met() const { return met_; }

    /// Hears of every call: number and name. It may start a plan for that very call.
    void SetListener(std::function<void(unsigned, const std::wstring&)> listener) { listener_ = std::move(listener); }

    bool IsWatched(const void* address) const { return address >= begin_ && address < end_; }

    bool IsOn() const { return end_ != nullptr; }

private:
    friend class CallPoint;

    const char* begin_ = nullptr;
    const char* end_ = nullptr;
    unsigned count_ = 0;
    CallPlan plan_;
    std::wstring met_;
    std::function<void(unsigned, const std::wstring&)> listener_;
};

CallPoints& TheCallPoints();

/// A call while it lasts: `describe` gives its name as text when that is wanted. What is planned for after its effect
/// runs at its end.
class CallPoint {
public:
    /// In a function that an add-in calls. It counts when it returns to a watched library.
    template <class Describe>
    explicit CallPoint(const Describe& describe, const void* caller = RETURN_ADDRESS()) {
        CallPoints& points = TheCallPoints();
        if (points.IsWatched(caller)) Enter(points, describe);
    }

    struct OnBehalf {};

    /// In a function that the system calls for an add-in. It counts when there is a watched library.
    template <class Describe>
    CallPoint(OnBehalf, const Describe& describe) {
        CallPoints& points = TheCallPoints();
        if (points.IsOn()) Enter(points, describe);
    }

    CallPoint(const CallPoint&) = delete;
    CallPoint& operator=(const CallPoint&) = delete;
    ~CallPoint();

    bool Fails() const { return FAILED(result_); }

    HRESULT Result() const { return result_; }

private:
    template <class Describe>
    void Enter(CallPoints& points, const Describe& describe) {
        const unsigned number = ++points.count_;
        if (number != points.plan_.number && !points.listener_) return;
        const std::wstring name = describe();
        if (points.listener_) points.listener_(number, name);
        if (number == points.plan_.number) Meet(points, name);
    }

    void Meet(CallPoints& points, const std::wstring& name);

    HRESULT result_ = S_OK;
    std::function<void()> after_;
};

/// "{00020400}": enough to tell one interface from another.
std::wstring ShortId(REFIID id);

}  // namespace beacon::standin
