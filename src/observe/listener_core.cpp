#include "observe/listener_core.h"

#include <utility>

#include "support/error_styles.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {

using com::ComPtr;
using com::Need;

void ListenerCore::Init(long hWnd) {
    if (mbStarting_ || mbActive_ || mbEnded_) return;
    const ComPtr<Listener> alive(this);
    mbStarting_ = true;
    for (int attempt = 0; attempt < 2 && !mbActive_ && !mbEnded_; ++attempt) {
        GoOnAfterError([&] { Start(hWnd); });
        if (!mbActive_) break;
        if (mbConnected_) continue;
        mbActive_ = false;
        DropSender();
        UnloadForm();
    }
    mbStarting_ = false;
}

void ListenerCore::ConnectSender() {
    DropSender();
    mbConnected_ = false;
    const auto connection = com::MakeObject<BeaconConnection>(mServices_);
    objBeaconConnection_ = connection;
    connection->SetListener(this);
    const bool complete = connection->Connect(hWnd_);
    if (objBeaconConnection_.Get() != connection.Get()) return;  // the window ended inside that call
    Need(mHiddenForm_)->SetConnection(connection.Get());
    if (connection->gToolbar != nullptr) mHiddenForm_->StartToolbarTimer();
    mbConnected_ = complete;
}

void ListenerCore::DropSender() noexcept {
    const ComPtr<BeaconConnection> connection = objBeaconConnection_;
    if (connection == nullptr) return;
    connection->SetListener(nullptr);
    objBeaconConnection_.Reset();
    // Otherwise a replaced sender would end after its successor's start and disconnect their common id.
    if (mHiddenForm_ != nullptr) mHiddenForm_->SetConnection(nullptr);
}

bool ListenerCore::Disconnect() {
    const ComPtr<Listener> alive(this);
    const ComPtr<BeaconConnection> connection = objBeaconConnection_;
    if (connection != nullptr && !connection->Disconnect()) return false;
    if (IsInspector()) LogMsg2(L"InspectorListner.Disconnect - resetting the objBeaconConnection");
    DropSender();
    mMark_.Remove();
    return true;
}

HRESULT ListenerCore::Destroy() {
    const ComPtr<Listener> alive(this);
    if (Disconnect()) {
        GoOnAfterError([&] { mServices_.RemoveListener(*this); });
        ReleaseAll();
    } else if (mHiddenForm_ != nullptr) {
        mHiddenForm_->StartDisconnectTimer();
    }
    return S_OK;
}

std::wstring ListenerCore::Caption() const { return objWindow_.Get().GetText(L"Caption"); }

void ListenerCore::OnClose(const wchar_t* line) {
    std::wstring caption;
    GoOnAfterError([&] { caption = Caption(); });  // a closing window may not have one
    LogMsg2(line, caption, L" hWnd=", hWnd_);
    Destroy();
}

void ListenerCore::Abandon() noexcept {
    if (objBeaconConnection_ != nullptr) GoOnAfterError([&] { Disconnect(); });
    ReleaseAll();
}

void ListenerCore::ReleaseAll() noexcept {
    ReleaseOutlook();
    DropSender();
    mMark_.Remove();
    UnloadForm();
}

void ListenerCore::UnloadForm() noexcept {
    if (const auto form = std::exchange(mHiddenForm_, nullptr)) form->Unload();
}

void ListenerCore::ReleaseOutlook() noexcept {
    mbEnded_ = true;
    mbActive_ = false;
    objWindow_.Release();
    ReleaseItems();
    if (const ComPtr<BeaconConnection> connection = objBeaconConnection_) connection->ReleaseOutlook();
}

HRESULT ListenerCore::SendLater() {
    if (IsInspector()) LogMsg2(L"Inspector SendLater()");
    StopOnError([&] {
        if (mbActive_) Need(mHiddenForm_)->Send();
    });
    return S_OK;
}

void ListenerCore::StopToolbarTimer() {
    if (mHiddenForm_ != nullptr) mHiddenForm_->StopToolbarTimer();
}

void ListenerCore::RemoveUnwantedBar() const {
    if (GetEnableToolbar() == L"0") RemoveBeaconCommandBar(objWindow_.Get());
}

void ListenerCore::SyncToolbar() const {
    if (objBeaconConnection_ == nullptr) return;
    if (const ComPtr<CToolbar> toolbar = objBeaconConnection_->gToolbar) toolbar->SyncToolbar(hWnd_);
}

std::wstring ListenerCore::WithContext(const std::wstring& selection) const {
    const std::wstring context = Need(objBeaconConnection_)->ContextText();
    return context.empty() ? selection : selection + L" " + context;
}

}  // namespace beacon
