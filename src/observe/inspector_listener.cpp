#include "observe/inspector_listener.h"

#include "extract/window_search.h"
#include "extract/window_text.h"
#include "observe/item_classes.h"
#include "observe/thresholds.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;

// Of Outlook 2002 and later, and of Outlook 2000. Their members have the same numbers.
constexpr IID kInspectorEvents10 = {0x0006302A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kInspectorEvents = {0x0006307D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kItemEvents10 = {0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kItemEvents = {0x0006303A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum class InspectorEvent : DISPID { kActivate = 0xF001, kDeactivate = 0xF006, kClose = 0xF008 };

enum ItemEvent : DISPID { kItemClose = 0xF004, kBeforeDelete = 0xFA75 };

constexpr wchar_t kCloseLine[] = L"Inspector Close called: ";
constexpr long kWordEditorOnly = 12;  // from this version on, the editor is always Word

}  // namespace

void InspectorListener::Watch(const com::Object& inspector) {
    objWindow_.Set(inspector, {kInspectorEvents10, kInspectorEvents},
                   [this](DISPID member, const com::EventArguments&) { OnInspectorEvent(member); });
}

void InspectorListener::WatchItem(com::WatchedObject& place, const com::Object& item) {
    const bool isMail = &place == &myMailItem_;
    place.Set(item, {kItemEvents10, kItemEvents}, [this, isMail](DISPID event, const com::EventArguments& arguments) {
        OnItemEvent(event, arguments, isMail);
    });
}

void InspectorListener::OnInspectorEvent(DISPID member) {
    const ComPtr<InspectorListener> alive(this);  // an event may end its own listener
    switch (InspectorEvent{member}) {
        case InspectorEvent::kActivate: objInspector_Activate(); break;
        case InspectorEvent::kDeactivate: objInspector_Deactivate(); break;
        case InspectorEvent::kClose: OnClose(kCloseLine); break;
        default: break;
    }
}

void InspectorListener::OnItemEvent(DISPID member, const com::EventArguments& arguments, bool isMail) {
    const ComPtr<InspectorListener> alive(this);
    if ((member != kItemClose && member != kBeforeDelete) || !objWindow_) return;
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
    OnClose(kCloseLine);
}

void InspectorListener::objInspector_Activate() {
    StopOnError([&] {
        if (mbActive_) {
            LogMsg2(L"Inspector Activate called: ", Caption());
        } else {
            LogMsg2(L"Inspector Activate called: ");
            if (hWnd_ != 0) LogMsg2(L"objInspector_Activate - hInspector(", hWnd_, L") is not 0");
            Init(FindOutlookWindow(Caption(), true));
        }
        SyncToolbar();
    });
}

void InspectorListener::objInspector_Deactivate() {
    StopOnError([&] { LogMsg2(L"Inspector deactivate called: ", Caption(), L" hWnd=", hWnd_); });
}

bool InspectorListener::WatchCurrentItem() {
    const com::Object item = objWindow_.Get().GetObject(L"CurrentItem");
    const long itemClass = item.GetLong(L"Class");
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

void InspectorListener::Start(long ahInspector) {
    const com::Object inspector = objWindow_.Get();
    GoOnAfterError(
        [&] { LogMsg2(L"InspectorListener.Init - Class=", inspector.GetObject(L"CurrentItem").GetLong(L"Class")); });
    mbActive_ = true;
    bool supported = true;
    GoOnAfterError([&] { supported = WatchCurrentItem(); });
    if (mbEnded_) return ReleaseItems();
    mbActive_ = supported && ahInspector != 0;
    if (mbActive_) {
        GoOnAfterError([&] { RemoveUnwantedBar(); });
        if (mbEnded_) return;
        hWnd_ = ahInspector;
        GoOnAfterError([&] { mHiddenForm_ = mServices_.LoadForm(true); });
        Connect();
        if (mbEnded_) return;
        SendLater();
    } else if (supported) {
        Destroy();
    }
    if (ahInspector != 0 && !mbEnded_) GoOnAfterError([&] { mMark_.Set(ahInspector, inspector); });
}

HRESULT InspectorListener::Connect() {
    const ComPtr<InspectorListener> alive(this);
    LogOnError(L"Exception in Inspector.Connect: ", [&] {
        LogMsg2(L"InspectorListner.Connect");
        ConnectSender();
    });
    return S_OK;
}

void InspectorListener::ReleaseItems() noexcept {
    myMailItem_.Release();
    myContactItem_.Release();
}

HRESULT InspectorListener::Send() {
    const ComPtr<InspectorListener> alive(this);
    LogOnError(L"Exception in Inspector.Send: ", [&] {
        if (!mbActive_) return;
        LogMsg2(L"Inspector.Send() hInspector=", hWnd_);
        const com::Object inspector = objWindow_.Get();
        const com::Object item = inspector.GetObject(L"CurrentItem");
        std::wstring selection = GetSelected();
        const long editorType = inspector.GetLong(L"EditorType");
        bool bailEarly = false;
        const ComPtr<BeaconConnection> connection = Need(objBeaconConnection_);
        connection->SendOutlookItem(item, selection, bailEarly, static_cast<short>(editorType));
        if (bailEarly) SetUpdateCountThreshold(BailOutUpdateThreshold(Need(mHiddenForm_)->StartAnalysisInterval()));
    });
    return S_OK;
}

HRESULT InspectorListener::SetUpdateCountThreshold(long newThreshold) {
    StopOnError([&] {
        LogMsg2(L"SetUpdateCountThreshold :", newThreshold);
        Need(mHiddenForm_)->SetUpdateCountThreshold(newThreshold);
    });
    return S_OK;
}

std::wstring InspectorListener::GetSelected() {
    std::wstring result;
    StopOnError([&] {
        LogMsg2(L"Inspector GetSelected() called");
        const long version = globals::gOutlookVersion;
        const long editorType = version < kWordEditorOnly ? objWindow_.Get().GetLong(L"EditorType") : 0;
        if (const auto path = InspectorSelectionClasses(version, editorType)) result = GetSelectedEx(*path);
        result = WithContext(result);
    });
    return result;
}

std::wstring InspectorListener::GetSelectedEx(ClassPath path) const {
    std::wstring selection;
    StopOnError([&] {
        LogMsg2(L"Inspector GetSelectedEx() called");
        if (path.empty()) com::Raise(com::kSubscriptOutOfRange);
        const HWND window = WalkDown(L"GetSelectedEx", static_cast<HWND>(LongToHandle(hWnd_)), path);
        if (window == nullptr) return;
        if (LeadsToHtmlViewer(path)) {
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

}  // namespace beacon
