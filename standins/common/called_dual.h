#pragma once

#include <string>

#include "com/dual.h"
#include "common/call_points.h"

namespace beacon::standin {

/// A dual object of a stand-in whose calls are counted. Derived classes begin their own members with Counted().
template <class Interface, int Library>
class CalledDual : public com::Dual<Interface, Library> {
public:
    using Base = com::Dual<Interface, Library>;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const CallPoint call([&] { return kind_ + L".QueryInterface " + ShortId(id); });
        if (!call.Fails()) return Base::QueryInterface(id, object);
        if (object != nullptr) *object = nullptr;
        return call.Result();
    }

    STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* members) override {
        const CallPoint call([&] { return kind_ + L".GetIDsOfNames " + names[0]; });
        return call.Fails() ? call.Result() : Base::GetIDsOfNames(id, names, count, locale, members);
    }

    STDMETHODIMP Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument) override {
        const CallPoint call([&] { return kind_ + L".Invoke " + std::to_wstring(member); });
        return call.Fails() ? call.Result()
                            : Base::Invoke(member, id, locale, flags, parameters, result, info, wrongArgument);
    }

protected:
    explicit CalledDual(std::wstring kind) : kind_(std::move(kind)) {}

    /// The body of a member, unless the call is made to fail.
    template <class Body>
    HRESULT Counted(const wchar_t* member, Body&& body, const void* caller = RETURN_ADDRESS()) {
        const com::ComPtr<CalledDual> alive(this);
        const CallPoint call([&] { return kind_ + L"." + member; }, caller);
        return call.Fails() ? call.Result() : body();
    }

    template <class Body>
    HRESULT CountedMethod(const wchar_t* member, Body&& body, const void* caller = RETURN_ADDRESS()) {
        return Counted(
            member, [&] { return com::Method(body); }, caller);
    }

private:
    const std::wstring kind_;
};

}  // namespace beacon::standin
