#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// The return address of the function in which it is written; as a default argument, that of the calling function.
#define RETURN_ADDRESS() __builtin_return_address(0)

namespace beacon::standin {

/// A fault that is planned for one call of an add-in.
struct CallPlan {
    unsigned number = 0;           // of the call, from 1; 0: none
    HRESULT result = S_OK;         // a failure is the answer
    DWORD hang = 0;                // ms before the answer
    std::function<void()> before;  // run inside the call, before and after it takes effect
    std::function<void()> after;
    bool failsAfterEffect = false;  // the result; only calls that CallPoint::Answer runs can, others fail before it
};

/// Numbers the calls that a watched library makes to objects of this process, so that each can fail, hang or be
/// re-entered. The return address identifies the caller, so calls among the stand-ins do not count. For one thread;
/// without a watched library a call costs one comparison.
class CallPoints {
public:
    /// Counts the calls of this library from now on; null: no calls.
    void Watch(HMODULE library);

    /// Counts every call, whoever makes it.
    void WatchAll();

    /// Makes the next call number 1 and replaces all plans. A plan holds for the calls from here on.
    void Start(CallPlan plan);
    /// Adds a plan. A listener may add one for the call that it is told of.
    void Add(CallPlan plan);

    unsigned Count() const { return count_; }

    /// The planned calls so far ("Explorer.Invoke Caption"), separated by " + "; empty until the first comes.
    const std::wstring& Met() const { return met_; }

    /// Calls this function with the number and name of every call.
    void SetListener(std::function<void(unsigned, const std::wstring&)> listener) { listener_ = std::move(listener); }

    bool IsWatched(const void* address) const { return address >= begin_ && address < end_; }

    bool IsOn() const { return end_ != nullptr; }

private:
    friend class CallPoint;

    const CallPlan* PlanOf(unsigned number) const;

    const char* begin_ = nullptr;
    const char* end_ = nullptr;
    unsigned count_ = 0;
    std::vector<CallPlan> plans_;
    std::wstring met_;
    std::function<void(unsigned, const std::wstring&)> listener_;
};

CallPoints& TheCallPoints();

/// One call, for as long as it lasts. `describe` returns its name. The event that is planned for after the call's
/// effect runs in the destructor.
class CallPoint {
public:
    /// In a function that an add-in calls. The call counts if it returns to a watched library.
    template <class Describe>
    explicit CallPoint(const Describe& describe, const void* caller = RETURN_ADDRESS()) {
        CallPoints& points = TheCallPoints();
        if (points.IsWatched(caller)) Enter(points, describe);
    }

    struct OnBehalf {};

    /// In a function that the system calls for an add-in. The call counts if a library is watched.
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

    /// Runs the call's body unless the call fails before its effect; returns the call's answer.
    template <class Body>
    HRESULT Answer(Body&& body) const {
        if (Fails() && !failsAfterEffect_) return result_;
        const HRESULT answer = body();
        return Fails() ? result_ : answer;
    }

private:
    template <class Describe>
    void Enter(CallPoints& points, const Describe& describe) {
        const unsigned number = ++points.count_;
        if (points.PlanOf(number) == nullptr && !points.listener_) return;
        const std::wstring name = describe();
        if (points.listener_) points.listener_(number, name);
        if (points.PlanOf(number) != nullptr) Meet(points, number, name);
    }

    void Meet(CallPoints& points, unsigned number, const std::wstring& name);

    HRESULT result_ = S_OK;
    bool failsAfterEffect_ = false;
    std::function<void()> after_;
};

/// "{00020400}": enough to tell one interface from another.
std::wstring ShortId(REFIID id);

}  // namespace beacon::standin
