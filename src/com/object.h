#pragma once

#include <comdef.h>
#include <wrl/client.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "com/error.h"
#include "com/text.h"

namespace beacon::com {

using Microsoft::WRL::ComPtr;

/// The name of a member of an object's: a constant of the program, so that it may be kept.
struct MemberName {
    consteval MemberName(const wchar_t* constant) : text(constant) {}

    const wchar_t* text;
};

/// A reference to an object that is used by the names of its members, as Outlook's objects are: their numbers differ
/// between Outlook versions, so the object is asked for them, and for the last few names only once. Every use of an
/// empty reference raises error 91, every failing call what the callee says.
class Object {
public:
    Object() = default;

    Object(IDispatch* object) : object_(object) {}

    explicit Object(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    explicit operator bool() const { return object_ != nullptr; }

    IDispatch* Get() const { return object_.Get(); }

    void Reset() { *this = {}; }

    /// Arguments are given in natural order. An omitted optional argument is Missing().
    _variant_t Get(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    Object GetObject(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    std::wstring GetText(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    long GetLong(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    void Put(MemberName name, const _variant_t& value) const;
    _variant_t Call(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    Object CallObject(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;

    /// The same by number; used for the default member (DISPID_VALUE).
    _variant_t Invoke(DISPID member, WORD flags, std::initializer_list<_variant_t> arguments) const;

private:
    struct Member {
        const wchar_t* name;
        DISPID number;
    };

    DISPID Find(MemberName name) const;

    // The last one found first; of this object, and so of a copy of the reference. It stands before the reference,
    // since an assignment lets go of an object, which may assign another one here.
    mutable Member known_[3] = {};
    ComPtr<IDispatch> object_;
};

/// What a variant holds, also where it only refers to it: nothing of the caller's is referred to.
_variant_t OwnCopy(const VARIANT& value);

/// Values out of variants, converted as Automation converts; raises error 13 when that cannot be done. Empty and Null
/// are the empty text, 0 and the empty reference.
std::wstring ToText(const _variant_t& value);
long ToLong(const _variant_t& value);
bool ToBool(const _variant_t& value);
Object ToObject(const _variant_t& value);

_variant_t FromText(std::wstring_view text);

inline _variant_t FromBool(bool value) { return _variant_t(value); }

inline _variant_t FromLong(long value) { return _variant_t(value); }

_variant_t FromObject(IDispatch* object);

/// An optional argument that is left out.
_variant_t Missing();

/// Raises error 91 when the pointer is null: the typed counterpart of using an empty reference.
template <class Pointer>
Pointer&& Need(Pointer&& pointer) {
    if (!pointer) Raise(kNoObject);
    return std::forward<Pointer>(pointer);
}

}  // namespace beacon::com
