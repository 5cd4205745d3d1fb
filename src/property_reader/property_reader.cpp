#include "property_reader/property_reader.h"

#include <algorithm>
#include <utility>

#include "com/mapi.h"
#include "com/object.h"
#include "property_reader/property_text.h"

namespace beacon {
namespace {

using com::ComPtr;

constexpr long kLongestText = 1 << 20;  // characters; an item that claims more costs no more memory than this

/// The object below the item.
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
    return PropertyText(*MapiObjectOf(item).Get(), mapiTag, length);
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
