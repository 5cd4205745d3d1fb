#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include <tuple>
#include <type_traits>
#include <utility>

#include "com/module.h"

namespace beacon::com {

using Microsoft::WRL::ComPtr;

/// Base of every COM object in this binary. QueryInterface knows the listed interfaces; the first is the identity. The
/// reference count starts at 0: create objects with MakeObject. The binary stays loaded while an object lives.
template <class... Interfaces>
class Counted : public Interfaces... {
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = FindInterface(id);
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
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

    /// For tests and diagnostics.
    ULONG References() const { return static_cast<ULONG>(count_); }

protected:
    /// Runs before the destructor. References to this object may be taken and released in it.
    virtual void Final() noexcept {}

    /// The object as this interface, without a new reference; null if it does not have the interface.
    virtual void* FindInterface(REFIID id) noexcept {
        if (id == IID_IUnknown) return static_cast<First*>(this);
        void* found = nullptr;
        (void)((id == __uuidof(Interfaces) && (found = static_cast<Interfaces*>(this)) != nullptr) || ...);
        return found;
    }

private:
    using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

    // Far above any real count, so that references released during Final do not destroy the object again.
    static constexpr LONG kDying = 0x40000000;

    LONG count_ = 0;
    KeepsModule keeps_;
};

template <class Class, class... Arguments>
ComPtr<Class> MakeObject(Arguments&&... arguments) {
    return ComPtr<Class>(new Class(std::forward<Arguments>(arguments)...));
}

}  // namespace beacon::com
