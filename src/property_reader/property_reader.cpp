#include "property_reader/property_reader.h"

#include <algorithm>
#include <utility>

#include "com/mapi.h"
#include "com/object.h"
#include "property_reader/property_text.h"

namespace beacon {
namespace {

using com::ComPtr;

constexpr long kLongestText = 1 << 20;  // in characters; bounds the memory that an item can take

// Property identifiers.
constexpr ULONG kReceivedByName = 0x0040;
constexpr ULONG kAskedForReceivedByName = 0x004E;  // callers use this one, which in MAPI is a time
constexpr ULONG kEmailAddress = 0x3003;

// Outlook stores the first e-mail address of a contact as a named property.
constexpr GUID kAddressNames = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr LONG kFirstEmailAddress = 0x8083;

ComPtr<IMAPIProp> MapiObjectOf(const VARIANT& item) {
    _variant_t value;
    com::Check(VariantCopyInd(&value, const_cast<VARIANT*>(&item)));
    const _variant_t object = com::ToObject(value).Get(L"MAPIOBJECT");
    if ((object.vt != VT_UNKNOWN && object.vt != VT_DISPATCH) || object.punkVal == nullptr)
        com::Raise(com::kObjectRequired);
    ComPtr<IMAPIProp> properties;
    com::Check(object.punkVal->QueryInterface(IID_PPV_ARGS(&properties)));
    return com::Need(properties);
}

}  // namespace

std::wstring PropertyReader::Read(const VARIANT& item, long tag, long most) const {
    if (!initialized_) com::Check(MAPI_E_NOT_INITIALIZED);
    const auto mapiTag = static_cast<ULONG>(tag);
    const ULONG type = PROP_TYPE(mapiTag);
    if (type != PT_STRING8 && type != PT_UNICODE) com::Check(E_INVALIDARG);
    const auto length = static_cast<size_t>(std::min(most, kLongestText));
    const ComPtr<IMAPIProp> object = MapiObjectOf(item);
    const ULONG id = PROP_ID(mapiTag) == kAskedForReceivedByName ? kReceivedByName : PROP_ID(mapiTag);
    std::wstring text = PropertyText(*object.Get(), id, length);
    if (!text.empty() || id != kEmailAddress) return text;
    const ULONG named = NamedProperty(*object.Get(), kAddressNames, kFirstEmailAddress);
    return named == 0 ? text : PropertyText(*object.Get(), named, length);
}

STDMETHODIMP PropertyReader::GetStringProperty(VARIANT item, long tag, VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    VariantInit(value);
    const ComPtr<IMAPIPropWrapper> alive(this);
    return com::Method([&] { *value = com::FromText(Read(item, tag, kLongestText)).Detach(); });
}

STDMETHODIMP PropertyReader::Initialize() {
    initialized_ = true;
    return S_OK;
}

STDMETHODIMP PropertyReader::Uninitialize() {
    return std::exchange(initialized_, false) ? S_OK : MAPI_E_NOT_INITIALIZED;
}

STDMETHODIMP PropertyReader::GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) {
    if (value == nullptr) return E_POINTER;
    *value = nullptr;
    if (maxChars < 0) return E_INVALIDARG;
    const ComPtr<IMAPIPropWrapper> alive(this);
    return com::Method([&] { *value = com::NewBstr(Read(item, tag, maxChars)); });
}

}  // namespace beacon
