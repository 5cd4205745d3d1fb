#pragma once

#include <string>

#include "com/object.h"
#include "com/out_values.h"

namespace beacon {

/// Values in and out of the observing objects' COM interfaces.

/// By-reference arguments; a null pointer stands for the empty value.
inline com::Object ObjectOf(IDispatch** object) { return object == nullptr ? com::Object() : com::Object(*object); }

inline std::wstring TextOf(BSTR* text) { return text == nullptr ? std::wstring() : com::ToText(*text); }

inline short ValueOf(const short* value) { return value == nullptr ? short{0} : *value; }

/// An in-and-out argument: taken at construction, given back at the end of the call.
template <class Value>
struct ByReference;

template <>
struct ByReference<bool> {
    explicit ByReference(VARIANT_BOOL* target)
        : value(target != nullptr && *target != VARIANT_FALSE), target_(target) {}

    ~ByReference() { com::GiveBool(target_, value); }

    bool value;

private:
    VARIANT_BOOL* target_;
};

template <>
struct ByReference<std::wstring> {
    explicit ByReference(BSTR* target) : value(TextOf(target)), before_(value), target_(target) {}

    ~ByReference() {
        if (target_ == nullptr || value == before_) return;
        BSTR changed = nullptr;
        if (FAILED(com::GiveText(&changed, value))) return;
        SysFreeString(*target_);
        *target_ = changed;
    }

    std::wstring value;

private:
    std::wstring before_;
    BSTR* target_;
};

}  // namespace beacon
