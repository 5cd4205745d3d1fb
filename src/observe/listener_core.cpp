#include "observe/listener_core.h"

#include <utility>

#include "support/error_styles.h"
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

void ListenerCore::Connect() {
    const ComPtr<Listener> alive(this);
    TryToConnect();
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
    // Otherwise a replaced sender would end after its successor's start, and disconnect the id that both have.
    if (mHiddenForm_ != nullptr) mHiddenForm_->SetConnection(nullptr);
}

bool ListenerCore::Disconnect() {
    const ComPtr<Listener> alive(this);
    const ComPtr<BeaconConnection> connection = objBeaconConnection_;
    if (connection != nullptr && !connection->Disconnect()) return false;
    GoOnAfterError([&] { LogDisconnected(); });
    DropSender();
    mMark_.Remove();
    return true;
}

void ListenerCore::Destroy() {
    const ComPtr<Listener> alive(this);
    if (Disconnect()) {
        GoOnAfterError([&] { RemoveFromRegistry(); });
        LetGo();
    } else if (mHiddenForm_ != nullptr) {
        mHiddenForm_->StartDisconnectTimer();
    }
}

void ListenerCore::Abandon() noexcept {
    if (objBeaconConnection_ != nullptr) GoOnAfterError([&] { Disconnect(); });
    LetGo();
}

void ListenerCore::LetGo() noexcept {
    LetGoOfOutlook();
    DropSender();
    mMark_.Remove();
    UnloadForm();
}

void ListenerCore::UnloadForm() noexcept {
    if (const auto form = std::exchange(mHiddenForm_, nullptr)) form->Unload();
}

void ListenerCore::LetGoOfOutlook() noexcept {
    mbEnded_ = true;
    mbActive_ = false;
    objWindow_.Release();
    ReleaseItems();
    if (const ComPtr<BeaconConnection> connection = objBeaconConnection_) connection->LetGoOfOutlook();
}

void ListenerCore::SendLater() {
    StopOnError([&] {
        LogSendLater();
        if (mbActive_) Need(mHiddenForm_)->Send();
    });
}

void ListenerCore::Send() {
    const ComPtr<Listener> alive(this);
    SendItem();
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
