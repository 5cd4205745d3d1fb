#include "outlook/mapi_reader.h"

#include <utility>

#include "com/text.h"

namespace beacon::standin {
namespace {

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x8004010F);        // MAPI_E_NOT_FOUND
constexpr HRESULT kNotInitialized = static_cast<HRESULT>(0x80040605);  // MAPI_E_NOT_INITIALIZED

constexpr unsigned kString8 = 0x001E;
constexpr unsigned kUnicode = 0x001F;

int g_alive = 0;

struct Property {
    unsigned id;
    std::wstring ItemData::*field;
};

constexpr Property kProperties[] = {
    {0x1000, &ItemData::body},
    {0x0037, &ItemData::subject},
    {0x0C1A, &ItemData::senderName},
    {0x0C1F, &ItemData::senderAddress},
    {0x0040, &ItemData::receivedBy},
    // Not the usual tag of the recipient's name, but the one that the add-in asks for.
    {0x004E, &ItemData::receivedBy},
    {0x0E04, &ItemData::to},
    {0x3001, &ItemData::fullName},
    {0x3003, &ItemData::email},
    {0x3A06, &ItemData::firstName},
    {0x3A11, &ItemData::lastName},
    {0x3A16, &ItemData::company},
    {0x3A17, &ItemData::jobTitle},
};

}  // namespace

std::optional<std::wstring> MapiText(const Item& item, long tag) {
    const unsigned id = static_cast<unsigned long>(tag) >> 16;
    const unsigned type = static_cast<unsigned long>(tag) & 0xFFFF;
    if (type != kString8 && type != kUnicode) return std::nullopt;
    for (const Property& property : kProperties) {
        if (property.id != id) continue;
        if (!item.mapi) return L"";
        const std::wstring& text = item.Data().*property.field;
        return type == kString8 ? com::FromAnsi(com::ToAnsi(text)) : text;
    }
    return std::nullopt;
}

MapiReader::MapiReader() : CalledDual(L"PropertyReader") { ++g_alive; }

MapiReader::~MapiReader() { --g_alive; }

int MapiReader::Alive() { return g_alive; }

HRESULT MapiReader::Initialize() {
    return Counted(L"Initialize", [&] {
        initialized_ = true;
        return S_OK;
    });
}

HRESULT MapiReader::Uninitialize() {
    return Counted(L"Uninitialize", [&] { return std::exchange(initialized_, false) ? S_OK : kNotInitialized; });
}

HRESULT MapiReader::Read(const VARIANT& item, long tag, std::wstring& text) const {
    if (!initialized_) return kNotInitialized;
    _variant_t value;
    if (FAILED(VariantCopyInd(&value, const_cast<VARIANT*>(&item))) ||
        (value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN))
        return DISP_E_TYPEMISMATCH;
    const auto object = std::dynamic_pointer_cast<Item>(AutomationObject::From(value.punkVal));
    if (object == nullptr) return E_INVALIDARG;
    const std::optional<std::wstring> found = MapiText(*object, tag);
    if (!found) return kNotFound;
    text = *found;
    return S_OK;
}

HRESULT MapiReader::GetStringProperty(VARIANT item, long tag, VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    VariantInit(value);
    return CountedMethod(L"GetStringProperty", [&] {
        std::wstring text;
        const HRESULT result = Read(item, tag, text);
        if (SUCCEEDED(result)) *value = com::FromText(text).Detach();
        return result;
    });
}

HRESULT MapiReader::GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) {
    if (value == nullptr) return E_POINTER;
    *value = nullptr;
    if (maxChars < 0) return E_INVALIDARG;
    return CountedMethod(L"GetStringPropertyLimited", [&] {
        std::wstring text;
        const HRESULT result = Read(item, tag, text);
        if (SUCCEEDED(result)) *value = com::NewBstr(text.substr(0, static_cast<size_t>(maxChars)));
        return result;
    });
}

}  // namespace beacon::standin
