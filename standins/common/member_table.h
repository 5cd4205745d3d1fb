#pragma once

#include <windows.h>

#include <oleauto.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "com/object.h"

namespace beacon::standin {

/// Thrown by a member's handler, and by CallArguments, to answer Invoke with a plain result (DISP_E_...). Anything else
/// a handler throws (com::Error, std::exception) becomes DISP_E_EXCEPTION with the error's number and description.
struct CallError {
    HRESULT result;
    UINT argument = 0;  ///< natural order, 0-based; told to the caller for type errors
};

/// The arguments of one call in natural order. An argument left out (VT_ERROR, DISP_E_PARAMNOTFOUND) or not given at
/// all is not present. Text and numbers are converted as Automation does; what cannot be converted is
/// DISP_E_TYPEMISMATCH, a needed argument that is not present is DISP_E_PARAMNOTOPTIONAL.
class CallArguments {
public:
    explicit CallArguments(const DISPPARAMS& parameters) : parameters_(parameters) {}

    UINT Count() const { return parameters_.cArgs; }

    bool Has(UINT index) const;
    _variant_t Value(UINT index) const;
    std::wstring Text(UINT index) const;
    std::wstring Text(UINT index, std::wstring_view otherwise) const;
    long Long(UINT index) const;
    long Long(UINT index, long otherwise) const;
    bool Bool(UINT index) const;
    bool Bool(UINT index, bool otherwise) const;
    /// Null for Nothing.
    com::ComPtr<IDispatch> Object(UINT index) const;

private:
    _variant_t Converted(UINT index, VARTYPE type) const;

    DISPPARAMS parameters_;
};

/// The members of a late-bound object by name, as its IDispatch answers for them.
class MemberTable {
public:
    using Handler = std::function<_variant_t(const CallArguments&)>;
    using Getter = std::function<_variant_t()>;
    using Setter = std::function<void(const CallArguments&)>;  // the new value is the last argument

    /// Names are compared without regard to case. Several names may share a DISPID; a call uses the first. Arguments
    /// cannot be given by name.
    void AddMethod(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler);
    /// A member that answers as a method and as a property, as callers of different Outlook versions ask for it.
    void AddEither(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler);
    /// A method without arguments that matter and without a result.
    void AddAction(DISPID id, const wchar_t* name, UINT most, std::function<void()> action);
    /// Without `put` the property is read-only.
    void AddProperty(DISPID id, const wchar_t* name, Getter get, Setter put = {});

    /// IDispatch's two.
    HRESULT FindMembers(LPOLESTR* names, UINT count, DISPID* members) const;
    /// The number's first member; the number itself when there is none.
    std::wstring MemberName(DISPID id) const;
    HRESULT CallMember(DISPID id, WORD flags, const DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* info,
                       UINT* wrongArgument) const;

private:
    struct Member {
        DISPID id;
        std::wstring name;
        WORD flags;
        UINT needed;
        UINT most;
        Handler call;
        Setter put;
    };

    static HRESULT Call(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument);

    std::vector<Member> members_;
};

}  // namespace beacon::standin
