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

/// Base of every object that this binary serves: QueryInterface for these interfaces (the first one is the object's
/// identity), reference counting from 0 (make it with MakeObject), and the binary stays loaded while the object lives.
template <class... Interfaces>
class Counted : public Interfaces... {
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = Face(id);
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

    /// References held from outside and inside; for tests and diagnostics.
    ULONG References() const { return static_cast<ULONG>(count_); }

protected:
    /// Runs before destruction, with the count held up, so that it may hand out references again.
    virtual void Final() noexcept {}

    /// The object as the interface of this id, without a new reference; null when it does not serve that.
    virtual void* Face(REFIID id) noexcept {
        if (id == IID_IUnknown) return static_cast<First*>(this);
        void* face = nullptr;
        (void)((id == __uuidof(Interfaces) && (face = static_cast<Interfaces*>(this)) != nullptr) || ...);
        return face;
    }

private:
    using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

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
