#pragma once

#include <wrl/client.h>

#include <utility>

#include "com/error.h"
#include "com/module.h"

namespace beacon::com {

using Microsoft::WRL::ComPtr;

/// Type information of one interface, from a type library embedded in this binary as resource number `library`.
/// Throws when the resource or the interface is missing.
ComPtr<ITypeInfo> EmbeddedTypeInfo(int library, REFIID interfaceId);

/// The late-bound face of a dual interface: names and calls go through the type information.
HRESULT TypeInfoGetIDs(int library, REFIID id, LPOLESTR* names, UINT count, DISPID* members) noexcept;
HRESULT TypeInfoInvoke(int library, REFIID id, void* object, DISPID member, WORD flags, DISPPARAMS* parameters,
                       VARIANT* value, EXCEPINFO* info, UINT* wrongArgument) noexcept;

/// Base of an object with one dual interface: reference counting from 0 (make it with MakeObject), QueryInterface for
/// IUnknown, IDispatch and the interface, and IDispatch by type information. `Final` runs before destruction, with the
/// count held up, so that it may hand out references again.
template <class Interface, int Library>
class Dual : public Interface {
public:
    Dual() = default;
    Dual(const Dual&) = delete;
    Dual& operator=(const Dual&) = delete;
    virtual ~Dual() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface)) {
            *object = static_cast<Interface*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&count_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = InterlockedDecrement(&count_);
        if (left == 0) {
            count_ = kDying;
            Final();
            delete this;
        }
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }

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

    /// References held from outside and inside; for tests and diagnostics.
    ULONG References() const { return static_cast<ULONG>(count_); }

protected:
    virtual void Final() noexcept {}

private:
    // Far above any real count, so that references taken and released during Final do not end the object twice.
    static constexpr LONG kDying = 0x40000000;

    LONG count_ = 0;
    KeepsModule keeps_;
};

template <class Class, class... Arguments>
ComPtr<Class> MakeObject(Arguments&&... arguments) {
    return ComPtr<Class>(new Class(std::forward<Arguments>(arguments)...));
}

}  // namespace beacon::com
