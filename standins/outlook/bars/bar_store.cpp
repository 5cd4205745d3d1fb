#include "outlook/bars/bar_store.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "com/error.h"
#include "com/text.h"
#include "common/program.h"

using Json = nlohmann::json;

template <>
struct nlohmann::adl_serializer<std::wstring> {
    static void to_json(Json& json, const std::wstring& text) { json = beacon::com::ToUtf8(text); }

    static void from_json(const Json& json, std::wstring& text) {
        text = beacon::com::FromUtf8(json.get_ref<const std::string&>());
    }
};

template <class Value>
struct nlohmann::adl_serializer<std::shared_ptr<Value>> {
    static void to_json(Json& json, const std::shared_ptr<Value>& pointer) { json = *pointer; }

    static void from_json(const Json& json, std::shared_ptr<Value>& pointer) {
        pointer = std::make_shared<Value>(json.get<Value>());
    }
};

namespace beacon::standin {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ButtonFace, width, height, pixels)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(BarControl, type, id, caption, tooltip, description, shortcut, tag,
                                                style, state, width, enabled, visible, beginGroup, builtIn, face, text,
                                                items)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Bar, name, position, protection, rowIndex, left, top, width, height,
                                                visible, enabled, builtIn, controls)

namespace {

void Check(const Bar& bar) {
    if (bar.name.empty()) throw std::runtime_error("a bar without a name");
    for (const auto& control : bar.controls) {
        if (!IsControlType(control->type)) throw std::runtime_error("a control of an unknown type");
        const ButtonFace& face = control->face;
        if (face.width < 0 || face.height < 0 || face.width > kLargestFace || face.height > kLargestFace ||
            face.pixels.size() != static_cast<size_t>(face.width) * static_cast<size_t>(face.height))
            throw std::runtime_error("a face of another size than it says");
    }
}

auto Named(const std::wstring& name) {
    return [&name](const Bar& bar) { return SameName(bar.name, name); };
}

}  // namespace

BarStore::BarStore(std::wstring path, std::function<void(const std::wstring&)> trouble)
    : path_(std::move(path)), trouble_(std::move(trouble)) {
    try {
        Read();
    } catch (const std::exception& error) {
        if (trouble_) trouble_(L"not kept, because " + path_ + L" is unreadable: " + com::FromUtf8(error.what()));
        path_.clear();
        explorer_.clear();
        inspector_.clear();
    }
    for (const WindowKind kind : {WindowKind::Explorer, WindowKind::Inspector}) {
        std::vector<Bar>& bars = Of(kind);
        auto place = bars.begin();  // built-in bars come first
        for (const Bar& builtIn : BuiltInBars()) {
            const bool missing = std::none_of(bars.begin(), bars.end(), Named(builtIn.name));
            if (missing) place = bars.insert(place, builtIn);
            if (place != bars.end()) ++place;
        }
    }
}

BarStore::~BarStore() { Save(); }

void BarStore::Add(WindowKind kind, const Bar& bar) {
    Remove(kind, bar.name);
    Of(kind).push_back(Copy(bar, false));
    changed_ = true;
}

void BarStore::Update(WindowKind kind, const Bar& bar) {
    const auto found = std::find_if(Of(kind).begin(), Of(kind).end(), Named(bar.name));
    if (found == Of(kind).end()) return;
    *found = Copy(bar, false);
    changed_ = true;
}

void BarStore::Remove(WindowKind kind, const std::wstring& name) {
    if (std::erase_if(Of(kind), Named(name)) != 0) changed_ = true;
}

void BarStore::Read() {
    if (path_.empty() || !std::filesystem::exists(path_)) return;  // the first run
    std::ifstream file(std::filesystem::path(path_), std::ios::binary);
    const Json json = Json::parse(file);
    json.at("explorer").get_to(explorer_);
    json.at("inspector").get_to(inspector_);
    std::for_each(explorer_.begin(), explorer_.end(), Check);
    std::for_each(inspector_.begin(), inspector_.end(), Check);
}

void BarStore::Write() const {
    // Replaces the file atomically.
    const std::filesystem::path fresh = path_ + L".new";
    std::ofstream file(fresh, std::ios::binary);
    file << Json{{"explorer", explorer_}, {"inspector", inspector_}};
    file.close();
    if (!file) Fail(L"cannot write " + fresh.wstring());
    std::filesystem::rename(fresh, path_);
}

void BarStore::Save() {
    if (!changed_ || path_.empty()) return;
    try {
        Write();
        changed_ = false;
    } catch (...) {
        if (trouble_) trouble_(std::wstring(com::CurrentError().Description()));
    }
}

}  // namespace beacon::standin
