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

Item::Item(ItemData data, EventGeneration events, IDispatch* application)
    : AutomationObject(NamesOf(data.itemClass).kind), data_(std::move(data)), events_(events) {
    SetLabel(Quoted(data_.Name()));
    AddMembers(application);
    if (events_ != EventGeneration::New) AddEvents(events::kItem, L"ItemEvents");
    if (events_ != EventGeneration::Old) AddEvents(events::kItem10, L"ItemEvents_10");
}

void Item::AddText(DISPID member, const wchar_t* name, std::wstring ItemData::*field) {
    AddProperty(
        member, name, [this, field] { return com::FromText(data_.*field); },
        [this, field](const CallArguments& arguments) {
            Change([&](ItemData& data) { data.*field = arguments.Text(0); });
        });
}

void Item::AddMembers(IDispatch* application) {
    const auto subject = [this] { return com::FromText(data_.subject); };
    AddProperty(DISPID_VALUE, L"_Default", subject);  // an item's default value is its subject
    AddProperty(0xF00A, L"Class", [this] { return com::FromLong(static_cast<long>(data_.itemClass)); });
    // The pointer is the stand-in's own and outlives every item.
    AddProperty(0xF000, L"Application", [application] { return com::FromObject(application); });
    AddProperty(0xF100, L"MAPIOBJECT", [this] { return MapiObjectOf(*this); });
    AddProperty(0xF01E, L"EntryID", [this] { return com::FromText(data_.entryId); });
    AddText(0x0037, L"Subject", &ItemData::subject);
    AddProperty(
        0x9100, L"Body", [this] { return com::FromText(Body()); },
        [this](const CallArguments& arguments) { Change([&](ItemData& data) { data.body = arguments.Text(0); }); });
    AddProperty(0xFAAF, L"Saved", [this] { return com::FromBool(!data_.entryId.empty()); });
    if (data_.itemClass == ItemClass::Mail) AddMailMembers();
    if (data_.itemClass == ItemClass::Contact) AddContactMembers();
}

void Item::AddMailMembers() {
    AddText(0xF404, L"HTMLBody", &ItemData::html);
    AddText(0x0E04, L"To", &ItemData::to);
    AddProperty(0x0C1A, L"SenderName", [this] { return com::FromText(data_.senderName); });
    AddProperty(0x0040, L"ReceivedByName", [this] { return com::FromText(data_.receivedBy); });
    AddProperty(0x0039, L"SentOn", [this] { return com::FromText(data_.sent); });
}

void Item::AddContactMembers() {
    AddText(0x3A06, L"FirstName", &ItemData::firstName);
    AddText(0x3A11, L"LastName", &ItemData::lastName);
    AddText(0x3A16, L"CompanyName", &ItemData::company);
    AddText(0x3A17, L"JobTitle", &ItemData::jobTitle);
    AddText(0x8083, L"Email1Address", &ItemData::email);
    AddText(0x3001, L"FullName", &ItemData::fullName);
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
    if (events_ == EventGeneration::Old) return false;
    Say(L"event BeforeDelete " + Description());
    return RaiseCancellable(events::kItemBeforeDelete, true);
}

}  // namespace beacon::standin
