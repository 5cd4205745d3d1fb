#include <algorithm>

#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/object_model/frame.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kContext[] = L"Context";  // caption of the adapter's combo box

template <class Action>
void InBars(Outlook& outlook, Action&& action) {
    CommandBarsHost* const bars = ActiveWindow(outlook)->Bars();
    if (bars == nullptr) throw ScriptError{L"the window has no command bars"};
    action(*bars);
}

void SayBars(Outlook& outlook, Words& words) {
    words.End();
    InBars(outlook, [](CommandBarsHost& bars) {
        std::wstring text = bars.Describe();
        while (!text.empty()) {
            const size_t end = std::min(text.find(L'\n'), text.size());
            Say(text.substr(0, end));
            text.erase(0, end + 1);
        }
    });
    Say(L"bars end");
}

void ClickBar(Outlook& outlook, Words& words) {
    const std::wstring caption = words.Take(L"caption");
    words.End();
    InBars(outlook, [&](CommandBarsHost& bars) { bars.Click(caption); });
    Say(L"posted a click on " + Quoted(caption));
}

void Context(Outlook& outlook, Words& words) {
    const bool types = words.Accept(L"type");
    if (!types && !words.Accept(L"choose")) throw ScriptError{L"context type TEXT | choose ENTRY"};
    const std::wstring text = words.Take(L"text");
    words.End();
    InBars(outlook, [&](CommandBarsHost& bars) {
        if (types)
            bars.Type(kContext, text);
        else
            bars.Choose(kContext, text);
    });
}

void SayBoxes(Outlook&, Words& words) {
    words.End();
    bool any = false;
    for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr;) {
        if (!IsWindowVisible(box)) continue;
        wchar_t title[256];
        GetWindowTextW(box, title, 256);
        Say(L"box " + Quoted(title));
        any = true;
    }
    if (!any) Say(L"no box");
}

void DeleteBar(Outlook& outlook, Words& words) {
    const std::wstring name = words.Take(L"name");
    words.End();
    InBars(outlook, [&](CommandBarsHost& bars) { bars.DeleteBar(name); });
    Say(L"deleted the bar " + Quoted(name));
}

}  // namespace

const std::vector<Command>& BarCommands() {
    static const std::vector<Command> commands = {
        {L"bars", L"lists the command bars of the current window", SayBars},
        {L"press CAPTION", L"posts a mouse click on a button", ClickBar},
        {L"context type TEXT | choose ENTRY", L"types into the context box, or chooses from its list", Context},
        {L"boxes", L"lists the titles of open message boxes and dialogs", SayBoxes},
        {L"deletebar NAME", L"deletes a bar as the user would", DeleteBar},
    };
    return commands;
}

}  // namespace beacon::standin
