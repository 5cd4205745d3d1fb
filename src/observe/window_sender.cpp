#include "observe/window_sender.h"

#include <utility>

namespace beacon {

using com::ComPtr;
using com::Need;

void WindowSender::Connect(Listener& listener, long hWnd) {
    Drop();
    objBeaconConnection_ = com::MakeObject<BeaconConnection>(addIn_);
    objBeaconConnection_->SetListener(&listener);
    objBeaconConnection_->Connect(hWnd);
    Need(mHiddenForm_)->SetConnection(objBeaconConnection_.Get());
    if (Need(objBeaconConnection_)->gToolbar != nullptr) mHiddenForm_->StartToolbarTimer();
}

void WindowSender::SyncToolbar(long hWnd) const {
    if (objBeaconConnection_ == nullptr) return;
    if (const ComPtr<CToolbar> toolbar = objBeaconConnection_->gToolbar) toolbar->SyncToolbar(hWnd);
}

bool WindowSender::LetsGo() const {
    const ComPtr<BeaconConnection> connection = objBeaconConnection_;
    return connection == nullptr || connection->Disconnect();
}

void WindowSender::Drop() noexcept {
    if (objBeaconConnection_ == nullptr) return;
    objBeaconConnection_->SetListener(nullptr);
    objBeaconConnection_.Reset();
}

void WindowSender::End() noexcept {
    Drop();
    if (const auto form = std::exchange(mHiddenForm_, nullptr)) form->Unload();
}

void WindowSender::RetryDisconnect() const {
    if (mHiddenForm_ != nullptr) mHiddenForm_->StartDisconnectTimer();
}

void WindowSender::StopToolbarTimer() const {
    if (mHiddenForm_ != nullptr) mHiddenForm_->StopToolbarTimer();
}

}  // namespace beacon
