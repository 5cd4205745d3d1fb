#include "engine/monitor.h"

#include <windows.h>

#include <cwchar>

#include "common/journal.h"
#include "engine/view.h"

namespace beacon::standin {
namespace {

std::wstring Clock() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"%02d:%02d:%02d.%03d", now.wHour, now.wMinute, now.wSecond,
                  now.wMilliseconds);
    return text;
}

std::wstring Text(long handle) { return std::to_wstring(handle); }

}  // namespace

void Monitor::Connected(Side side, long handle) {
    Raw(std::wstring(L"# connected ") + ChannelName(side) + L" " + Text(handle));
    View(Text(handle) + (side == Side::Controller ? L" connected to the controller" : L" connected to the engine"));
}

void Monitor::Disconnected(Side side, long handle, bool inOrder) {
    Raw(std::wstring(inOrder ? L"# disconnected " : L"# lost ") + ChannelName(side) + L" " + Text(handle));
    if (side == Side::Engine) {
        Show(handle, With(handle).Ended(inOrder, GetTickCount64()));
        conversations_.erase(handle);
    }
    View(Text(handle) + (inOrder ? L" disconnected from the " : L" LOST by the ") +
         (side == Side::Controller ? L"controller" : L"engine"));
}

void Monitor::Message(long handle, std::wstring_view text) {
    Raw(L"message " + Text(handle) + L" " + EscapeRaw(text));
    Show(handle, With(handle).Message(text, GetTickCount64()));
}

void Monitor::Control(long handle, std::wstring_view text) {
    Raw(L"control " + Text(handle) + L" " + EscapeRaw(text));
    Show(handle, With(handle).Control(text, GetTickCount64()));
}

void Monitor::Fault(long handle, std::wstring_view text) {
    Show(handle, {{ObservationKind::Fault, std::wstring(text), {}, {}, 0}});
}

void Monitor::Note(long handle, std::wstring_view text) {
    Show(handle, {{ObservationKind::Note, std::wstring(text), {}, {}, 0}});
}

void Monitor::Event(std::wstring_view text) {
    const std::wstring line = EscapeRaw(text);
    Raw(L"# " + line);
    View(line);
}

void Monitor::Error(std::wstring_view text) {
    hadError_ = true;
    Event(L"error " + std::wstring(text));
}

void Monitor::Raw(const std::wstring& line) {
    TheJournal().Record(line);
    if (raw_) TheJournal().Print(line);
}

void Monitor::View(std::wstring_view line) {
    if (!raw_) TheJournal().Print(Clock() + L"  " + std::wstring(line));
}

void Monitor::Show(long handle, const std::vector<Observation>& observations) {
    for (const Observation& observation : observations) {
        if (observation.kind == ObservationKind::Fault)
            Raw(L"# fault " + Text(handle) + L" " + EscapeRaw(observation.text));
        if (observation.kind == ObservationKind::Note)
            Raw(L"# note " + Text(handle) + L" " + EscapeRaw(observation.text));
        View(DescribeObservation(handle, observation));
    }
}

Conversation& Monitor::With(long handle) { return conversations_.try_emplace(handle, handle).first->second; }

}  // namespace beacon::standin
