#include "common/call_points.h"

#include <psapi.h>

#include <cstdint>
#include <cwchar>
#include <iterator>

#include "com/error.h"
#include "common/journal.h"

namespace beacon::standin {
namespace {

void Run(const std::function<void()>& event) {
    if (!event) return;
    try {
        event();
    } catch (...) {
        Say(L"error inside a call: " + std::wstring(com::CurrentError().Description()));
    }
}

}  // namespace

void CallPoints::Watch(HMODULE library) {
    begin_ = end_ = nullptr;
    MODULEINFO place{};
    if (library == nullptr || !GetModuleInformation(GetCurrentProcess(), library, &place, sizeof place)) return;
    begin_ = static_cast<const char*>(place.lpBaseOfDll);
    end_ = begin_ + place.SizeOfImage;
}

void CallPoints::WatchAll() {
    begin_ = nullptr;
    end_ = reinterpret_cast<const char*>(~uintptr_t{0});
}

void CallPoints::Start(CallPlan plan) {
    count_ = 0;
    plans_.clear();
    met_.clear();
    Add(std::move(plan));
}

void CallPoints::Add(CallPlan plan) { plans_.push_back(std::move(plan)); }

const CallPlan* CallPoints::PlanOf(unsigned number) const {
    for (const CallPlan& plan : plans_)
        if (plan.number == number) return &plan;
    return nullptr;
}

CallPoints& TheCallPoints() {
    static auto* const points = new CallPoints;  // never destroyed: calls may come until the process ends
    return *points;
}

void CallPoint::Meet(CallPoints& points, unsigned number, const std::wstring& name) {
    points.met_ += (points.met_.empty() ? L"" : L" + ") + name;
    const CallPlan plan = *points.PlanOf(number);  // an event may add another
    result_ = plan.result;
    failsAfterEffect_ = plan.failsAfterEffect;
    if (plan.hang != 0) Sleep(plan.hang);
    Run(plan.before);
    after_ = plan.after;
}

CallPoint::~CallPoint() {
    if (after_) Run(after_);
}

std::wstring ShortId(REFIID id) {
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"{%08lX}", static_cast<unsigned long>(id.Data1));
    return text;
}

}  // namespace beacon::standin
