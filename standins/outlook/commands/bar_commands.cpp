#include <algorithm>

#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/object_model/frame.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kContext[] = L"Context";  // the caption of the adapter's combo box

template <class Action>
void InBars(Session& session, Action&& action) {
    CommandBarsHost* const bars = ActiveWindow(session)->Bars();
    if (bars == nullptr) throw ScriptError{L"the window has no command bars"};
    action(*bars);
}

void SayBars(Session& session, Words& words) {
    words.End();
    InBars(session, [](CommandBarsHost& bars) {
        std::wstring text = bars.Describe();
        while (!text.empty()) {
            const size_t end = std::min(text.find(L'\n'), text.size());
            Say(text.substr(0, end));
            text.erase(0, end + 1);
        }
    });
    Say(L"bars end");
}

void ClickBar(Session& session, Words& words) {
    const std::wstring caption = words.Take(L"caption");
    words.End();
    InBars(session, [&](CommandBarsHost& bars) { bars.Click(caption); });
    Say(L"posted a click on " + Quoted(caption));
}

void Context(Session& session, Words& words) {
    const bool types = words.Accept(L"type");
    if (!types && !words.Accept(L"choose")) throw ScriptError{L"context type TEXT | choose ENTRY"};
    const std::wstring text = words.Take(L"text");
    words.End();
    InBars(session, [&](CommandBarsHost& bars) {
        if (types)
            bars.Type(kContext, text);
        else
            bars.Choose(kContext, text);
    });
}

void SayBoxes(Session&, Words& words) {
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

void Answer(Session&, Words& words) {
    const std::wstring title = words.Take(L"title");
    words.End();
    const HWND box = FindWindowW(L"#32770", title.c_str());
    if (box == nullptr) throw ScriptError{L"no box \"" + title + L"\" is open"};
    std::wstring text(512, L'\0');
    text.resize(static_cast<size_t>(GetDlgItemTextW(box, 0xFFFF, text.data(), static_cast<int>(text.size()))));
    Say(L"answered the box " + Quoted(title) + L" " + Quoted(text));
    PostMessageW(box, WM_COMMAND, IDOK, 0);
}

void DeleteBar(Session& session, Words& words) {
    const std::wstring name = words.Take(L"name");
    words.End();
    InBars(session, [&](CommandBarsHost& bars) { bars.DeleteBar(name); });
    Say(L"deleted the bar " + Quoted(name));
}

}  // namespace

const std::vector<Command>& BarCommands() {
    static const std::vector<Command> commands = {
        {L"bars", L"lists the command bars of the window used last", SayBars},
        {L"press CAPTION", L"posts a mouse click on a button of its bars", ClickBar},
        {L"context type TEXT | choose ENTRY", L"types into the context box of its bar, or chooses from it", Context},
        {L"boxes", L"titles of the message boxes and dialogs that are open", SayBoxes},
        {L"answer TITLE", L"presses OK in the message box of that title", Answer},
        {L"deletebar NAME", L"deletes a bar as the user would", DeleteBar},
    };
    return commands;
}

}  // namespace beacon::standin
