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

/// The name of an object's member: a constant of the program.
struct MemberName {
    consteval MemberName(const wchar_t* constant) : text(constant) {}

    const wchar_t* text;
};

/// A reference to an object whose members are used by name, as Outlook's are: the object is asked for the number of the
/// name at each use, since numbers differ between objects and versions. Any use of an empty reference raises error 91,
/// and a failing call raises the callee's error.
class Object {
public:
    Object() = default;

    Object(IDispatch* object) : object_(object) {}

    explicit Object(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    explicit operator bool() const { return object_ != nullptr; }

    IDispatch* Get() const { return object_.Get(); }

    void Reset() { *this = {}; }

    /// Arguments are in natural order. Missing() stands for an omitted optional argument.
    _variant_t Get(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    Object GetObject(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    std::wstring GetText(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    long GetLong(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    void Put(MemberName name, const _variant_t& value) const;
    _variant_t Call(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;
    Object CallObject(MemberName name, std::initializer_list<_variant_t> arguments = {}) const;

    /// Uses a member by number, for example DISPID_VALUE, the default member.
    _variant_t Invoke(DISPID member, WORD flags, std::initializer_list<_variant_t> arguments) const;

private:
    _variant_t Use(MemberName name, WORD flags, std::initializer_list<_variant_t> arguments) const;

    ComPtr<IDispatch> object_;
};

/// A copy of a variant's value, without references to the caller's memory.
_variant_t OwnCopy(const VARIANT& value);

/// Convert as Automation does; raise error 13 if there is no conversion. Empty, Null and missing arguments give the
/// empty text, 0 and the empty reference.
std::wstring ToText(const _variant_t& value);
long ToLong(const _variant_t& value);
Object ToObject(const _variant_t& value);

_variant_t FromText(std::wstring_view text);

inline _variant_t FromBool(bool value) { return _variant_t(value); }

inline _variant_t FromLong(long value) { return _variant_t(value); }

_variant_t FromObject(IDispatch* object);

/// An omitted optional argument.
_variant_t Missing();

/// Returns the pointer. Raises error 91 if it is null.
template <class Pointer>
Pointer&& Need(Pointer&& pointer) {
    if (!pointer) Raise(kNoObject);
    return std::forward<Pointer>(pointer);
}

}  // namespace beacon::com
