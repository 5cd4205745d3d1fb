#pragma once

#include <windows.h>

#include <oleauto.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "com/object.h"

namespace beacon::standin {

/// Thrown by handlers and by CallArguments to make Invoke return a plain result (DISP_E_...). Any other exception
/// becomes DISP_E_EXCEPTION with its number and description.
struct CallError {
    HRESULT result;
    UINT argument = 0;  // natural order, 0-based; reported for type errors
};

/// The arguments of one call in natural order. Values are converted as Automation does. Throws CallError:
/// DISP_E_TYPEMISMATCH if a conversion fails, DISP_E_PARAMNOTOPTIONAL for a missing or omitted argument.
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

/// The named members of a late-bound object, for its IDispatch.
class MemberTable {
public:
    using Handler = std::function<_variant_t(const CallArguments&)>;
    using Getter = std::function<_variant_t()>;
    using Setter = std::function<void(const CallArguments&)>;  // the new value is the last argument

    /// Names are case-insensitive. If members share a DISPID, a call uses the first. Named arguments are not supported.
    void AddMethod(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler);
    /// A member that can be called as a method and as a property.
    void AddEither(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler);
    /// A method without result that ignores its arguments.
    void AddAction(DISPID id, const wchar_t* name, UINT most, std::function<void()> action);
    /// Without `put` the property is read-only.
    void AddProperty(DISPID id, const wchar_t* name, Getter get, Setter put = {});

    // The implementations of GetIDsOfNames and Invoke.
    HRESULT FindMembers(LPOLESTR* names, UINT count, DISPID* members) const;
    /// The name of the first member with this id; the number itself if there is none.
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
