#include <utility>

#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/panes/text_view.h"

namespace beacon::standin {
namespace {

void Items(Outlook& outlook, Words&) {
    size_t number = 0;
    for (const auto& item : outlook.Items().Items()) {
        Say(L"item " + std::to_wstring(++number) + L" " + item->Description() + L" from " +
            Quoted(item->Data().senderName) + L" editor " + std::to_wstring(item->Data().editorType) + L" body " +
            std::to_wstring(item->Data().body.size()) + L" characters");
    }
}

void Edit(Outlook& outlook, Words& words) {
    const auto item = TakeItem(outlook, words);
    if (!words.Accept(L"replace")) throw ScriptError{L"edit ITEM replace OLD NEW"};
    const std::wstring before = WithLineBreaks(words.Take(L"old text"));
    const std::wstring after = WithLineBreaks(words.Take(L"new text"));
    words.End();
    const size_t place = before.empty() ? std::wstring::npos : item->Data().body.find(before);
    if (place == std::wstring::npos) throw ScriptError{L"the body does not contain " + Quoted(before)};
    item->Change([&](ItemData& data) { data.body.replace(place, before.size(), after); });
    Say(L"edited " + item->Description() + L", body " + std::to_wstring(item->Data().body.size()) + L" characters");
}

void Delete(Outlook& outlook, Words& words) {
    const auto item = TakeItem(outlook, words);
    words.End();
    const std::wstring name = item->Description();
    Say((outlook.Delete(item) ? L"deleted " : L"delete cancelled ") + name);
}

void Stored(Outlook& outlook, Words& words) {
    const auto item = TakeItem(outlook, words);
    const bool full = words.Accept(L"mapi");
    if (!full && !words.Accept(L"no-mapi")) throw ScriptError{L"item ITEM mapi|no-mapi"};
    words.End();
    item->mapi = full;
}

}  // namespace

const std::vector<Command>& ItemCommands() {
    static const std::vector<Command> commands = {
        {L"items", L"lists the store", Items},
        {L"edit ITEM replace OLD NEW", L"replaces text in the body of the item", Edit},
        {L"delete ITEM", L"deletes the item and closes its window", Delete},
        {L"item ITEM mapi|no-mapi", L"whether the property reader finds the texts", Stored},
    };
    return commands;
}

}  // namespace beacon::standin
