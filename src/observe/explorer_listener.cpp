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
    objExplorer_ = aExplorer;
    explorerEvents_.Advise(objExplorer_.Get(), kExplorerEvents,
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
        if (GetEnableToolbar() == L"0") RemoveBeaconCommandBar(objExplorer_);
    });
    hExplorer_ = ahExplorer;
    GoOnAfterError([&] { mark_.Set(ahExplorer, objExplorer_); });
    GoOnAfterError([&] { mHiddenForm_ = addIn_.CreateForm(false); });
    Connect();
    mbActive_ = true;
    SendLater();
}

HRESULT ExplorerListener::Connect() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] {
        objBeaconConnection_ = com::MakeObject<BeaconConnection>(addIn_);
        objBeaconConnection_->SetListener(this);
        objBeaconConnection_->Connect(hExplorer_);
        Need(mHiddenForm_)->SetConnection(objBeaconConnection_.Get());
        if (Need(objBeaconConnection_)->gToolbar != nullptr) mHiddenForm_->StartToolbarTimer();
    });
    return S_OK;
}

void ExplorerListener::objExplorer_Activate() {
    StopOnError([&] {
        if (!mbActive_) {
            const std::wstring caption = objExplorer_.GetText(L"Caption");
            long handle = HandleToLong(FindNewWindow(caption, false));
            if (handle == 0) handle = FindOutlookWindow(caption);
            if (handle != 0) Init(handle);
        }
        if (hExplorer_ == 0) {
            mbActive_ = false;
            return;
        }
        if (const ComPtr<CToolbar> toolbar = Need(objBeaconConnection_)->gToolbar) toolbar->SyncToolbar(hExplorer_);
    });
}

void ExplorerListener::objExplorer_SelectionChange() {
    StopOnError([&] {
        LogMsg2(L"Explorer_SelectionChange  called: ", objExplorer_.GetText(L"Caption"), L" hWnd=", hExplorer_);
        if (mbActive_) SendLater();
    });
}

void ExplorerListener::objExplorer_Close() {
    std::wstring caption;
    // An explorer on its way out may not have a caption any more; it has to be let go all the same.
    GoOnAfterError([&] { caption = objExplorer_.GetText(L"Caption"); });
    LogMsg2(L"Explorer Close called: ", caption, L" hWnd=", hExplorer_);
    Destroy();
}

void ExplorerListener::objExplorer_ViewSwitch() {
    if (mbActive_ && objBeaconConnection_ != nullptr) objBeaconConnection_->SendNull();
}

HRESULT ExplorerListener::SendLater() {
    StopOnError([&] {
        if (mbActive_) Need(mHiddenForm_)->Send();
    });
    return S_OK;
}

HRESULT ExplorerListener::Send() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] {
        if (!mbActive_) return;
        const com::Object selection = objExplorer_.GetObject(L"Selection");
        const long count = selection.GetLong(L"Count");
        if (count < 1) return;
        std::wstring selected = GetSelected();
        LogMsg2(L"ExplorerListener.Send(): hExplorer= ", hExplorer_, L" Selected=", selected);
        const com::Object item = objExplorer_.GetObject(L"Selection").GetObject(L"Item", {com::FromLong(1)});
        bool bailEarly = false;
        const ComPtr<BeaconConnection> connection = Need(objBeaconConnection_);
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
        result = WithContext(result, Need(objBeaconConnection_)->ContextText());
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
    const ComPtr<BeaconConnection> connection = objBeaconConnection_;
    // A listener that has never been initialised has nothing that could refuse.
    if (connection == nullptr) return true;
    if (!connection->Disconnect()) return false;
    objBeaconConnection_.Reset();
    mark_.Remove();
    return true;
}

HRESULT ExplorerListener::Destroy() {
    const ComPtr<ExplorerListener> alive(this);
    if (Disconnect()) {
        GoOnAfterError([&] { addIn_.RemoveExplorerListener(*this); });
        LetGo();
    } else if (mHiddenForm_ != nullptr) {
        mHiddenForm_->StartDisconnectTimer();
    }
    return S_OK;
}

void ExplorerListener::LetGo() noexcept {
    explorerEvents_.Unadvise();
    objExplorer_.Reset();
    if (objBeaconConnection_ != nullptr) objBeaconConnection_->SetListener(nullptr);
    objBeaconConnection_.Reset();
    mbActive_ = false;
    if (const auto form = std::move(mHiddenForm_)) form->Unload();
}

void ExplorerListener::Abandon() noexcept {
    Disconnect();
    mark_.Remove();
    LetGo();
}

void ExplorerListener::StopToolbarTimer() {
    if (mHiddenForm_ != nullptr) mHiddenForm_->StopToolbarTimer();
}

HRESULT ExplorerListener::Close() { return Destroy(); }

HRESULT ExplorerListener::get_objBeaconConnection(IBeaconConnection** value) {
    return GiveObject(value, objBeaconConnection_.Get());
}
// Only Connect makes a sender, since it has to serve this listener; it can be taken away.
HRESULT ExplorerListener::put_objBeaconConnection(IBeaconConnection* value) {
    if (value == nullptr) objBeaconConnection_.Reset();
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
HRESULT ExplorerListener::get_objExplorer(IDispatch** value) { return GiveObject(value, objExplorer_.Get()); }
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
