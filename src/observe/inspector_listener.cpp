#include "observe/inspector_listener.h"

#include <cstring>

#include "extract/class_paths.h"
#include "extract/window_search.h"
#include "extract/window_text.h"
#include "observe/interface_values.h"
#include "observe/item_classes.h"
#include "observe/thresholds.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;

// Outlook 2000's interfaces and those of later versions; their members have the same numbers.
constexpr IID kInspectorEvents = {0x0006307D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kInspectorEvents10 = {0x0006302A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kItemEvents = {0x0006303A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kItemEvents10 = {0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum InspectorEvent : DISPID { kActivate = 0xF001, kDeactivate = 0xF006, kClose = 0xF008 };

enum ItemEvent : DISPID { kItemClose = 0xF004, kBeforeDelete = 0xFA75 };

}  // namespace

HRESULT InspectorListener::SetInspector(IDispatch* aInspector) {
    return com::Method([&] { WatchInspector(com::Object(aInspector)); });
}

void InspectorListener::WatchInspector(const com::Object& inspector) {
    objInspector_.Set(inspector, {kInspectorEvents10, kInspectorEvents},
                      [this](DISPID member, const com::EventArguments&) { OnInspectorEvent(member); });
}

void InspectorListener::WatchItem(com::WatchedObject& watched, const com::Object& item) {
    const bool isMail = &watched == &myMailItem_;
    watched.Set(item, {kItemEvents10, kItemEvents},
                [this, isMail](DISPID member, const com::EventArguments& arguments) {
                    OnItemEvent(member, arguments, isMail);
                });
}

void InspectorListener::OnInspectorEvent(DISPID member) {
    const ComPtr<InspectorListener> alive(this);  // an event may end its own listener
    switch (member) {
        case kActivate: objInspector_Activate(); break;
        case kDeactivate: objInspector_Deactivate(); break;
        case kClose: objInspector_Close(); break;
        default: break;
    }
}

void InspectorListener::OnItemEvent(DISPID member, const com::EventArguments& arguments, bool isMail) {
    const ComPtr<InspectorListener> alive(this);
    if ((member != kItemClose && member != kBeforeDelete) || !objInspector_) return;
    GoOnAfterError([&] {
        if (member == kItemClose) {
            LogMsg2(isMail ? L"myMailItem_Close called: " : L"myContactItem_Close called: ");
        } else if (isMail) {
            const com::Object item = arguments.ObjectAt(0);
            LogMsg2(L"myMailItem_BeforeDelete called: ",
                    com::ToText(item.Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {})));
        } else {
            LogMsg2(L"myContactItem_BeforeDelete Closing objInspector");
        }
    });
    objInspector_Close();
}

std::wstring InspectorListener::Caption() const { return objInspector_.Get().GetText(L"Caption"); }

void InspectorListener::objInspector_Activate() {
    StopOnError([&] {
        if (mbActive_) {
            LogMsg2(L"Inspector Activate called: ", Caption());
        } else {
            LogMsg2(L"Inspector Activate called: ");
            if (hInspector_ != 0) LogMsg2(L"objInspector_Activate - hInspector(", hInspector_, L") is not 0");
            Init(FindOutlookWindow(Caption(), true));
        }
        sender_.SyncToolbar(hInspector_);
    });
}

void InspectorListener::objInspector_Close() {
    std::wstring caption;
    // An inspector on its way out may not have a caption any more; it has to be let go all the same.
    GoOnAfterError([&] { caption = Caption(); });
    LogMsg2(L"Inspector Close called: ", caption, L" hWnd=", hInspector_);
    Destroy();
}

void InspectorListener::objInspector_Deactivate() {
    StopOnError([&] { LogMsg2(L"Inspector deactivate called: ", Caption(), L" hWnd=", hInspector_); });
}

bool InspectorListener::TakeCurrentItem() {
    const com::Object item = objInspector_.Get().GetObject(L"CurrentItem");
    const long itemClass = item.GetLong(L"Class");
    LogMsg2(L"InspectorListener.Init - Class=", itemClass);
    if (itemClass == kMailClass) {
        WatchItem(myMailItem_, item);
    } else if (itemClass == kContactClass) {
        WatchItem(myContactItem_, item);
    } else {
        LogMsg2(L"InspectorListener.Init - Unsupported Item: Class=", itemClass);
        return false;
    }
    return true;
}

void InspectorListener::Init(long ahInspector) {
    const ComPtr<InspectorListener> alive(this);
    const com::Object inspector = objInspector_.Get();
    bool supported = false;
    GoOnAfterError([&] { supported = TakeCurrentItem(); });
    mbActive_ = supported && ahInspector != 0;
    if (mbActive_) {
        GoOnAfterError([&] {
            if (GetEnableToolbar() == L"0") RemoveBeaconCommandBar(objInspector_.Get());
        });
        hInspector_ = ahInspector;
        GoOnAfterError([&] { sender_.LoadForm(true); });
        Connect();
        SendLater();
    } else if (supported) {
        Destroy();
    }
    if (ahInspector != 0) GoOnAfterError([&] { mark_.Set(ahInspector, inspector); });
}

HRESULT InspectorListener::Connect() {
    const ComPtr<InspectorListener> alive(this);
    LogOnError(L"Exception in Inspector.Connect: ", [&] {
        LogMsg2(L"InspectorListner.Connect");
        sender_.Connect(*this, hInspector_);
    });
    return S_OK;
}

HRESULT InspectorListener::SendLater() {
    StopOnError([&] {
        LogMsg2(L"Inspector SendLater()");
        if (mbActive_) Need(sender_.Form())->Send();
    });
    return S_OK;
}

HRESULT InspectorListener::Send() {
    const ComPtr<InspectorListener> alive(this);
    LogOnError(L"Exception in Inspector.Send: ", [&] {
        if (!mbActive_) return;
        LogMsg2(L"Inspector.Send() hInspector=", hInspector_);
        const com::Object item = objInspector_.Get().GetObject(L"CurrentItem");
        std::wstring selection = GetSelected();
        const long editorType = objInspector_.Get().GetLong(L"EditorType");
        bool bailEarly = false;
        const ComPtr<BeaconConnection> connection = Need(sender_.objBeaconConnection());
        connection->SendOutlookItem(item, selection, bailEarly, static_cast<short>(editorType));
        if (bailEarly) SetUpdateCountThreshold(BailOutUpdateThreshold(Need(sender_.Form())->StartAnalysisInterval()));
    });
    return S_OK;
}

HRESULT InspectorListener::SetUpdateCountThreshold(long newThreshold) {
    return com::Method([&] {
        LogMsg2(L"SetUpdateCountThreshold :", newThreshold);
        Need(sender_.Form())->SetUpdateCountThreshold(newThreshold);
    });
}

std::wstring InspectorListener::GetSelected() {
    std::wstring result;
    StopOnError([&] {
        LogMsg2(L"Inspector GetSelected() called");
        result = GetSelectedEx();
        result = WithContext(result, sender_.ContextText());
    });
    return result;
}

std::wstring InspectorListener::GetSelectedEx() {
    std::wstring selection;
    StopOnError([&] {
        const auto path =
            InspectorSelectionClasses(globals::gOutlookVersion, objInspector_.Get().GetLong(L"EditorType"));
        if (!path) return;  // a version whose windows are not known
        LogMsg2(L"Inspector GetSelectedEx() called");
        if (path->empty()) com::Raise(com::kSubscriptOutOfRange);
        HWND window = static_cast<HWND>(LongToHandle(hInspector_));
        for (size_t i = 0; i < path->size(); ++i) {
            window = StepDown(L"GetSelectedEx", i, window, (*path)[i]);
            if (window == nullptr) return;
        }
        if (std::strcmp(path->back(), kHtmlViewerClass) == 0) {
            const com::Object document = WindowDOM(window);
            if (!document) {
                LogMsg2(L"GetSelectedEx(7) WindowDOM(hWnd) returned nothing");
                return;
            }
            selection = DocumentSelection(document);
        } else {
            selection = EditSelection(window);
        }
        LogMsg2(L"GetSelectedEx (8) Selected=[", selection, L"]");
    });
    return selection;
}

bool InspectorListener::Disconnect() {
    if (sender_.objBeaconConnection() == nullptr) return true;
    if (!sender_.LetsGo()) return false;
    LogMsg2(L"InspectorListner.Disconnect - resetting the objBeaconConnection");
    sender_.Drop();
    mark_.Remove();
    return true;
}

HRESULT InspectorListener::Destroy() {
    const ComPtr<InspectorListener> alive(this);
    if (Disconnect()) {
        GoOnAfterError([&] { addIn_.RemoveInspectorListener(*this); });
        LetGo();
    } else {
        sender_.RetryDisconnect();
    }
    return S_OK;
}

void InspectorListener::LetGo() noexcept {
    objInspector_.Release();
    myMailItem_.Release();
    myContactItem_.Release();
    mbActive_ = false;
    sender_.End();
}

void InspectorListener::Abandon() noexcept {
    Disconnect();
    mark_.Remove();
    LetGo();
}

HRESULT InspectorListener::Close() { return Destroy(); }

HRESULT InspectorListener::get_objBeaconConnection(IBeaconConnection** value) {
    return GiveObject(value, sender_.objBeaconConnection().Get());
}

// Only Connect makes a sender, since it has to serve this listener; it can be taken away.
HRESULT InspectorListener::put_objBeaconConnection(IBeaconConnection* value) {
    if (value == nullptr) sender_.Drop();
    return value == nullptr ? S_OK : E_INVALIDARG;
}

HRESULT InspectorListener::putref_objBeaconConnection(IBeaconConnection* value) {
    return put_objBeaconConnection(value);
}

HRESULT InspectorListener::get_hInspector(long* value) { return Give(value, hInspector_); }

HRESULT InspectorListener::put_hInspector(long value) {
    hInspector_ = value;
    return S_OK;
}

HRESULT InspectorListener::get_objInspector(IDispatch** value) { return GiveObject(value, objInspector_.Get().Get()); }

HRESULT InspectorListener::put_objInspector(IDispatch* value) { return SetInspector(value); }

HRESULT InspectorListener::putref_objInspector(IDispatch* value) { return SetInspector(value); }

HRESULT InspectorListener::get_myMailItem(IDispatch** value) { return GiveObject(value, myMailItem_.Get().Get()); }

HRESULT InspectorListener::put_myMailItem(IDispatch* value) {
    return com::Method([&] { WatchItem(myMailItem_, com::Object(value)); });
}

HRESULT InspectorListener::putref_myMailItem(IDispatch* value) { return put_myMailItem(value); }

HRESULT InspectorListener::get_myContactItem(IDispatch** value) {
    return GiveObject(value, myContactItem_.Get().Get());
}

HRESULT InspectorListener::put_myContactItem(IDispatch* value) {
    return com::Method([&] { WatchItem(myContactItem_, com::Object(value)); });
}

HRESULT InspectorListener::putref_myContactItem(IDispatch* value) { return put_myContactItem(value); }

HRESULT InspectorListener::Init(long* ahInspector) {
    if (ahInspector == nullptr) return E_POINTER;
    Init(*ahInspector);
    return S_OK;
}

HRESULT InspectorListener::Disconnect(VARIANT_BOOL* result) { return Give(result, Disconnect()); }

HRESULT InspectorListener::GetHwnd(long* result) { return Give(result, hInspector_); }

}  // namespace beacon
