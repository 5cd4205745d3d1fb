#pragma once

#include <windows.h>

#include <oleauto.h>

#include "com/counted.h"
#include "com/error.h"
#include "com/out_values.h"

namespace beacon::com {

/// The type information of an interface, from the type library that this binary has as resource number `library` (1 to
/// 9). Raises an error if either is missing.
ComPtr<ITypeInfo> EmbeddedTypeInfo(int library, REFIID interfaceId);

/// IDispatch::GetIDsOfNames and Invoke of a dual interface, by its type information.
HRESULT TypeInfoGetIDs(int library, REFIID id, LPOLESTR* names, UINT count, DISPID* members) noexcept;
HRESULT TypeInfoInvoke(int library, REFIID id, void* object, DISPID member, WORD flags, DISPPARAMS* parameters,
                       VARIANT* value, EXCEPINFO* info, UINT* wrongArgument) noexcept;

/// Says that the members of one interface leave error information on the thread. A member of the object and not a base,
/// because an object with two IUnknown bases does not convert to IUnknown.
class ErrorInfoSupport final : public ISupportErrorInfo {
public:
    ErrorInfoSupport(IUnknown& owner, REFIID members) : owner_(owner), members_(members) {}

    STDMETHODIMP QueryInterface(REFIID id, void** object) override { return owner_.QueryInterface(id, object); }

    STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }

    STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == members_ ? S_OK : S_FALSE; }

private:
    IUnknown& owner_;
    const IID members_;
};

/// Base of an object with one dual interface. IDispatch uses type information, and ISupportErrorInfo tells callers that
/// the error information left by Method belongs to the failed call.
template <class Interface, int Library>
class Dual : public Counted<Interface> {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return Give(count, 1); }

    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        return Method([&] { *info = EmbeddedTypeInfo(Library, __uuidof(Interface)).Detach(); });
    }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) override {
        return TypeInfoGetIDs(Library, __uuidof(Interface), names, count, members);
    }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument) override {
        return TypeInfoInvoke(Library, __uuidof(Interface), static_cast<Interface*>(this), member, flags, parameters,
                              result, info, wrongArgument);
    }

protected:
    void* FindInterface(REFIID id) noexcept override {
        if (id == IID_IDispatch) return static_cast<Interface*>(this);
        if (id == IID_ISupportErrorInfo) return &errorInfoSupport_;
        return Counted<Interface>::FindInterface(id);
    }

private:
    ErrorInfoSupport errorInfoSupport_{*this, __uuidof(Interface)};
};

}  // namespace beacon::com
