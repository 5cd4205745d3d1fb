#include <stdexcept>

#include "com/text.h"
#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/frame.h"

namespace beacon::standin {
namespace {

ItemPane& ActivePane(Outlook& outlook) {
    ItemPane* const pane = ActiveWindow(outlook)->Pane();
    if (pane == nullptr) throw ScriptError{L"the window shows no item"};
    return *pane;
}

// A logic_error of the pane is an error of the script.
template <class Action>
void InPane(Outlook& outlook, Action&& action) {
    try {
        action(ActivePane(outlook));
    } catch (const std::logic_error& error) {
        throw ScriptError{com::FromAnsi(error.what())};
    }
}

void SaySelection(Outlook& outlook) {
    InPane(outlook, [](ItemPane& pane) {
        const std::wstring text = pane.Selection();
        Say(L"selection " + std::to_wstring(text.size()) + L" characters" +
            (text.size() <= 200 ? L" " + Quoted(text) : L""));
    });
}

void SelectText(Outlook& outlook, Words& words) {
    const bool all = words.Accept(L"all");
    const std::wstring text = all ? std::wstring() : words.Take(L"text");
    words.End();
    InPane(outlook, [&](ItemPane& pane) {
        if (all)
            pane.SelectRange(0, pane.Body().size());
        else
            pane.SelectText(text);
    });
    SaySelection(outlook);
}

void Document(Outlook& outlook, Words& words) {
    const bool offered = words.Accept(L"on");
    if (!offered && !words.Accept(L"off")) throw ScriptError{L"document on|off"};
    words.End();
    InPane(outlook, [&](ItemPane& pane) { pane.OfferDocument(offered); });
}

void Dialog(Outlook& outlook, Words& words) {
    const auto window = ActiveWindow(outlook);
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

void Select(Outlook& outlook, Words& words) {
    if (words.Accept(L"text")) return SelectText(outlook, words);
    const auto explorer = ActiveExplorerWindow(outlook);
    if (words.Accept(L"none")) {
        words.End();
        explorer->Select({});
        return;
    }
    std::vector<std::shared_ptr<Item>> items{TakeItem(outlook, words)};
    while (!words.AtEnd()) items.push_back(TakeItem(outlook, words));
    explorer->Select(std::move(items));
}

void Open(Outlook& outlook, Words& words) {
    const auto item = TakeItem(outlook, words);
    words.End();
    outlook.OpenInspector(item, true);
}

void New(Outlook& outlook, Words& words) {
    if (!words.Accept(L"explorer")) throw ScriptError{L"new explorer"};
    words.End();
    outlook.OpenExplorer(true);
}

void Activate(Outlook& outlook, Words& words) {
    const auto window = TakeWindow(outlook, words);
    words.End();
    if (window->IsActive())
        Say(window->Name() + L" is active already");
    else
        window->Activate();
}

void Close(Outlook& outlook, Words& words) {
    const auto window = TakeWindow(outlook, words);
    words.End();
    outlook.CloseFrame(*window);
}

void View(Outlook& outlook, Words& words) {
    if (!words.Accept(L"switch")) throw ScriptError{L"view switch"};
    words.End();
    ActiveExplorerWindow(outlook)->Raise(L"ViewSwitch", events::kViewSwitch);
}

void SayWindows(Outlook& outlook, Words&) {
    for (const auto& explorer : outlook.OpenExplorers())
        Say(explorer->Name() + L" " + Quoted(explorer->Title()) + (explorer->IsActive() ? L" active" : L""));
    for (const auto& inspector : outlook.OpenInspectors())
        Say(inspector->Name() + L" " + Quoted(inspector->Title()) + (inspector->IsActive() ? L" active" : L""));
}

}  // namespace

const std::vector<Command>& WindowCommands() {
    static const std::vector<Command> commands = {
        {L"select ITEM[,ITEM...] | none", L"selects in the current explorer", Select},
        {L"select text TEXT | text all", L"selects text in the current window", Select},
        {L"dialog open [TITLE] | close", L"opens or closes a dialog over the current window", Dialog},
        {L"document on|off", L"whether the HTML viewer of the current window offers its document", Document},
        {L"open ITEM", L"opens the item's window", Open},
        {L"new explorer", L"opens another explorer", New},
        {L"activate [explorer|inspector [K] | ITEM]", L"brings a window to the front", Activate},
        {L"close [explorer|inspector [K] | ITEM]", L"closes a window as the user would", Close},
        {L"view switch", L"raises ViewSwitch of the current explorer", View},
        {L"windows", L"lists the windows", SayWindows},
    };
    return commands;
}

}  // namespace beacon::standin
