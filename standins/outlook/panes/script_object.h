#pragma once

#include <windows.h>

#include <oleauto.h>

#include "com/counted.h"
#include "com/out_values.h"
#include "common/call_points.h"
#include "common/member_table.h"

namespace beacon::standin {

/// Base of an object of the HTML viewer: used from any thread by the names of its members, which are all there before
/// it is handed out. The first interface is an IDispatch.
template <class... Interfaces>
class ScriptObject : public com::Counted<Interfaces...>, public MemberTable {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return com::Give(count, 0); }

    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) override {
        const CallPoint call([&] { return std::wstring(L"HTML.GetIDsOfNames ") + names[0]; });
        return call.Fails() ? call.Result() : FindMembers(names, count, members);
    }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument) override {
        if (parameters == nullptr) return E_INVALIDARG;
        const CallPoint call([&] { return L"HTML.Invoke " + MemberName(member); });
        if (call.Fails()) return call.Result();
        return CallMember(member, flags, *parameters, result, info, wrongArgument);
    }
};

}  // namespace beacon::standin
