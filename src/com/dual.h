#pragma once

#include <windows.h>

#include <oleauto.h>

#include "com/counted.h"
#include "com/error.h"
#include "com/out_values.h"

namespace beacon::com {

/// Type information of one interface, from a type library embedded in this binary as resource number `library` (1 to
/// 9). Throws when the resource or the interface is missing.
ComPtr<ITypeInfo> EmbeddedTypeInfo(int library, REFIID interfaceId);

/// The late-bound face of a dual interface: names and calls go through the type information.
HRESULT TypeInfoGetIDs(int library, REFIID id, LPOLESTR* names, UINT count, DISPID* members) noexcept;
HRESULT TypeInfoInvoke(int library, REFIID id, void* object, DISPID member, WORD flags, DISPPARAMS* parameters,
                       VARIANT* value, EXCEPINFO* info, UINT* wrongArgument) noexcept;

/// An object's second face, by which it vouches for the error information that its members leave. A part of the object,
/// not a base: with two bases that are IUnknown the object would not convert to it.
class ErrorVoucher final : public ISupportErrorInfo {
public:
    ErrorVoucher(IUnknown& owner, REFIID members) : owner_(owner), members_(members) {}

    STDMETHODIMP QueryInterface(REFIID id, void** object) override { return owner_.QueryInterface(id, object); }

    STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }

    STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == members_ ? S_OK : S_FALSE; }

private:
    IUnknown& owner_;
    const IID members_;
};

/// Base of an object with one dual interface: IDispatch goes by type information, and the error information that
/// Method leaves on the thread is vouched for, so that callers show its text.
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
    void* Face(REFIID id) noexcept override {
        if (id == IID_IDispatch) return static_cast<Interface*>(this);
        if (id == IID_ISupportErrorInfo) return &voucher_;
        return Counted<Interface>::Face(id);
    }

private:
    ErrorVoucher voucher_{*this, __uuidof(Interface)};
};

}  // namespace beacon::com
