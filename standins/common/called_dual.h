#pragma once

#include <string>

#include "com/dual.h"
#include "common/call_points.h"

namespace beacon::standin {

/// Base of a stand-in's dual object that counts its calls. Derived classes run their members in Counted().
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
        const HRESULT answer = call.Answer(
            [&] { return Base::Invoke(member, id, locale, flags, parameters, result, info, wrongArgument); });
        if (call.Fails() && result != nullptr) VariantClear(result);
        return answer;
    }

protected:
    explicit CalledDual(std::wstring kind) : kind_(std::move(kind)) {}

    /// Runs the body of a member unless the call fails. For members that return values: they fail before their effect.
    template <class Body>
    HRESULT Counted(const wchar_t* member, Body&& body, const void* caller = RETURN_ADDRESS()) {
        const com::ComPtr<CalledDual> alive(this);
        const CallPoint call([&] { return kind_ + L"." + member; }, caller);
        return call.Fails() ? call.Result() : body();
    }

    /// The same for members that return nothing; these can also fail after their effect.
    template <class Body>
    HRESULT CountedMethod(const wchar_t* member, Body&& body, const void* caller = RETURN_ADDRESS()) {
        const com::ComPtr<CalledDual> alive(this);
        const CallPoint call([&] { return kind_ + L"." + member; }, caller);
        return call.Answer([&] { return com::Method(body); });
    }

private:
    const std::wstring kind_;
};

}  // namespace beacon::standin
