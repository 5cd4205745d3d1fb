#include "outlook/program/store.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <nlohmann/json.hpp>

#include "common/journal.h"
#include "common/program.h"

namespace beacon::standin {
namespace {

using Json = nlohmann::json;

std::string ReadFile(const std::wstring& path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen(path.c_str(), L"rb"), &std::fclose);
    if (file == nullptr) Fail(L"cannot open " + path);
    std::string bytes;
    char buffer[65536];
    for (size_t count; (count = std::fread(buffer, 1, sizeof buffer, file.get())) != 0;) bytes.append(buffer, count);
    return bytes;
}

struct TextField {
    const char* name;
    std::wstring ItemData::*field;
};

constexpr TextField kTextFields[] = {
    {"entryId", &ItemData::entryId},
    {"subject", &ItemData::subject},
    {"body", &ItemData::body},
    {"senderName", &ItemData::senderName},
    {"senderAddress", &ItemData::senderAddress},
    {"to", &ItemData::to},
    {"receivedBy", &ItemData::receivedBy},
    {"received", &ItemData::received},
    {"firstName", &ItemData::firstName},
    {"lastName", &ItemData::lastName},
    {"company", &ItemData::company},
    {"jobTitle", &ItemData::jobTitle},
    {"email", &ItemData::email},
    {"fullName", &ItemData::fullName},
};

ItemData FromJson(const Json& entry) {
    ItemData data;
    const std::wstring name = FromUtf8(entry.at("class").get<std::string>());
    const std::optional<ItemClass> itemClass = ItemClassFromName(name);
    if (!itemClass) Fail(L"unknown class \"" + name + L"\"");
    data.itemClass = *itemClass;
    for (const TextField& text : kTextFields)
        if (entry.contains(text.name)) data.*text.field = FromUtf8(entry[text.name].get<std::string>());
    data.editorType = entry.value("editor", 1);
    if (data.entryId.empty()) Fail(L"an item without entryId");
    return data;
}

}  // namespace

StoreFile StoreFile::Read(const std::wstring& path) {
    StoreFile file;
    size_t number = 0;
    try {
        const Json json = Json::parse(ReadFile(path));
        if (json.contains("folder")) file.folder = FromUtf8(json["folder"].get<std::string>());
        for (const Json& entry : json.at("items")) {
            ++number;
            file.items.push_back(FromJson(entry));
        }
    } catch (const Json::exception& error) {
        Fail(path + (number == 0 ? L"" : L", item " + std::to_wstring(number)) + L": " + FromUtf8(error.what()));
    } catch (const com::Error& error) {
        if (number == 0) throw;
        Fail(path + L", item " + std::to_wstring(number) + L": " + std::wstring(error.Description()));
    }
    return file;
}

Store::Store(StoreFile file, bool newEvents) : folder_(std::move(file.folder)) {
    for (ItemData& data : file.items) items_.push_back(std::make_shared<Item>(std::move(data), newEvents));
}

std::shared_ptr<Item> Store::Find(const std::wstring& entry) const {
    if (!entry.empty() && entry.find_first_not_of(L"0123456789") == std::wstring::npos) {
        const unsigned long number = std::wcstoul(entry.c_str(), nullptr, 10);
        if (number >= 1 && number <= items_.size()) return items_[number - 1];
        Fail(L"there is no item " + entry + L" (items: " + std::to_wstring(items_.size()) + L")");
    }
    for (const auto& item : items_)
        if (item->Data().Name() == entry) return item;
    Fail(L"there is no item \"" + entry + L"\"");
}

size_t Store::NumberOf(const Item& item) const {
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].get() == &item) return i + 1;
    return 0;
}

void Store::Remove(const Item& item) {
    std::erase_if(items_, [&](const auto& candidate) { return candidate.get() == &item; });
}

}  // namespace beacon::standin
