#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "common/automation_object.h"

namespace beacon::standin {

/// Outlook's item classes.
enum class ItemClass : long { Appointment = 26, Contact = 40, Mail = 43, Note = 44, Task = 48 };

/// The class of a name in a store ("mail"); nullopt if unknown.
std::optional<ItemClass> ItemClassFromName(std::wstring_view name);

/// The stored fields of an item. Fields that its class does not have are empty.
struct ItemData {
    ItemClass itemClass = ItemClass::Mail;
    std::wstring entryId;
    std::wstring subject;
    std::wstring body;    // plain text, CR LF line ends
    long editorType = 1;  // 1 plain text, 2 HTML, 3 rich text, 4 Word
    std::wstring senderName;
    std::wstring senderAddress;
    std::wstring to;
    std::wstring receivedBy;
    std::wstring received;  // "2003-03-04 06:00"
    std::wstring firstName;
    std::wstring lastName;
    std::wstring company;
    std::wstring jobTitle;
    std::wstring email;
    std::wstring fullName;

    /// Full name of a contact, else the subject.
    const std::wstring& Name() const { return itemClass == ItemClass::Contact ? fullName : subject; }
};

/// One Outlook item. Its texts are read by MAPI only, as the adapter does.
class Item final : public AutomationObject {
public:
    /// `newEvents`: whether it has ItemEvents_10, as items have since Outlook 2002.
    Item(ItemData data, bool newEvents);

    const ItemData& Data() const { return data_; }

    /// Changes fields and notifies the listeners.
    void Change(const std::function<void(ItemData&)>& change);
    /// Sets the listener of this key, which is called after each change; an empty function removes it.
    void OnChange(const void* key, std::function<void()> listener);

    /// The title of the item's own window, in Outlook's words.
    std::wstring WindowTitle() const;

    /// Raises Close; true if a sink cancelled it.
    bool RaiseClose();
    /// Raises BeforeDelete if it exists; true if a sink cancelled it.
    bool RaiseBeforeDelete();

    bool mapi = true;  // whether MAPIOBJECT has the texts

private:
    bool RaiseCancellable(DISPID member, bool withItem);

    ItemData data_;
    const bool newEvents_;
    std::vector<std::pair<const void*, std::function<void()>>> listeners_;
};

}  // namespace beacon::standin
