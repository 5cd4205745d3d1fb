#include "com/object.h"

#include <vector>

namespace beacon::com {

_variant_t Object::Use(MemberName name, WORD flags, std::initializer_list<_variant_t> arguments) const {
    if (object_ == nullptr) Raise(kNoObject);
    const Object alive = *this;  // a call may change this reference
    DISPID member = DISPID_UNKNOWN;
    LPOLESTR text = const_cast<LPOLESTR>(name.text);
    Check(alive.object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member));
    return alive.Invoke(member, flags, arguments);
}

_variant_t Object::Invoke(DISPID member, WORD flags, std::initializer_list<_variant_t> arguments) const {
    if (object_ == nullptr) Raise(kNoObject);
    const ComPtr<IDispatch> alive = object_;  // the call may drop this reference
    std::vector<VARIANT> reversed;
    reversed.reserve(arguments.size());
    for (auto argument = std::rbegin(arguments); argument != std::rend(arguments); ++argument)
        reversed.push_back(*argument);  // not copied: the list owns the values
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    DISPID put = DISPID_PROPERTYPUT;
    if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    _variant_t value;
    EXCEPINFO info{};
    UINT wrongArgument = 0;
    const HRESULT result =
        alive->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &value, &info, &wrongArgument);
    if (FAILED(result)) RaiseException(result, info);
    return value;
}

_variant_t Object::Get(MemberName name, std::initializer_list<_variant_t> arguments) const {
    // A member can be a method in one Outlook version and a property in another.
    return Use(name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, arguments);
}

Object Object::GetObject(MemberName name, std::initializer_list<_variant_t> arguments) const {
    return ToObject(Get(name, arguments));
}

std::wstring Object::GetText(MemberName name, std::initializer_list<_variant_t> arguments) const {
    return ToText(Get(name, arguments));
}

long Object::GetLong(MemberName name, std::initializer_list<_variant_t> arguments) const {
    return ToLong(Get(name, arguments));
}

void Object::Put(MemberName name, const _variant_t& value) const { Use(name, DISPATCH_PROPERTYPUT, {value}); }

_variant_t Object::Call(MemberName name, std::initializer_list<_variant_t> arguments) const {
    return Use(name, DISPATCH_METHOD, arguments);
}

Object Object::CallObject(MemberName name, std::initializer_list<_variant_t> arguments) const {
    return ToObject(Call(name, arguments));
}

namespace {

_variant_t Converted(const _variant_t& value, VARTYPE type) {
    _variant_t result;
    Check(VariantChangeTypeEx(&result, const_cast<_variant_t*>(&value), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, type));
    return result;
}

bool IsNothing(const _variant_t& value) { return value.vt == VT_EMPTY || value.vt == VT_NULL || value.vt == VT_ERROR; }

}  // namespace

std::wstring ToText(const _variant_t& value) {
    if (IsNothing(value)) return {};
    if (value.vt == VT_BSTR) return ToText(value.bstrVal);
    return ToText(Converted(value, VT_BSTR).bstrVal);
}

long ToLong(const _variant_t& value) { return IsNothing(value) ? 0 : Converted(value, VT_I4).lVal; }

_variant_t OwnCopy(const VARIANT& value) {
    _variant_t copy;
    Check(VariantCopyInd(&copy, const_cast<VARIANT*>(&value)));
    return copy;
}

Object ToObject(const _variant_t& value) {
    if (IsNothing(value)) return {};
    if ((value.vt & VT_BYREF) != 0) return ToObject(OwnCopy(value));
    if (value.vt == VT_DISPATCH) return Object(value.pdispVal);
    if (value.vt == VT_UNKNOWN && value.punkVal != nullptr) {
        ComPtr<IDispatch> object;
        Check(value.punkVal->QueryInterface(IID_PPV_ARGS(&object)));
        return Object(std::move(object));
    }
    Raise(kObjectRequired);
}

_variant_t FromText(std::wstring_view text) {
    _variant_t value;
    value.bstrVal = NewBstr(text);
    value.vt = VT_BSTR;
    return value;
}

_variant_t FromObject(IDispatch* object) {
    _variant_t value;
    value.vt = VT_DISPATCH;
    value.pdispVal = object;
    if (object != nullptr) object->AddRef();
    return value;
}

_variant_t Missing() {
    _variant_t value;
    value.vt = VT_ERROR;
    value.scode = DISP_E_PARAMNOTFOUND;
    return value;
}

}  // namespace beacon::com
