#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "addin/timers.h"
#include "com/module.h"
#include "tests/fakes/fake_add_in.h"
#include "support/globals.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/log_capture.h"

namespace beacon::test {

/// A hidden form with real timers, whose connection has a listener and a link that seems to be up.
class HiddenForm : public testing::Test {
protected:
    static constexpr wchar_t kClass[] = L"BeaconOLKAdapter frmHidden";
    static constexpr long kDelay = 100;  // ms

    void SetUp() override {
        com::SetModuleInstance(GetModuleHandleW(nullptr));
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
        SetDelay(kDelay);
        globals::gUserInterrupt = globals::gSendNow = globals::gShutdownInProgress = false;
        live_ = com::LiveThings();
        window_ =
            CreateWindowExW(0, L"STATIC", L"watched", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        listener_.handle = HandleToLong(window_);
        sender_ = com::MakeObject<BeaconConnection>(addIn_);
        sender_->SetListener(&listener_);
        sender_->objApplication = link_ = com::MakeObject<Application>();
        link_->Init(listener_.handle, nullptr);
        link_->gAppAdapterStarted = link_->gAutoUpdate = true;
        log_.emplace();
    }

    void TearDown() override {
        if (form_ != nullptr) form_->Unload();
        form_.reset();
        link_.Reset();
        EXPECT_EQ(sender_->References(), 1u);
        sender_.Reset();
        EXPECT_EQ(listener_.references, 0u);
        EXPECT_EQ(FormWindow(), nullptr);
        WNDCLASSW ignored;
        EXPECT_FALSE(GetClassInfoW(com::ModuleInstance(), kClass, &ignored)) << "its code may be gone";
        EXPECT_EQ(com::LiveThings(), live_);
        DestroyWindow(window_);
        log_.reset();
        CoUninitialize();
    }

    static void SetDelay(long milliseconds) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", std::to_wstring(milliseconds));
    }

    void Load(bool inspector) {
        form_ = frmHidden::Load(inspector);
        form_->SetConnection(sender_.Get());
    }

    static HWND FormWindow() { return FindWindowExW(HWND_MESSAGE, nullptr, kClass, nullptr); }

    /// Pumps until the listener has been asked to send so many times, but no longer than the time.
    void PumpUntilSends(int sends, DWORD milliseconds) {
        Pump(milliseconds, [&] { return listener_.sends >= sends; });
    }

    FakeAddIn addIn_;
    FakeListener listener_;
    HWND window_ = nullptr;
    com::ComPtr<BeaconConnection> sender_;
    com::ComPtr<Application> link_;
    std::shared_ptr<frmHidden> form_;
    std::optional<LogCapture> log_;

private:
    long live_ = 0;
};

}  // namespace beacon::test
