#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cwchar>
#include <span>

#include "com/error.h"
#include "com/text.h"

namespace beacon::standin {

struct ScriptMember {
    const wchar_t* name;
    DISPID number;
};

/// Base of an object of the HTML viewer: counted from any thread, starting at 0, and readable by the names of its
/// members, none of which takes arguments. `Bare` is its interface with all methods.
template <class Bare, class Interface>
class ScriptObject : public Bare {
public:
    ScriptObject() = default;
    ScriptObject(const ScriptObject&) = delete;
    ScriptObject& operator=(const ScriptObject&) = delete;
    virtual ~ScriptObject() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface)) {
            *object = static_cast<Interface*>(this);
            AddRef();
            return S_OK;
        }
        return QueryOther(id, object);
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&count_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = InterlockedDecrement(&count_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* numbers) override {
        if (names == nullptr || numbers == nullptr || count == 0) return E_INVALIDARG;
        for (UINT i = 0; i < count; ++i) numbers[i] = DISPID_UNKNOWN;
        for (const ScriptMember& member : Members())
            if (_wcsicmp(member.name, names[0]) == 0) numbers[0] = member.number;
        return numbers[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
    }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        if ((flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET)) == 0) return DISP_E_MEMBERNOTFOUND;
        if (parameters != nullptr && parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
        VARIANT value;
        VariantInit(&value);
        const HRESULT outcome = Read(member, value);
        if (SUCCEEDED(outcome) && result != nullptr)
            *result = value;
        else
            VariantClear(&value);
        return outcome;
    }

protected:
    virtual std::span<const ScriptMember> Members() const = 0;
    /// Reads a property or runs a method; DISP_E_MEMBERNOTFOUND for other numbers.
    virtual HRESULT Read(DISPID member, VARIANT& value) = 0;

    /// Further interfaces; *object is null already.
    virtual HRESULT QueryOther(REFIID, void**) { return E_NOINTERFACE; }

private:
    LONG count_ = 0;
};

/// Answers a reading of text. The HTML viewer gives a null string for an empty one.
template <class Text>
HRESULT GiveText(BSTR* result, Text&& text) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return com::Method([&] {
        const std::wstring value = text();
        if (!value.empty()) *result = com::NewBstr(value);
    });
}

/// Answers a reading of an object; `make` returns a ComPtr to it.
template <class Interface, class Make>
HRESULT GiveObject(Interface** result, Make&& make) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return com::Method([&] { *result = make().Detach(); });
}

/// The same answers as variants; `get` is the typed reading.
template <class Get>
HRESULT TextVariant(VARIANT& value, Get&& get) {
    BSTR text = nullptr;
    const HRESULT outcome = get(&text);
    if (SUCCEEDED(outcome)) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = text;
    }
    return outcome;
}

template <class Interface, class Get>
HRESULT ObjectVariant(VARIANT& value, Get&& get) {
    Interface* object = nullptr;
    const HRESULT outcome = get(&object);
    if (SUCCEEDED(outcome)) {
        V_VT(&value) = VT_DISPATCH;
        V_DISPATCH(&value) = object;
    }
    return outcome;
}

}  // namespace beacon::standin
