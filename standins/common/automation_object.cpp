#include "common/automation_object.h"

#include <algorithm>
#include <utility>

#include "com/out_values.h"
#include "common/call_points.h"
#include "common/connection_point.h"

namespace beacon::standin {
namespace {

// Only objects of this process answer to this interface.
constexpr IID kOwnObject = {0x3d0a3a1e, 0x8f3c, 0x4c58, {0x9a, 0x61, 0x51, 0x0f, 0x5c, 0x2b, 0x7e, 0x90}};

std::vector<AutomationObject*>& LiveObjects() {
    static auto* objects = new std::vector<AutomationObject*>;  // never destroyed: leaked objects may outlive statics
    return *objects;
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
    return static_cast<AutomationObject*>(object)->shared_from_this();  // this query adds no reference
}

void AutomationObject::AddOutsideReference() {
    if (outsideReferences_ == 0) self_ = shared_from_this();
    ++outsideReferences_;
}

void AutomationObject::RemoveOutsideReference() {
    if (outsideReferences_ == 0) return;
    if (--outsideReferences_ == 0) std::exchange(self_, nullptr).reset();  // may destroy this object
}

HRESULT AutomationObject::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    if (id == kOwnObject) {
        *object = this;
        return S_OK;
    }
    const CallPoint call([&] { return Description() + L".QueryInterface " + ShortId(id); });
    if (call.Fails()) {
        *object = nullptr;
        return call.Result();
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
    AddOutsideReference();
    return ++ownReferences_;
}

ULONG AutomationObject::Release() {
    if (ownReferences_ == 0) return 0;  // released too often
    const ULONG left = --ownReferences_;
    if (left == 0) Unreferenced();
    RemoveOutsideReference();
    return left;
}

HRESULT AutomationObject::GetTypeInfoCount(UINT* count) { return com::Give(count, 0); }

HRESULT AutomationObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT AutomationObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) {
    const CallPoint call([&] { return Description() + L".GetIDsOfNames " + names[0]; });
    return call.Fails() ? call.Result() : FindMembers(names, count, members);
}

HRESULT AutomationObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                 EXCEPINFO* info, UINT* wrongArgument) {
    if (parameters == nullptr) return E_INVALIDARG;
    if (result != nullptr) VariantInit(result);
    const auto self = shared_from_this();
    const CallPoint call([&] { return Description() + L".Invoke " + MemberName(id); });
    const HRESULT answer = call.Answer(
        [&] { return retired_ != S_OK ? retired_ : CallMember(id, flags, *parameters, result, info, wrongArgument); });
    if (call.Fails() && result != nullptr) VariantClear(result);
    return answer;
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
    const CallPoint call([&] { return Description() + L".FindConnectionPoint " + ShortId(events); });
    if (call.Fails()) return call.Result();
    for (const auto& candidate : points_) {
        if (candidate->Events() != events) continue;
        return com::GiveObject(point, candidate.get());
    }
    return CONNECT_E_NOCONNECTION;
}

void AutomationObject::Fire(REFIID events, DISPID member, std::vector<_variant_t> arguments) {
    const auto self = shared_from_this();
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());  // borrowed from the vector of values
    for (const auto& point : points_)
        if (point->Events() == events) point->Fire(member, reversed);
}

_variant_t HandOut(const std::shared_ptr<AutomationObject>& object) { return com::FromObject(object.get()); }

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
