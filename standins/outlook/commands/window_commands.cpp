#include <stdexcept>

#include "com/text.h"
#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/frame.h"

namespace beacon::standin {
namespace {

ItemPane& ActivePane(Session& session) {
    ItemPane* const pane = ActiveWindow(session)->Pane();
    if (pane == nullptr) throw ScriptError{L"the window shows no item"};
    return *pane;
}

// What the pane does not have is an error of the script, not of the program.
template <class Action>
void InPane(Session& session, Action&& action) {
    try {
        action(ActivePane(session));
    } catch (const std::logic_error& error) {
        throw ScriptError{com::FromAnsi(error.what())};
    }
}

void SaySelection(Session& session) {
    InPane(session, [](ItemPane& pane) {
        const std::wstring text = pane.Selection();
        Say(L"selection " + std::to_wstring(text.size()) + L" characters" +
            (text.size() <= 200 ? L" " + Quoted(text) : L""));
    });
}

void SelectText(Session& session, Words& words) {
    const bool all = words.Accept(L"all");
    const std::wstring text = all ? std::wstring() : words.Take(L"text");
    words.End();
    InPane(session, [&](ItemPane& pane) {
        if (all)
            pane.SelectRange(0, pane.Body().size());
        else
            pane.SelectText(text);
    });
    SaySelection(session);
}

void Hang(Session& session, Words& words) {
    const long time = words.TakeNumber(L"milliseconds");
    words.End();
    InPane(session, [&](ItemPane& pane) { pane.Hang(std::chrono::milliseconds(time)); });
    Say(L"the HTML viewer hangs for " + std::to_wstring(time) + L" ms");
}

void Document(Session& session, Words& words) {
    const bool offered = words.Accept(L"on");
    if (!offered && !words.Accept(L"off")) throw ScriptError{L"document on|off"};
    words.End();
    InPane(session, [&](ItemPane& pane) { pane.OfferDocument(offered); });
}

void Dialog(Session& session, Words& words) {
    const auto window = ActiveWindow(session);
    if (words.Accept(L"close")) {
        words.End();
        if (!window->CloseDialog()) throw ScriptError{L"no dialog is open over " + window->Name()};
        Say(L"closed the dialog over " + window->Name());
        return;
    }
    if (!words.Accept(L"open")) throw ScriptError{L"dialog open [TITLE] | close"};
    const std::wstring title = words.AtEnd() ? L"Microsoft Outlook" : words.Take(L"title");
    words.End();
    window->OpenDialog(title);
    Say(L"opened a dialog over " + window->Name());
}

void Select(Session& session, Words& words) {
    if (words.Accept(L"text")) return SelectText(session, words);
    const auto explorer = ActiveExplorerWindow(session);
    if (words.Accept(L"none")) {
        words.End();
        explorer->Select({});
        return;
    }
    std::vector<std::shared_ptr<Item>> items{TakeItem(session, words)};
    while (!words.AtEnd()) items.push_back(TakeItem(session, words));
    explorer->Select(std::move(items));
}

void Open(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    words.End();
    session.outlook.OpenInspector(item, false, true);
}

void New(Session& session, Words& words) {
    if (!words.Accept(L"explorer")) throw ScriptError{L"only \"new explorer\" is known; \"compose\" makes a message"};
    words.End();
    session.outlook.OpenExplorer(true);
}

void Activate(Session& session, Words& words) {
    const auto window = TakeWindow(session, words);
    words.End();
    if (window->IsActive())
        Say(window->Name() + L" is active already");
    else
        window->Activate();
}

void Close(Session& session, Words& words) {
    const auto window = TakeWindow(session, words);
    words.End();
    session.outlook.CloseFrame(*window);
}

void View(Session& session, Words& words) {
    if (!words.Accept(L"switch")) throw ScriptError{L"only \"view switch\" is known"};
    words.End();
    ActiveExplorerWindow(session)->Raise(L"ViewSwitch", events::kViewSwitch);
}

void SayWindows(Session& session, Words&) {
    for (const auto& explorer : session.outlook.OpenExplorers())
        Say(explorer->Name() + L" " + Quoted(explorer->Title()) + (explorer->IsActive() ? L" active" : L""));
    for (const auto& inspector : session.outlook.OpenInspectors())
        Say(inspector->Name() + L" " + Quoted(inspector->Title()) + (inspector->IsActive() ? L" active" : L""));
}

}  // namespace

const std::vector<Command>& WindowCommands() {
    static const std::vector<Command> commands = {
        {L"select ITEM[,ITEM...] | none", L"selects in the explorer used last", Select},
        {L"select text TEXT | text all", L"marks text in the window used last", Select},
        {L"dialog open [TITLE] | close", L"a dialog box over the window used last", Dialog},
        {L"hang MS", L"the HTML viewer of the window used last does not answer", Hang},
        {L"document on|off", L"whether that viewer hands out its document", Document},
        {L"open ITEM", L"opens the item's window", Open},
        {L"new explorer", L"opens one more explorer", New},
        {L"activate [explorer|inspector [K] | ITEM]", L"brings a window to the front", Activate},
        {L"close [explorer|inspector [K] | ITEM]", L"closes a window as the user would", Close},
        {L"view switch", L"raises the explorer's ViewSwitch", View},
        {L"windows", L"lists the windows", SayWindows},
    };
    return commands;
}

}  // namespace beacon::standin
