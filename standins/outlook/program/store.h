#pragma once

#include <memory>
#include <string>
#include <vector>

#include "outlook/object_model/item.h"

namespace beacon::standin {

/// Reads the JSON that import_mail.py writes. Throws com::Error with a description that names the file and the place.
struct StoreFile {
    std::wstring folder = L"Inbox";
    std::vector<ItemData> items;

    static StoreFile Read(const std::wstring& path);
};

/// The one folder: its items in order.
class Store {
public:
    Store(StoreFile file, EventGeneration events, IDispatch* application);

    const std::wstring& Folder() const { return folder_; }

    size_t Count() const { return items_.size(); }

    const std::vector<std::shared_ptr<Item>>& Items() const { return items_; }

    /// By number (from 1) or by subject (for a contact: full name); throws com::Error when there is none.
    std::shared_ptr<Item> Find(const std::wstring& entry) const;
    /// 1-based place, or 0 for an item that is not stored.
    size_t NumberOf(const Item& item) const;

    /// A new item that is not stored yet.
    std::shared_ptr<Item> Compose(ItemData data) const;
    /// Stores it at the end and gives it an entry id.
    void Save(const std::shared_ptr<Item>& item);
    void Remove(const Item& item);

private:
    std::wstring folder_;
    EventGeneration events_;
    IDispatch* application_;
    std::vector<std::shared_ptr<Item>> items_;
    unsigned saved_ = 0;
};

}  // namespace beacon::standin
