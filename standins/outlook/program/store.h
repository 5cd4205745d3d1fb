#pragma once

#include <memory>
#include <string>
#include <vector>

#include "outlook/object_model/item.h"

namespace beacon::standin {

/// The JSON file that import_mail.py writes. Read throws com::Error, which names the file and the item.
struct StoreFile {
    std::wstring folder = L"Inbox";
    std::vector<ItemData> items;

    static StoreFile Read(const std::wstring& path);
};

/// The folder with its items.
class Store {
public:
    /// `newEvents`: see Item.
    Store(StoreFile file, bool newEvents);

    const std::wstring& Folder() const { return folder_; }

    size_t Count() const { return items_.size(); }

    const std::vector<std::shared_ptr<Item>>& Items() const { return items_; }

    /// Finds an item by number (from 1), subject or full name of a contact. Throws com::Error if there is none.
    std::shared_ptr<Item> Find(const std::wstring& entry) const;
    /// The 1-based place; 0 for an item that has been deleted.
    size_t NumberOf(const Item& item) const;

    void Remove(const Item& item);

private:
    std::wstring folder_;
    std::vector<std::shared_ptr<Item>> items_;
};

}  // namespace beacon::standin
