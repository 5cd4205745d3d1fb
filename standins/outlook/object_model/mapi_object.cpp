#include "outlook/object_model/mapi_object.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "com/error.h"
#include "com/text.h"
#include "outlook/object_model/mapi_object_base.h"

namespace beacon::standin {
namespace {

constexpr size_t kLargestValue = 4096;  // bytes

struct Property {
    ULONG id;
    std::wstring ItemData::*field;
};

constexpr ULONG kEmail = 0x8005;  // an id that the store assigns to a named property

constexpr Property kProperties[] = {
    {0x1000, &ItemData::body},          {0x0037, &ItemData::subject},    {0x0C1A, &ItemData::senderName},
    {0x0C1F, &ItemData::senderAddress}, {0x0040, &ItemData::receivedBy}, {0x0E04, &ItemData::to},
    {0x3001, &ItemData::fullName},      {0x3A06, &ItemData::firstName},  {0x3A11, &ItemData::lastName},
    {0x3A16, &ItemData::company},       {0x3A17, &ItemData::jobTitle},   {kEmail, &ItemData::email},
};

/// Outlook's name for a contact's first e-mail address.
bool IsEmail(const MAPINAMEID& name) {
    constexpr GUID kAddressNames = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    return name.lpguid != nullptr && *name.lpguid == kAddressNames && name.ulKind == MNID_ID && name.Kind.lID == 0x8083;
}

/// A function of MAPI; null if there is none.
template <class Function>
Function* MapiFunction(const char* name) {
    static const HMODULE library = LoadLibraryW(L"mapi32.dll");
    if (library == nullptr) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

/// MAPI memory; null without MAPI.
void* Allocate(size_t size) {
    using Function = SCODE WINAPI(ULONG, void**);
    static const auto allocate = MapiFunction<Function>("MAPIAllocateBuffer");
    void* memory = nullptr;
    if (allocate == nullptr || FAILED(allocate(static_cast<ULONG>(size), &memory))) return nullptr;
    return memory;
}

class MapiObject final : public MapiObjectBase {
public:
    explicit MapiObject(Item& item) : item_(item), held_(&item) {}

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG, ULONG* count, LPSPropValue* values) override {
        if (tags == nullptr || count == nullptr || values == nullptr) return E_INVALIDARG;
        return com::Method([&] { return GiveValues(*tags, *count, *values); });
    }

    STDMETHODIMP OpenProperty(ULONG tag, LPCIID id, ULONG, ULONG, LPUNKNOWN* object) override {
        if (id == nullptr || object == nullptr) return E_INVALIDARG;
        *object = nullptr;
        if (*id != IID_IStream) return E_NOINTERFACE;
        return com::Method([&] {
            const std::optional<std::string> bytes = Bytes(tag);
            if (!bytes) return MAPI_E_NOT_FOUND;
            com::ComPtr<IStream> stream;
            com::Check(CreateStreamOnHGlobal(nullptr, TRUE, &stream));
            com::Check(stream->Write(bytes->data(), static_cast<ULONG>(bytes->size()), nullptr));
            com::Check(stream->Seek({}, STREAM_SEEK_SET, nullptr));
            *object = stream.Detach();
            return S_OK;
        });
    }

    STDMETHODIMP GetPropList(ULONG, LPSPropTagArray* tags) override {
        if (tags == nullptr) return E_INVALIDARG;
        *tags = static_cast<LPSPropTagArray>(Allocate(sizeof(SPropTagArray) + sizeof kProperties));
        if (*tags == nullptr) return MAPI_E_NOT_ENOUGH_MEMORY;
        (*tags)->cValues = 0;
        for (const Property& property : kProperties)
            if (Has(property)) (*tags)->aulPropTag[(*tags)->cValues++] = PROP_TAG(PT_UNICODE, property.id);
        return S_OK;
    }

    STDMETHODIMP GetIDsFromNames(ULONG count, LPMAPINAMEID* names, ULONG, LPSPropTagArray* tags) override {
        if (tags == nullptr) return E_INVALIDARG;
        *tags = nullptr;
        if (count == 0 || names == nullptr) return MAPI_E_TOO_BIG;  // a request for all named properties
        *tags = static_cast<LPSPropTagArray>(Allocate(CbNewSPropTagArray(count)));
        if (*tags == nullptr) return MAPI_E_NOT_ENOUGH_MEMORY;
        (*tags)->cValues = count;
        bool complete = true;
        for (ULONG i = 0; i < count; ++i) {
            const bool known = names[i] != nullptr && IsEmail(*names[i]);
            (*tags)->aulPropTag[i] = known ? PROP_TAG(PT_UNSPECIFIED, kEmail) : PROP_TAG(PT_ERROR, 0);
            complete = complete && known;
        }
        return complete ? S_OK : MAPI_W_ERRORS_RETURNED;
    }

    STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR* error) override {
        if (error != nullptr) *error = nullptr;  // no further information
        return S_OK;
    }

private:
    bool Has(const Property& property) const { return item_.mapi && !(item_.Data().*property.field).empty(); }

    /// The text in the encoding of the tag's type, without terminator; nullopt if there is none.
    std::optional<std::string> Bytes(ULONG tag) const {
        for (const Property& property : kProperties) {
            if (property.id != PROP_ID(tag) || !Has(property)) continue;
            const std::wstring& text = item_.Data().*property.field;
            if (PROP_TYPE(tag) == PT_STRING8) return com::ToAnsi(text);
            if (PROP_TYPE(tag) != PT_UNICODE) return std::nullopt;
            return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
        }
        return std::nullopt;
    }

    /// Returns values and texts in one block.
    HRESULT GiveValues(const SPropTagArray& tags, ULONG& count, LPSPropValue& values) const {
        count = 0;
        values = nullptr;
        size_t size = tags.cValues * sizeof(SPropValue);
        std::vector<std::optional<std::string>> texts;
        for (ULONG i = 0; i < tags.cValues; ++i) {
            texts.push_back(Bytes(tags.aulPropTag[i]));
            if (texts.back() && texts.back()->size() <= kLargestValue) size += texts.back()->size() + sizeof(wchar_t);
        }
        values = static_cast<LPSPropValue>(Allocate(size));
        if (values == nullptr) return MAPI_E_NOT_ENOUGH_MEMORY;
        std::memset(values, 0, size);
        char* place = reinterpret_cast<char*>(values + tags.cValues);
        bool complete = true;
        for (; count < tags.cValues; ++count) {
            const ULONG tag = tags.aulPropTag[count];
            const auto& text = texts[count];
            if (text && text->size() <= kLargestValue) {
                values[count].ulPropTag = tag;
                values[count].Value.lpszA = place;
                place = std::copy(text->begin(), text->end(), place) + sizeof(wchar_t);
            } else {
                values[count].ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
                values[count].Value.err = text ? MAPI_E_NOT_ENOUGH_MEMORY : MAPI_E_NOT_FOUND;
                complete = false;
            }
        }
        return complete ? S_OK : MAPI_W_ERRORS_RETURNED;
    }

    Item& item_;
    const com::ComPtr<IDispatch> held_;
};

}  // namespace

_variant_t MapiObjectOf(Item& item) {
    return _variant_t(static_cast<IUnknown*>(com::MakeObject<MapiObject>(item).Get()));
}

}  // namespace beacon::standin
