#include "outlook/object_model/item.h"

#include <utility>

#include "common/journal.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/mapi_object.h"

namespace beacon::standin {
namespace {

struct ClassNames {
    ItemClass itemClass;
    const wchar_t* name;
    const wchar_t* kind;
    const wchar_t* title;
};

constexpr ClassNames kClasses[] = {
    {ItemClass::Mail, L"mail", L"MailItem", L"Message"},
    {ItemClass::Contact, L"contact", L"ContactItem", L"Contact"},
    {ItemClass::Appointment, L"appointment", L"AppointmentItem", L"Appointment"},
    {ItemClass::Task, L"task", L"TaskItem", L"Task"},
    {ItemClass::Note, L"note", L"NoteItem", L"Note"},
};

const ClassNames& NamesOf(ItemClass itemClass) {
    for (const ClassNames& names : kClasses)
        if (names.itemClass == itemClass) return names;
    return kClasses[0];
}

const wchar_t* FormatName(long editorType) {
    switch (editorType) {
        case 2: return L" (HTML)";
        case 3: return L" (Rich Text)";
        case 4: return L" (HTML)";  // Word as the editor writes HTML
        default: return L" (Plain Text)";
    }
}

}  // namespace

std::optional<ItemClass> ItemClassFromName(std::wstring_view name) {
    for (const ClassNames& names : kClasses)
        if (name == names.name) return names.itemClass;
    return std::nullopt;
}

Item::Item(ItemData data, bool newEvents)
    : AutomationObject(NamesOf(data.itemClass).kind), data_(std::move(data)), newEvents_(newEvents) {
    SetLabel(Quoted(data_.Name()));
    AddProperty(0xF00A, L"Class", [this] { return com::FromLong(static_cast<long>(data_.itemClass)); });
    AddProperty(0xF01E, L"EntryID", [this] { return com::FromText(data_.entryId); });
    AddProperty(0xF100, L"MAPIOBJECT", [this] { return MapiObjectOf(*this); });
    AddEvents(events::kItem, L"ItemEvents");
    if (newEvents_) AddEvents(events::kItem10, L"ItemEvents_10");
}

void Item::Change(const std::function<void(ItemData&)>& change) {
    change(data_);
    SetLabel(Quoted(data_.Name()));
    const auto listeners = listeners_;
    for (const auto& [key, listener] : listeners) listener();
}

void Item::OnChange(const void* key, std::function<void()> listener) {
    std::erase_if(listeners_, [&](const auto& entry) { return entry.first == key; });
    if (listener) listeners_.emplace_back(key, std::move(listener));
}

std::wstring Item::WindowTitle() const {
    std::wstring title = data_.Name().empty() ? L"Untitled" : data_.Name();
    title += std::wstring(L" - ") + NamesOf(data_.itemClass).title;
    if (data_.itemClass == ItemClass::Mail) title += FormatName(data_.editorType);
    return title;
}

bool Item::RaiseCancellable(DISPID member, bool withItem) {
    VARIANT_BOOL cancel = VARIANT_FALSE;
    std::vector<_variant_t> arguments;
    if (withItem) arguments.push_back(HandOut(shared_from_this()));
    arguments.push_back(ByReference(cancel));
    if (member != events::kItemBeforeDelete) Fire(events::kItem, member, arguments);
    Fire(events::kItem10, member, arguments);
    return cancel != VARIANT_FALSE;
}

bool Item::RaiseClose() {
    Say(L"event Close " + Description());
    return RaiseCancellable(events::kItemClose, false);
}

bool Item::RaiseBeforeDelete() {
    if (!newEvents_) return false;
    Say(L"event BeforeDelete " + Description());
    return RaiseCancellable(events::kItemBeforeDelete, true);
}

}  // namespace beacon::standin
