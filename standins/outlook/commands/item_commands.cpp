#include <utility>

#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/panes/text_view.h"

namespace beacon::standin {
namespace {

void Items(Session& session, Words&) {
    size_t number = 0;
    for (const auto& item : session.outlook.Items().Items()) {
        Say(L"item " + std::to_wstring(++number) + L" " + item->Description() + L" from " +
            Quoted(item->Data().senderName) + L" editor " + std::to_wstring(item->Data().editorType) + L" body " +
            std::to_wstring(item->Data().body.size()) + L" characters");
    }
}

void Edit(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    if (!words.Accept(L"replace")) throw ScriptError{L"edit ITEM replace OLD NEW"};
    const std::wstring before = WithLineBreaks(words.Take(L"old text"));
    const std::wstring after = WithLineBreaks(words.Take(L"new text"));
    words.End();
    const size_t place = before.empty() ? std::wstring::npos : item->Data().body.find(before);
    if (place == std::wstring::npos) throw ScriptError{L"the body does not hold " + Quoted(before)};
    item->Change([&](ItemData& data) { data.body.replace(place, before.size(), after); });
    Say(L"edited " + item->Description() + L", body " + std::to_wstring(item->Data().body.size()) + L" characters");
}

void Delete(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    words.End();
    const std::wstring name = item->Description();
    Say((session.outlook.Delete(item) ? L"deleted " : L"delete cancelled ") + name);
}

void Compose(Session& session, Words& words) {
    ItemData data;
    if (!words.AtEnd()) data.subject = words.Take(L"subject");
    words.End();
    session.outlook.OpenInspector(session.outlook.Items().Compose(std::move(data)), true, true);
}

std::shared_ptr<Item> ItemOfInspector(Session& session) {
    const auto inspector = session.outlook.ActiveInspector();
    if (inspector == nullptr) throw ScriptError{L"there is no inspector"};
    return inspector->ShownItem();
}

void Save(Session& session, Words&) {
    const auto item = ItemOfInspector(session);
    session.outlook.Items().Save(item);
    Say(L"saved item " + std::to_wstring(session.outlook.Items().NumberOf(*item)));
}

void SayBody(Session& session, Words& words) {
    const auto item = words.AtEnd() ? ItemOfInspector(session) : TakeItem(session, words);
    words.End();
    Say(L"body stored " + Quoted(item->Data().body) + L" now " + Quoted(item->Body()));
}

void Stored(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    const bool full = words.Accept(L"mapi");
    if (!full && !words.Accept(L"no-mapi")) throw ScriptError{L"item ITEM mapi|no-mapi"};
    words.End();
    item->mapi = full;
}

}  // namespace

const std::vector<Command>& ItemCommands() {
    static const std::vector<Command> commands = {
        {L"items", L"lists the store", Items},
        {L"edit ITEM replace OLD NEW", L"changes the item's body and the windows that show it", Edit},
        {L"delete ITEM", L"deletes it, closing its window", Delete},
        {L"compose [SUBJECT]", L"opens the window of a new message", Compose},
        {L"save", L"stores the item of the inspector used last", Save},
        {L"body [ITEM]", L"the item's text as stored, and as its window has it (default: the inspector's)", SayBody},
        {L"item ITEM mapi|no-mapi", L"what the property reader finds", Stored},
    };
    return commands;
}

}  // namespace beacon::standin
