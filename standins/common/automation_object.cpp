#include "common/automation_object.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "common/connection_point.h"

namespace beacon::standin {
namespace {

// Asked of a reference that came from outside: only objects of this process answer.
constexpr IID kOwnObject = {0x3d0a3a1e, 0x8f3c, 0x4c58, {0x9a, 0x61, 0x51, 0x0f, 0x5c, 0x2b, 0x7e, 0x90}};

std::vector<AutomationObject*>& LiveObjects() {
    static auto* objects = new std::vector<AutomationObject*>;  // never destroyed: a leaked object may die after it
    return *objects;
}

void Describe(const com::Error& error, EXCEPINFO* info) {
    if (info == nullptr) return;
    *info = {};
    info->scode = error.number < 0 ? error.number
                                   : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<WORD>(error.number));
    info->bstrDescription = SysAllocString(error.description.c_str());
    info->bstrSource = SysAllocString(L"Microsoft Outlook");
}

}  // namespace

AutomationObject::AutomationObject(std::wstring kind) : kind_(std::move(kind)) { LiveObjects().push_back(this); }

AutomationObject::~AutomationObject() { std::erase(LiveObjects(), this); }

std::wstring AutomationObject::Description() const { return label_.empty() ? kind_ : kind_ + L" " + label_; }

size_t AutomationObject::Sinks() const {
    size_t sinks = 0;
    for (const auto& point : points_) sinks += point->Sinks();
    return sinks;
}

std::shared_ptr<AutomationObject> AutomationObject::From(IUnknown* reference) {
    void* object = nullptr;
    if (reference == nullptr || FAILED(reference->QueryInterface(kOwnObject, &object))) return nullptr;
    return static_cast<AutomationObject*>(object)->shared_from_this();  // this query takes no reference
}

void AutomationObject::Hold() {
    if (held_ == 0) self_ = shared_from_this();
    ++held_;
}

void AutomationObject::Unhold() {
    if (held_ == 0) return;
    if (--held_ == 0) std::exchange(self_, nullptr).reset();  // may be the end of this object
}

HRESULT AutomationObject::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    if (id == kOwnObject) {
        *object = this;
        return S_OK;
    }
    if (id == IID_IUnknown || id == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
    } else if (id == IID_IConnectionPointContainer && !points_.empty()) {
        *object = static_cast<IConnectionPointContainer*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG AutomationObject::AddRef() {
    Hold();
    return ++own_;
}

ULONG AutomationObject::Release() {
    if (own_ == 0) return 0;  // one release too many: the count must not go below what others hold
    const ULONG left = --own_;
    if (left == 0) Unreferenced();
    Unhold();
    return left;
}

HRESULT AutomationObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT AutomationObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT AutomationObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) {
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

HRESULT AutomationObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                 EXCEPINFO* info, UINT* wrongArgument) {
    if (parameters == nullptr) return E_INVALIDARG;
    if (result != nullptr) VariantInit(result);
    if (retired_ != S_OK) return retired_;
    const auto self = shared_from_this();
    for (const Member& member : members_) {
        if (member.id != id) continue;
        if ((member.flags & flags) != 0) return Call(member, flags, *parameters, result, info, wrongArgument);
    }
    return DISP_E_MEMBERNOTFOUND;
}

HRESULT AutomationObject::Call(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
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

HRESULT AutomationObject::CallByName(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
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

void AutomationObject::Add(Member member) { members_.push_back(std::move(member)); }

void AutomationObject::AddMethod(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler,
                                 ArgumentNames argumentNames) {
    Add({id, name, DISPATCH_METHOD, needed, most, std::move(handler), {}, std::move(argumentNames)});
}

void AutomationObject::AddEither(DISPID id, const wchar_t* name, UINT needed, UINT most, Handler handler,
                                 ArgumentNames argumentNames) {
    Add({id,
         name,
         DISPATCH_METHOD | DISPATCH_PROPERTYGET,
         needed,
         most,
         std::move(handler),
         {},
         std::move(argumentNames)});
}

void AutomationObject::AddProperty(DISPID id, const wchar_t* name, Getter get, Setter put) {
    WORD flags = DISPATCH_PROPERTYGET;
    if (put) flags |= DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    Add({id, name, flags, 0, 0, [get = std::move(get)](const CallArguments&) { return get(); }, std::move(put), {}});
}

void AutomationObject::AddEvents(REFIID events, const wchar_t* name) {
    points_.push_back(std::make_unique<Point>(*this, events, name));
}

void AutomationObject::DropSinks() {
    for (const auto& point : points_) point->DropSinks();
}

HRESULT AutomationObject::EnumConnectionPoints(IEnumConnectionPoints** points) {
    if (points != nullptr) *points = nullptr;
    return E_NOTIMPL;
}

HRESULT AutomationObject::FindConnectionPoint(REFIID events, IConnectionPoint** point) {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    for (const auto& candidate : points_) {
        if (candidate->Events() != events) continue;
        candidate->AddRef();
        *point = candidate.get();
        return S_OK;
    }
    return CONNECT_E_NOCONNECTION;
}

void AutomationObject::Fire(REFIID events, DISPID member, std::vector<_variant_t> arguments) {
    const auto self = shared_from_this();
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());  // borrowed from the vector of values
    for (const auto& point : points_)
        if (point->Events() == events) point->Fire(member, reversed);
}

void AutomationObject::Point::HoldOwner() { owner_.Hold(); }

void AutomationObject::Point::UnholdOwner() { owner_.Unhold(); }

IConnectionPointContainer* AutomationObject::Point::Container() const { return &owner_; }

_variant_t Give(const std::shared_ptr<AutomationObject>& object) { return com::FromObject(object.get()); }

_variant_t ByReference(VARIANT_BOOL& value) {
    _variant_t argument;
    argument.vt = VT_BOOL | VT_BYREF;
    argument.pboolVal = &value;
    return argument;
}

std::vector<OutsideReference> OutsideReferences() {
    std::vector<OutsideReference> report;
    for (const AutomationObject* object : LiveObjects()) {
        const OutsideReference entry{object->Description(), object->OutsideReferences(), object->Sinks()};
        if (entry.references != 0 || entry.sinks != 0) report.push_back(entry);
    }
    return report;
}

}  // namespace beacon::standin
