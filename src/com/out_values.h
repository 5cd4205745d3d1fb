#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>
#include <type_traits>

#include "com/error.h"
#include "com/text.h"

namespace beacon::com {

/// These set the [out] parameter of a COM method and return its result: E_POINTER for a null target, else S_OK.
/// GiveText returns E_OUTOFMEMORY without changing the target if there is no memory for the text.

template <class Value>
HRESULT Give(Value* target, std::type_identity_t<Value> value) noexcept {
    if (target == nullptr) return E_POINTER;
    *target = value;
    return S_OK;
}

inline HRESULT GiveBool(VARIANT_BOOL* target, bool value) noexcept {
    return Give(target, value ? VARIANT_TRUE : VARIANT_FALSE);
}

/// Gives a new BSTR, owned by the method's caller.
inline HRESULT GiveText(BSTR* target, std::wstring_view text) noexcept {
    if (target == nullptr) return E_POINTER;
    return Method([&] { *target = NewBstr(text); });
}

/// Gives a new reference to the object, or null.
template <class Interface>
HRESULT GiveObject(Interface** target, std::type_identity_t<Interface>* object) noexcept {
    if (target == nullptr) return E_POINTER;
    *target = object;
    if (object != nullptr) object->AddRef();
    return S_OK;
}

/// The reverse: how the put accessor of a plain property takes its value.
inline HRESULT Take(bool& member, VARIANT_BOOL value) noexcept {
    member = value != VARIANT_FALSE;
    return S_OK;
}

inline HRESULT Take(long& member, long value) noexcept {
    member = value;
    return S_OK;
}

inline HRESULT Take(std::wstring& member, BSTR value) noexcept {
    return Method([&] { member = ToText(value); });
}

/// The same for a reference that only the object itself may set: a caller can take it away with null.
template <class Drop>
HRESULT TakeNull(const void* value, Drop&& drop) noexcept {
    if (value != nullptr) return E_INVALIDARG;
    drop();
    return S_OK;
}

}  // namespace beacon::com
