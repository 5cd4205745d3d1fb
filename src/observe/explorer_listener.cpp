#include "observe/explorer_listener.h"

#include <climits>

#include "extract/window_search.h"
#include "extract/window_text.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;

constexpr IID kExplorerEvents = {0x0006304F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum class ExplorerEvent : DISPID {
    kActivate = 0xF001,
    kViewSwitch = 0xF004,
    kSelectionChange = 0xF007,
    kClose = 0xF008
};

}  // namespace

void ExplorerListener::Watch(const com::Object& explorer) {
    objWindow_.Set(explorer, {kExplorerEvents}, [this](DISPID member, const com::EventArguments&) { OnEvent(member); });
}

void ExplorerListener::OnEvent(DISPID member) {
    const ComPtr<ExplorerListener> alive(this);  // an event may end its own listener
    switch (ExplorerEvent{member}) {
        case ExplorerEvent::kActivate: objExplorer_Activate(); break;
        case ExplorerEvent::kViewSwitch: objExplorer_ViewSwitch(); break;
        case ExplorerEvent::kSelectionChange: objExplorer_SelectionChange(); break;
        case ExplorerEvent::kClose: OnClose(L"Explorer Close called: "); break;
        default: break;
    }
}

void ExplorerListener::Start(long ahExplorer) {
    GoOnAfterError([&] { RemoveUnwantedBar(); });
    if (mbEnded_) return;
    hWnd_ = ahExplorer;
    GoOnAfterError([&] { mMark_.Set(ahExplorer, objWindow_.Get()); });
    GoOnAfterError([&] { mHiddenForm_ = mServices_.LoadForm(false); });
    Connect();
    if (mbEnded_) return;
    mbActive_ = true;
    SendLater();
}

HRESULT ExplorerListener::Connect() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] { ConnectSender(); });
    return S_OK;
}

void ExplorerListener::objExplorer_Activate() {
    StopOnError([&] {
        if (!mbActive_) {
            const long handle = FindOutlookWindow(Caption(), false);
            if (handle != 0) Init(handle);
        }
        if (hWnd_ == 0)
            mbActive_ = false;
        else
            SyncToolbar();
    });
}

// Outlook raises this twice for one selection. The form combines the requests.
void ExplorerListener::objExplorer_SelectionChange() {
    StopOnError([&] {
        LogMsg2(L"Explorer_SelectionChange  called: ", Caption(), L" hWnd=", hWnd_);
        SendLater();
    });
}

void ExplorerListener::objExplorer_ViewSwitch() {
    if (mbActive_ && objBeaconConnection_ != nullptr) objBeaconConnection_->SendNull();
}

HRESULT ExplorerListener::Send() {
    const ComPtr<ExplorerListener> alive(this);
    StopOnError([&] {
        if (!mbActive_) return;
        const com::Object explorer = objWindow_.Get();
        const long count = explorer.GetObject(L"Selection").GetLong(L"Count");
        if (count < 1) return;
        std::wstring selected = GetSelected();
        LogMsg2(L"ExplorerListener.Send(): hExplorer= ", hWnd_, L" Selected=", selected);
        const com::Object item = explorer.GetObject(L"Selection").GetObject(L"Item", {1L});
        bool bailEarly = false;
        const ComPtr<BeaconConnection> connection = Need(objBeaconConnection_);
        // The number of selected items goes in place of an inspector's editor type, a 16-bit number.
        if (count > SHRT_MAX) com::Raise(com::kOverflow);
        connection->SendOutlookItem(item, selected, bailEarly, static_cast<short>(count));
    });
    return S_OK;
}

std::wstring ExplorerListener::GetSelected() {
    std::wstring result;
    StopOnError([&] {
        LogMsg2(L"Explorer GetSelected() called");
        if (const auto path = ExplorerSelectionClasses(globals::gOutlookVersion)) result = GetSelectedEx(*path);
        result = WithContext(result);
    });
    return result;
}

std::wstring ExplorerListener::GetSelectedEx(const ExplorerSelectionPath& path) const {
    HWND parent = static_cast<HWND>(LongToHandle(hWnd_));
    if (parent == nullptr) return {};  // a search would begin at the desktop
    if (path.startsAtDialog) parent = FindDescendentWindow(parent, nullptr, kDialogClass, nullptr);
    if (parent == nullptr) return {};
    std::wstring selection;
    bool answered = false;  // the path ends early, or one of the two controls exists
    std::wstring failure;
    ReportOnError(
        [&] {
            LogMsg2(L"Explorer GetSelectedEx() called");
            parent = WalkDown(L"GetSelectedEx", parent, path.parents);
            answered = parent == nullptr || ReadControl(parent, path.control, selection);
        },
        [&](const com::Error& error) { failure = error.Description(); });
    if (!answered) LogMsg2(L"Exp. GetSelectedEx: Exception; ", failure);
    return selection;
}

/// The selection of the rich-edit control of this class below the path's last window, else of the HTML viewer there.
/// False if neither exists, or the viewer has no document.
bool ExplorerListener::ReadControl(HWND parent, const char* controlClass, std::wstring& selection) {
    if (const HWND control = FindWindowExA(parent, nullptr, controlClass, nullptr)) {
        selection = EditSelection(control);
        LogMsg2(L"Exp. GetSelectedEx RichEdit (9) = [", selection, L"]");
        return true;
    }
    const HWND viewer = FindWindowExA(parent, nullptr, kHtmlViewerClass, nullptr);
    LogMsg2(L"Exp. GetSelectedEx(7) : FindWindowEx(", HandleText(parent), L",Internet Explorer_Server)= ",
            HandleText(viewer));
    const com::Object document = viewer == nullptr ? com::Object() : WindowDOM(viewer);
    if (!document) return false;
    selection = DocumentSelection(document);
    LogMsg2(L"Exp. GetSelectedEx - DOM (10) = [", selection, L"]");
    return true;
}

}  // namespace beacon
