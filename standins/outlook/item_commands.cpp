#include <algorithm>
#include <iterator>
#include <utility>

#include "common/journal.h"
#include "outlook/commands.h"
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
    if (words.Accept(L"body")) {
        const std::wstring text = WithLineBreaks(words.Take(L"text"));
        words.End();
        item->Change([&](ItemData& data) { data.body = text; });
    } else if (words.Accept(L"subject")) {
        const std::wstring text = words.Take(L"text");
        words.End();
        item->Change([&](ItemData& data) { data.subject = text; });
    } else if (words.Accept(L"replace")) {
        const std::wstring before = WithLineBreaks(words.Take(L"old text"));
        const std::wstring after = WithLineBreaks(words.Take(L"new text"));
        words.End();
        const size_t place = before.empty() ? std::wstring::npos : item->Data().body.find(before);
        if (place == std::wstring::npos) throw ScriptError{L"the body does not hold " + Quoted(before)};
        item->Change([&](ItemData& data) { data.body.replace(place, before.size(), after); });
    } else {
        throw ScriptError{L"edit ITEM body|subject|replace"};
    }
    Say(L"edited " + item->Description() + L", body " + std::to_wstring(item->Data().body.size()) + L" characters");
}

void Delete(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    words.End();
    const std::wstring name = item->Description();
    Say((session.outlook.Delete(item) ? L"deleted " : L"delete cancelled ") + name);
}

void Add(Session& session, Words& words) {
    const std::wstring name = words.Take(L"class");
    const auto itemClass = ItemClassFromName(name);
    if (!itemClass) throw ScriptError{L"unknown class \"" + name + L"\""};
    ItemData data;
    data.itemClass = *itemClass;
    (data.itemClass == ItemClass::Contact ? data.fullName : data.subject) = words.Take(L"subject");
    if (!words.AtEnd()) data.body = WithLineBreaks(words.Take(L"body"));
    words.End();
    const auto item = session.outlook.Items().Compose(std::move(data));
    session.outlook.Items().Save(item);
    Say(L"added item " + std::to_wstring(session.outlook.Items().Count()) + L" " + item->Description());
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

constexpr std::pair<const wchar_t*, MapiContent> kMapiContents[] = {{L"mapi", MapiContent::Full},
                                                                    {L"no-mapi-body", MapiContent::NoBody},
                                                                    {L"no-mapi-headers", MapiContent::NoHeaders},
                                                                    {L"no-mapi", MapiContent::Nothing},
                                                                    {L"mapi-error", MapiContent::Failing}};

void Stored(Session& session, Words& words) {
    const auto item = TakeItem(session, words);
    const std::wstring what = words.Take(L"what is stored");
    words.End();
    const auto content = std::ranges::find(kMapiContents, what, &std::pair<const wchar_t*, MapiContent>::first);
    if (content == std::end(kMapiContents)) throw ScriptError{L"unknown \"" + what + L"\""};
    item->mapi = content->second;
}

}  // namespace

const std::vector<Command>& ItemCommands() {
    static const std::vector<Command> commands = {
        {L"items", L"lists the store", Items},
        {L"edit ITEM body|subject TEXT | replace OLD NEW", L"changes the item and the windows that show it", Edit},
        {L"delete ITEM", L"deletes it, closing its window", Delete},
        {L"add mail|contact|appointment|task|note SUBJECT [BODY]", L"adds an item to the store", Add},
        {L"compose [SUBJECT]", L"opens the window of a new message", Compose},
        {L"save", L"stores the item of the inspector used last", Save},
        {L"body [ITEM]", L"the item's text as stored, and as its window has it (default: the inspector's)", SayBody},
        {L"item ITEM mapi|no-mapi-body|no-mapi-headers|no-mapi|mapi-error", L"what the property reader finds", Stored},
    };
    return commands;
}

}  // namespace beacon::standin
