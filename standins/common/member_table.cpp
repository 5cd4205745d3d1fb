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
    info->bstrDescription = SysAllocString(error.description.c_str());
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
    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
        const auto argument =
            std::find_if(found->arguments.begin(), found->arguments.end(),
                         [&](const std::wstring& name) { return _wcsicmp(name.c_str(), names[i]) == 0; });
        if (argument == found->arguments.end())
            result = DISP_E_UNKNOWNNAME;
        else
            members[i] = static_cast<DISPID>(argument - found->arguments.begin());
    }
    return result;
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
        if (parameters.cNamedArgs != 0) return CallByName(member, flags, parameters, result, info, wrongArgument);
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

HRESULT MemberTable::CallByName(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                                EXCEPINFO* info, UINT* wrongArgument) {
    if (member.arguments.empty()) return DISP_E_NONAMEDARGS;
    if (parameters.cNamedArgs > parameters.cArgs) return E_INVALIDARG;
    const UINT most = static_cast<UINT>(member.arguments.size());
    const UINT placed = parameters.cArgs - parameters.cNamedArgs;
    if (placed > most) return DISP_E_BADPARAMCOUNT;
    VARIANT missing;
    missing.vt = VT_ERROR;
    missing.scode = DISP_E_PARAMNOTFOUND;
    std::vector<VARIANT> values(most, missing);  // borrowed from the caller, in reversed order
    std::vector<UINT> sources(most, 0);
    UINT first = most;  // of the reversed order: what lies before it was not given
    const auto place = [&](UINT argument, UINT source) {
        values[most - 1 - argument] = parameters.rgvarg[source];
        sources[most - 1 - argument] = source;
        first = std::min(first, most - 1 - argument);
    };
    for (UINT i = 0; i < placed; ++i) place(i, parameters.cArgs - 1 - i);
    for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
        const DISPID name = parameters.rgdispidNamedArgs[i];
        if (name < static_cast<DISPID>(placed) || name >= static_cast<DISPID>(most)) {
            if (wrongArgument != nullptr) *wrongArgument = i;
            return DISP_E_PARAMNOTFOUND;
        }
        place(static_cast<UINT>(name), i);
    }
    const DISPPARAMS inPlace{values.data() + first, nullptr, most - first, 0};
    UINT wrong = 0;
    const HRESULT answer = Call(member, flags, inPlace, result, info, &wrong);
    if (wrongArgument != nullptr && first + wrong < most) *wrongArgument = sources[first + wrong];
    return answer;
}

void MemberTable::AddMethod(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler,
                            ArgumentNames argumentNames) {
    members_.push_back({id, name, DISPATCH_METHOD, needed, most, std::move(handler), {}, std::move(argumentNames)});
}

void MemberTable::AddEither(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler,
                            ArgumentNames argumentNames) {
    members_.push_back({id,
                        name,
                        DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                        needed,
                        most,
                        std::move(handler),
                        {},
                        std::move(argumentNames)});
}

void MemberTable::AddProperty(DISPID id, const wchar_t* name, Getter get, Setter put) {
    WORD flags = DISPATCH_PROPERTYGET;
    if (put) flags |= DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    members_.push_back(
        {id, name, flags, 0, 0, [get = std::move(get)](const CallArguments&) { return get(); }, std::move(put), {}});
}

}  // namespace beacon::standin
