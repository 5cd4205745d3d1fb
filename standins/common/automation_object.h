#pragma once

#include <windows.h>

#include <ocidl.h>

#include <memory>
#include <string>
#include <vector>

#include "common/member_table.h"

namespace beacon::standin {

/// Base of every late-bound object of a stand-in: named members, event sources, and an exact count of the references
/// from outside. The stand-in owns its objects by std::shared_ptr, so AddRef and Release count outside references only;
/// they keep the object alive. Create objects with std::make_shared and pass them on with HandOut(). One apartment
/// only.
class AutomationObject : public IDispatch,
                         public IConnectionPointContainer,
                         protected MemberTable,
                         public std::enable_shared_from_this<AutomationObject> {
public:
    /// `kind`: the name in the reference report ("Explorer").
    explicit AutomationObject(std::wstring kind);
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;
    virtual ~AutomationObject();

    const std::wstring& Kind() const { return kind_; }

    /// Distinguishes this object from others of its kind in the report ("1", a caption).
    void SetLabel(std::wstring label) { label_ = std::move(label); }

    std::wstring Description() const;

    /// Outside references to the object and to its connection points.
    ULONG OutsideReferences() const { return outsideReferences_; }

    /// Advised sinks of all event interfaces.
    size_t Sinks() const;

    /// From now on every call to the object fails with this result. Sinks stay advised.
    void Retire(HRESULT answer = RPC_E_DISCONNECTED) { retired_ = answer; }

    bool IsRetired() const { return retired_ != S_OK; }

    /// Calls every sink of the event interface, arguments in natural order. Sinks may unadvise, release or advise
    /// during the calls; a sink that is unadvised before its turn is not called. Failures of sinks are ignored.
    void Fire(REFIID events, DISPID member, std::vector<_variant_t> arguments = {});

    /// The object behind a reference from outside; null if it is not an object of this process.
    static std::shared_ptr<AutomationObject> From(IUnknown* reference);

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) override;
    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument) override;
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID events, IConnectionPoint** point) override;

protected:
    /// Adds an event interface. Sinks must support its id or IDispatch.
    void AddEvents(REFIID events, const wchar_t* name);

    /// Called when the last outside reference to the object is released; its connection points may still be referenced.
    virtual void Unreferenced() {}

    /// Unadvises all sinks.
    void DropSinks();

private:
    class Point;

    void AddOutsideReference();
    void RemoveOutsideReference();

    const std::wstring kind_;
    std::wstring label_;
    std::vector<std::unique_ptr<Point>> points_;
    ULONG ownReferences_ = 0;                 // outside references to the object itself
    ULONG outsideReferences_ = 0;             // ... and to its connection points
    std::shared_ptr<AutomationObject> self_;  // set while there are outside references
    HRESULT retired_ = S_OK;
};

/// A reference for a caller or an event argument; a null object becomes Nothing.
_variant_t HandOut(const std::shared_ptr<AutomationObject>& object);

/// An [in, out] Boolean argument of an event.
_variant_t ByReference(VARIANT_BOOL& value);

/// An object with outside references or sinks.
struct OutsideReference {
    std::wstring description;
    size_t references = 0;
    size_t sinks = 0;
};

/// Every object of this process with outside references or sinks, in order of creation.
std::vector<OutsideReference> OutsideReferences();

}  // namespace beacon::standin
