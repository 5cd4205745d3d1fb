#pragma once

#include <windows.h>

#include <ocidl.h>

#include <memory>
#include <string>
#include <vector>

#include "common/member_table.h"

namespace beacon::standin {

/// Base of every object that a stand-in publishes by name: members, event sources, and an exact count of the references
/// that are held from outside.
///
/// The stand-in itself owns its objects by std::shared_ptr and never by COM references, so AddRef and Release count
/// outside holders only; while there is one, the object keeps itself alive. Make objects with std::make_shared and hand
/// them out with HandOut(). Event arguments are released when the call is over. One apartment only.
class AutomationObject : public IDispatch,
                         public IConnectionPointContainer,
                         protected MemberTable,
                         public std::enable_shared_from_this<AutomationObject> {
public:
    /// `kind` is what the reference report calls the object ("Explorer").
    explicit AutomationObject(std::wstring kind);
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;
    virtual ~AutomationObject();

    const std::wstring& Kind() const { return kind_; }

    /// A name that tells this object from others of its kind in the report ("1", a caption); may change at any time.
    void SetLabel(std::wstring label) { label_ = std::move(label); }

    std::wstring Description() const;

    /// References held from outside on the object itself and on its connection points.
    ULONG OutsideReferences() const { return held_; }

    /// Sinks that are advised, on every event interface together.
    size_t Sinks() const;

    /// What the object stood for is gone: from now on every call answers with this failure. Events still have their
    /// sinks.
    void Retire(HRESULT answer = RPC_E_DISCONNECTED) { retired_ = answer; }

    bool IsRetired() const { return retired_ != S_OK; }

    /// Calls every sink of the event interface, arguments in natural order. Sinks may unadvise, release or advise
    /// during the calls; one that is unadvised before its turn is not called. A sink's failure is its own business.
    void Fire(REFIID events, DISPID member, std::vector<_variant_t> arguments = {});

    /// The object behind a reference that came back from outside, or null when it is nobody's of this stand-in.
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
    /// Offers an event interface; sinks must answer to this id or to IDispatch.
    void AddEvents(REFIID events, const wchar_t* name);

    /// The last outside reference on the object itself has gone; references on its connection points may be left.
    virtual void Unreferenced() {}

    /// Ends every subscription, as if all sinks had unadvised.
    void DropSinks();

private:
    class Point;

    void Hold();
    void Unhold();

    const std::wstring kind_;
    std::wstring label_;
    std::vector<std::unique_ptr<Point>> points_;
    ULONG own_ = 0;                           // outside references on the object itself
    ULONG held_ = 0;                          // the same and those on its connection points
    std::shared_ptr<AutomationObject> self_;  // set while held from outside
    HRESULT retired_ = S_OK;
};

/// A counted reference for a caller or an event argument; a null object is Nothing.
_variant_t HandOut(const std::shared_ptr<AutomationObject>& object);

/// An [in, out] Boolean argument of an event.
_variant_t ByReference(VARIANT_BOOL& value);

/// One object that is still held from outside, or that still has sinks of the outside.
struct OutsideReference {
    std::wstring description;
    size_t references = 0;
    size_t sinks = 0;
};

/// Every object of this process with outside references or sinks, in order of creation.
std::vector<OutsideReference> OutsideReferences();

}  // namespace beacon::standin
