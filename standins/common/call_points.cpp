#include "common/call_points.h"

#include <psapi.h>

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
        Say(L"error inside a call: " + com::CurrentError().description);
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

void CallPoints::Start(CallPlan plan) {
    count_ = 0;
    plan_ = std::move(plan);
    met_.clear();
}

CallPoints& TheCallPoints() {
    static auto* const points = new CallPoints;  // calls may come until the process ends
    return *points;
}

void CallPoint::Meet(CallPoints& points, const std::wstring& name) {
    points.met_ = name;
    const CallPlan plan = points.plan_;  // an event may start another
    result_ = plan.result;
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
