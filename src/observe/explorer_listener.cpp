#include "observe/explorer_listener.h"

#include "extract/class_paths.h"
#include "extract/window_search.h"
#include "extract/window_text.h"
#include "observe/interface_values.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;

constexpr IID kExplorerEvents = {0x0006304F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum ExplorerEvent : DISPID { kActivate = 0xF001, kViewSwitch = 0xF004, kSelectionChange = 0xF007, kClose = 0xF008 };

}  // namespace

void ExplorerListener::SetExplorer(const com::Object& aExplorer) {
    objExplorer_.Set(aExplorer, {kExplorerEvents},
                     [this](DISPID member, const com::EventArguments&) { OnEvent(member); });
}

void ExplorerListener::OnEvent(DISPID member) {
    const ComPtr<ExplorerListener> alive(this);  // an event may end its own listener
    switch (member) {
        case kActivate: objExplorer_Activate(); break;
        case kViewSwitch: objExplorer_ViewSwitch(); break;
        case kSelectionChange: objExplorer_SelectionChange(); break;
        case kClose: objExplorer_Close(); break;
        default: break;
    }
}

void ExplorerListener::Init(long ahExplorer) {
    const ComPtr<ExplorerListener> alive(this);
    GoOnAfterError([&] {
        if (GetEnableToolbar() == L"0") RemoveBeaconCommandBar(objExplorer_.Get());
    });
    hExplorer_ = ahExplorer;
    GoOnAfterError([&] { mark_.Set(ahExplorer, objExplorer_.Get()); });
    GoOnAfterError([&] { sender_.LoadForm(false); });
    Connect();
    mbActive_ = true;
    SendLater();
}

HRESULT ExplorerListener::Connect() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] { sender_.Connect(*this, hExplorer_); });
    return S_OK;
}

void ExplorerListener::objExplorer_Activate() {
    StopOnError([&] {
        if (!mbActive_) {
            const std::wstring caption = objExplorer_.Get().GetText(L"Caption");
            const long handle = FindOutlookWindow(caption, false);
            if (handle != 0) Init(handle);
        }
        if (hExplorer_ == 0) {
            mbActive_ = false;
            return;
        }
        sender_.SyncToolbar(hExplorer_);
    });
}

void ExplorerListener::objExplorer_SelectionChange() {
    StopOnError([&] {
        LogMsg2(L"Explorer_SelectionChange  called: ", objExplorer_.Get().GetText(L"Caption"), L" hWnd=", hExplorer_);
        if (mbActive_) SendLater();
    });
}

void ExplorerListener::objExplorer_Close() {
    std::wstring caption;
    // An explorer on its way out may not have a caption any more; it has to be let go all the same.
    GoOnAfterError([&] { caption = objExplorer_.Get().GetText(L"Caption"); });
    LogMsg2(L"Explorer Close called: ", caption, L" hWnd=", hExplorer_);
    Destroy();
}

void ExplorerListener::objExplorer_ViewSwitch() {
    if (mbActive_ && sender_.objBeaconConnection() != nullptr) sender_.objBeaconConnection()->SendNull();
}

HRESULT ExplorerListener::SendLater() {
    StopOnError([&] {
        if (mbActive_) Need(sender_.Form())->Send();
    });
    return S_OK;
}

HRESULT ExplorerListener::Send() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] {
        if (!mbActive_) return;
        const com::Object selection = objExplorer_.Get().GetObject(L"Selection");
        const long count = selection.GetLong(L"Count");
        if (count < 1) return;
        std::wstring selected = GetSelected();
        LogMsg2(L"ExplorerListener.Send(): hExplorer= ", hExplorer_, L" Selected=", selected);
        const com::Object item = objExplorer_.Get().GetObject(L"Selection").GetObject(L"Item", {com::FromLong(1)});
        bool bailEarly = false;
        const ComPtr<BeaconConnection> connection = Need(sender_.objBeaconConnection());
        // The number of selected items stands where an inspector gives its editor type.
        connection->SendOutlookItem(item, selected, bailEarly, static_cast<short>(count));
    });
    return S_OK;
}

std::wstring ExplorerListener::GetSelected() {
    std::wstring result;
    StopOnError([&] {
        LogMsg2(L"Explorer GetSelected() called");
        if (ExplorerSelectionClasses(globals::gOutlookVersion)) result = GetSelectedEx();
        result = WithContext(result, sender_.ContextText());
    });
    return result;
}

std::wstring ExplorerListener::GetSelectedEx() {
    const auto path = ExplorerSelectionClasses(globals::gOutlookVersion).value();
    HWND parent = static_cast<HWND>(LongToHandle(hExplorer_));
    if (path.startsAtDialog) parent = FindDescendentWindow(parent, nullptr, "#32770", nullptr);
    if (parent == nullptr) return {};
    std::wstring failure;
    try {
        LogMsg2(L"Explorer GetSelectedEx() called");
        for (size_t i = 0; i < path.parents.size(); ++i) {
            parent = StepDown(L"GetSelectedEx", i, parent, path.parents[i]);
            if (parent == nullptr) return {};
        }
        if (const HWND control = FindWindowExA(parent, nullptr, path.control, nullptr)) {
            const std::wstring text = EditSelection(control);
            LogMsg2(L"Exp. GetSelectedEx RichEdit (9) = [", text, L"]");
            return text;
        }
        const HWND viewer = FindWindowExA(parent, nullptr, kHtmlViewerClass, nullptr);
        LogMsg2(L"Exp. GetSelectedEx(7) : FindWindowEx(", HandleText(parent), L",Internet Explorer_Server)= ",
                HandleText(viewer));
        if (viewer != nullptr) {
            if (const com::Object document = WindowDOM(viewer)) {
                const std::wstring text = DocumentSelection(document);
                LogMsg2(L"Exp. GetSelectedEx - DOM (10) = [", text, L"]");
                return text;
            }
        }
    } catch (...) {
        failure = com::CurrentError().description;
    }
    LogMsg2(L"Exp. GetSelectedEx: Exception; ", failure);
    return {};
}

bool ExplorerListener::Disconnect() {
    if (sender_.objBeaconConnection() == nullptr) return true;
    if (!sender_.LetsGo()) return false;
    sender_.Drop();
    mark_.Remove();
    return true;
}

HRESULT ExplorerListener::Destroy() {
    const ComPtr<ExplorerListener> alive(this);
    if (Disconnect()) {
        GoOnAfterError([&] { addIn_.RemoveExplorerListener(*this); });
        LetGo();
    } else {
        sender_.RetryDisconnect();
    }
    return S_OK;
}

void ExplorerListener::LetGo() noexcept {
    objExplorer_.Release();
    mbActive_ = false;
    sender_.End();
}

void ExplorerListener::Abandon() noexcept {
    Disconnect();
    mark_.Remove();
    LetGo();
}

HRESULT ExplorerListener::Close() { return Destroy(); }

HRESULT ExplorerListener::get_objBeaconConnection(IBeaconConnection** value) {
    return GiveObject(value, sender_.objBeaconConnection().Get());
}

// Only Connect makes a sender, since it has to serve this listener; it can be taken away.
HRESULT ExplorerListener::put_objBeaconConnection(IBeaconConnection* value) {
    if (value == nullptr) sender_.Drop();
    return value == nullptr ? S_OK : E_INVALIDARG;
}

HRESULT ExplorerListener::putref_objBeaconConnection(IBeaconConnection* value) {
    return put_objBeaconConnection(value);
}

HRESULT ExplorerListener::get_hExplorer(long* value) { return Give(value, hExplorer_); }

HRESULT ExplorerListener::put_hExplorer(long value) {
    hExplorer_ = value;
    return S_OK;
}

HRESULT ExplorerListener::get_objExplorer(IDispatch** value) { return GiveObject(value, objExplorer_.Get().Get()); }

HRESULT ExplorerListener::put_objExplorer(IDispatch* value) {
    return com::Method([&] { SetExplorer(com::Object(value)); });
}

HRESULT ExplorerListener::putref_objExplorer(IDispatch* value) { return put_objExplorer(value); }

HRESULT ExplorerListener::SetExplorer(IDispatch** aExplorer) {
    return com::Method([&] { SetExplorer(ObjectOf(aExplorer)); });
}

HRESULT ExplorerListener::GetSelected(BSTR* result) { return Give(result, GetSelected()); }

HRESULT ExplorerListener::Init(long* ahExplorer) {
    if (ahExplorer == nullptr) return E_POINTER;
    Init(*ahExplorer);
    return S_OK;
}

HRESULT ExplorerListener::Disconnect(VARIANT_BOOL* result) { return Give(result, Disconnect()); }

HRESULT ExplorerListener::GetHwnd(long* result) { return Give(result, hExplorer_); }

}  // namespace beacon
