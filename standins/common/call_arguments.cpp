#include "common/member_table.h"

namespace beacon::standin {
namespace {

const VARIANT& Follow(const VARIANT& value) {
    return value.vt == (VT_VARIANT | VT_BYREF) && value.pvarVal != nullptr ? *value.pvarVal : value;
}

}  // namespace

bool CallArguments::Has(UINT index) const {
    if (index >= Count()) return false;
    const VARIANT& value = Follow(parameters_.rgvarg[Count() - 1 - index]);
    return !(value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND);
}

_variant_t CallArguments::Value(UINT index) const {
    if (!Has(index)) throw CallError{DISP_E_PARAMNOTOPTIONAL, index};
    _variant_t value;
    const HRESULT result = VariantCopyInd(&value, &parameters_.rgvarg[Count() - 1 - index]);
    if (FAILED(result)) throw CallError{result, index};
    return value;
}

_variant_t CallArguments::Converted(UINT index, VARTYPE type) const {
    const _variant_t value = Value(index);
    _variant_t converted;
    const HRESULT result =
        VariantChangeTypeEx(&converted, const_cast<_variant_t*>(&value), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, type);
    if (FAILED(result)) throw CallError{result, index};
    return converted;
}

std::wstring CallArguments::Text(UINT index) const { return com::ToText(Converted(index, VT_BSTR).bstrVal); }

std::wstring CallArguments::Text(UINT index, std::wstring_view otherwise) const {
    return Has(index) ? Text(index) : std::wstring(otherwise);
}

long CallArguments::Long(UINT index) const { return Converted(index, VT_I4).lVal; }

long CallArguments::Long(UINT index, long otherwise) const { return Has(index) ? Long(index) : otherwise; }

bool CallArguments::Bool(UINT index) const { return Converted(index, VT_BOOL).boolVal != VARIANT_FALSE; }

bool CallArguments::Bool(UINT index, bool otherwise) const { return Has(index) ? Bool(index) : otherwise; }

com::ComPtr<IDispatch> CallArguments::Object(UINT index) const {
    const _variant_t value = Value(index);
    if (value.vt == VT_EMPTY || value.vt == VT_NULL) return nullptr;
    com::ComPtr<IDispatch> object;
    if (value.vt == VT_DISPATCH) {
        object = value.pdispVal;
    } else if (value.vt == VT_UNKNOWN) {
        if (value.punkVal != nullptr && FAILED(value.punkVal->QueryInterface(IID_PPV_ARGS(&object))))
            throw CallError{DISP_E_TYPEMISMATCH, index};
    } else {
        throw CallError{DISP_E_TYPEMISMATCH, index};
    }
    return object;
}

}  // namespace beacon::standin
