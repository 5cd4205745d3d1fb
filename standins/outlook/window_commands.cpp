#include "outlook/commands.h"
#include "outlook/events.h"
#include "outlook/journal.h"

namespace beacon::standin {
namespace {

void Select(Session& session, Words& words) {
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
    if (window->IsActive()) {
        Say(window->Name() + L" is active already");
    } else {
        window->Activate();
    }
}

void Close(Session& session, Words& words) {
    const auto window = TakeWindow(session, words);
    words.End();
    session.outlook.CloseFrame(*window);
}

void Caption(Session& session, Words& words) {
    const auto window = TakeWindow(session, words);
    words.End();
    Say(L"caption " + window->Name() + L" " + Quoted(window->Title()));
}

void View(Session& session, Words& words) {
    if (!words.Accept(L"switch")) throw ScriptError{L"only \"view switch\" is known"};
    words.End();
    ActiveExplorerWindow(session)->Raise(L"ViewSwitch", events::kViewSwitch);
}

void SayWindows(Session& session, Words& words) {
    words.End();
    for (const auto& explorer : session.outlook.OpenExplorers()) {
        Say(explorer->Name() + L" " + Quoted(explorer->Title()) + (explorer->IsActive() ? L" active" : L""));
    }
    for (const auto& inspector : session.outlook.OpenInspectors()) {
        Say(inspector->Name() + L" " + Quoted(inspector->Title()) + (inspector->IsActive() ? L" active" : L""));
    }
}

}  // namespace

const std::vector<Command>& WindowCommands() {
    static const std::vector<Command> commands = {
        {L"select", L"select ITEM[,ITEM...] | none", L"selects in the explorer used last", Select},
        {L"open", L"open ITEM", L"opens the item's window", Open},
        {L"new", L"new explorer", L"opens one more explorer", New},
        {L"activate", L"activate [explorer|inspector [K] | ITEM]", L"brings a window to the front", Activate},
        {L"close", L"close [explorer|inspector [K] | ITEM]", L"closes a window as the user would", Close},
        {L"caption", L"caption [explorer|inspector [K] | ITEM]", L"says a window's title", Caption},
        {L"view", L"view switch", L"raises the explorer's ViewSwitch", View},
        {L"windows", L"windows", L"lists the windows", SayWindows},
    };
    return commands;
}

}  // namespace beacon::standin
