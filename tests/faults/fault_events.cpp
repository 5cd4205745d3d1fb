#include "tests/faults/fault_events.h"

#include "outlook/object_model/events.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kUpdate[] = L"Update";

void Select(Outlook& outlook) {
    const auto explorer = outlook.ActiveExplorer();
    if (explorer != nullptr && outlook.Items().Count() > 0) explorer->Select({outlook.Items().Items().back()});
}

template <DISPID kMember>
void RaiseOfWindow(Outlook& outlook) {
    const auto frame = outlook.ActiveFrame();
    if (frame != nullptr) frame->Raise(kMember == events::kActivate ? L"Activate" : L"Deactivate", kMember);
}

void Close(Outlook& outlook) {
    if (const auto frame = outlook.ActiveFrame()) outlook.CloseFrame(*frame);
}

// What an open window shows, else the first item.
void Delete(Outlook& outlook) {
    const auto inspector = outlook.ActiveInspector();
    if (inspector != nullptr)
        outlook.Delete(inspector->ShownItem());
    else if (outlook.Items().Count() > 0)
        outlook.Delete(outlook.Items().Items().front());
}

void OpenInspector(Outlook& outlook) {
    if (outlook.Items().Count() > 0) outlook.OpenInspector(outlook.Items().Items().back(), false, true);
}

void Click(Outlook& outlook) {
    const auto frame = outlook.ActiveFrame();
    if (frame != nullptr && frame->Bars() != nullptr && frame->Bars()->Has(kUpdate)) frame->Bars()->PressNow(kUpdate);
}

template <FormTimer kTimer>
void Tick(Outlook& outlook) {
    for (const HWND form : HiddenForms(outlook))
        if (IsWindow(form)) SendMessageW(form, WM_TIMER, static_cast<WPARAM>(kTimer), 0);
}

}  // namespace

std::vector<HWND> HiddenForms(const Outlook& outlook) {
    std::vector<HWND> forms;
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
        if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) continue;
        const auto library = reinterpret_cast<HMODULE>(GetClassLongPtrW(window, GCLP_HMODULE));
        for (const auto& addin : outlook.Addins().Addins())
            if (library != nullptr && addin->Module() == library) forms.push_back(window);
    }
    return forms;
}

const std::vector<OutlookEvent>& OutlookEvents() {
    static const std::vector<OutlookEvent> known = {
        {L"selection", Select},
        {L"activate", RaiseOfWindow<events::kActivate>},
        {L"deactivate", RaiseOfWindow<events::kDeactivate>},
        {L"close", Close},
        {L"delete", Delete},
        {L"quit", [](Outlook& outlook) { outlook.RaiseQuitNow(); }},
        {L"inspector", OpenInspector},
        {L"click", Click},
        {L"tick-analysis", Tick<FormTimer::Analysis>},
        {L"tick-reconnect", Tick<FormTimer::Reconnect>},
        {L"tick-disconnect", Tick<FormTimer::Disconnect>},
        {L"tick-toolbar", Tick<FormTimer::Toolbar>},
    };
    return known;
}

std::function<void()> FindOutlookEvent(Outlook& outlook, const std::wstring& name) {
    for (const OutlookEvent& event : OutlookEvents())
        if (name == event.name) return [&outlook, raise = event.raise] { raise(outlook); };
    return {};
}

}  // namespace beacon::standin
