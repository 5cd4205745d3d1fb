#include "common/member_table.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace beacon::standin {
namespace {

void Describe(const com::Error& error, EXCEPINFO* info) {
    if (info == nullptr) return;
    *info = {};
    info->scode = error.number < 0 ? error.number
                                   : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<WORD>(error.number));
    info->bstrDescription = SysAllocString(error.Description().data());
    info->bstrSource = SysAllocString(L"Microsoft Outlook");
}

}  // namespace

HRESULT MemberTable::FindMembers(LPOLESTR* names, UINT count, DISPID* members) const {
    if (names == nullptr || members == nullptr || count == 0) return E_INVALIDARG;
    std::fill_n(members, count, DISPID_UNKNOWN);
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [&](const Member& member) { return _wcsicmp(member.name.c_str(), names[0]) == 0; });
    if (found == members_.end()) return DISP_E_UNKNOWNNAME;
    members[0] = found->id;
    return count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

std::wstring MemberTable::MemberName(DISPID id) const {
    const auto found =
        std::find_if(members_.begin(), members_.end(), [&](const Member& member) { return member.id == id; });
    return found == members_.end() ? std::to_wstring(id) : found->name;
}

HRESULT MemberTable::CallMember(DISPID id, WORD flags, const DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* info,
                                UINT* wrongArgument) const {
    for (const Member& member : members_)
        if (member.id == id && (member.flags & flags) != 0)
            return Call(member, flags, parameters, result, info, wrongArgument);
    return DISP_E_MEMBERNOTFOUND;
}

HRESULT MemberTable::Call(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                          EXCEPINFO* info, UINT* wrongArgument) {
    const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    if (put) {
        if (parameters.cNamedArgs != 1 || parameters.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)
            return DISP_E_PARAMNOTOPTIONAL;
        if (parameters.cArgs != 1) return DISP_E_BADPARAMCOUNT;
    } else {
        if (parameters.cNamedArgs != 0) return DISP_E_NONAMEDARGS;
        if (parameters.cArgs < member.needed || parameters.cArgs > member.most) return DISP_E_BADPARAMCOUNT;
    }
    const CallArguments arguments(parameters);
    const Handler call = member.call;  // a handler may add members
    const Setter write = member.put;
    try {
        if (put) {
            write(arguments);
        } else {
            _variant_t value = call(arguments);
            if (result != nullptr) *result = value.Detach();
        }
        return S_OK;
    } catch (const CallError& error) {
        if (wrongArgument != nullptr && parameters.cArgs != 0) *wrongArgument = parameters.cArgs - 1 - error.argument;
        return error.result;
    } catch (...) {
        Describe(com::CurrentError(), info);
        return DISP_E_EXCEPTION;
    }
}

void MemberTable::AddMethod(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler) {
    members_.push_back({id, name, DISPATCH_METHOD, needed, most, std::move(handler), {}});
}

void MemberTable::AddEither(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler) {
    members_.push_back({id, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, needed, most, std::move(handler), {}});
}

void MemberTable::AddAction(DISPID id, const wchar_t* name, UINT most, std::function<void()> action) {
    AddMethod(id, name, 0, most, [action = std::move(action)](const CallArguments&) {
        action();
        return _variant_t();
    });
}

void MemberTable::AddProperty(DISPID id, const wchar_t* name, Getter get, Setter put) {
    WORD flags = DISPATCH_PROPERTYGET;
    if (put) flags |= DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    members_.push_back(
        {id, name, flags, 0, 0, [get = std::move(get)](const CallArguments&) { return get(); }, std::move(put)});
}

}  // namespace beacon::standin
