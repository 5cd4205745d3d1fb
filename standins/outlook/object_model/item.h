#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "common/automation_object.h"
#include "outlook/program/options.h"

namespace beacon::standin {

/// Outlook's numbers of item classes.
enum class ItemClass : long { Appointment = 26, Contact = 40, Mail = 43, Note = 44, Task = 48 };

/// Name in stores and commands ("mail"); nullopt for others.
std::optional<ItemClass> ItemClassFromName(std::wstring_view name);

/// What is stored of an item. Fields that its class lacks stay empty.
struct ItemData {
    ItemClass itemClass = ItemClass::Mail;
    std::wstring entryId;  // empty until the item is saved
    std::wstring subject;
    std::wstring body;    // plain text, CR LF line ends
    std::wstring html;    // empty: no HTML body
    long editorType = 1;  // 1 plain text, 2 HTML, 3 rich text, 4 Word
    std::wstring senderName;
    std::wstring senderAddress;
    std::wstring to;
    std::wstring receivedBy;
    std::wstring sent;
    std::wstring firstName;
    std::wstring lastName;
    std::wstring company;
    std::wstring jobTitle;
    std::wstring email;
    std::wstring fullName;

    /// What the item is called: a contact by its full name, others by their subject.
    const std::wstring& Name() const { return itemClass == ItemClass::Contact ? fullName : subject; }
};

/// One Outlook item, as add-ins see it. A class has only the members that it has in Outlook 2000.
class Item final : public AutomationObject {
public:
    Item(ItemData data, EventGeneration events, IDispatch* application);

    const ItemData& Data() const { return data_; }

    /// Changes what is stored and tells the windows that show the item.
    void Change(const std::function<void(ItemData&)>& change);
    /// Called after each change; one listener a window, replaced by key, removed by an empty function.
    void OnChange(const void* key, std::function<void()> listener);

    /// A window in which the item is being edited: its text is the item's body for the object model, though not yet
    /// what is stored. Empty function: none.
    void SetEditor(std::function<std::wstring()> body) { editor_ = std::move(body); }

    std::wstring Body() const { return editor_ ? editor_() : data_.body; }

    /// Title of the item's own window, as Outlook words it.
    std::wstring WindowTitle() const;

    /// Raises Close; true when a sink cancelled it.
    bool RaiseClose();
    /// Raises BeforeDelete where the event exists; true when a sink cancelled it.
    bool RaiseBeforeDelete();

    bool mapi = true;  // whether the property reader finds texts below the object model

private:
    void AddMembers(IDispatch* application);
    void AddMailMembers();
    void AddContactMembers();
    void AddText(DISPID member, const wchar_t* name, std::wstring ItemData::*field);
    bool RaiseCancellable(DISPID member, bool withItem);

    ItemData data_;
    const EventGeneration events_;
    std::function<std::wstring()> editor_;
    std::vector<std::pair<const void*, std::function<void()>>> listeners_;
};

}  // namespace beacon::standin
