#pragma once

#include "addin/timers.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_services.h"

namespace beacon::test {

/// A hidden form with real timers. Its sender has a listener and a link that seems to be up.
class Timers : public AdapterTest {
protected:
    static constexpr wchar_t kClass[] = L"BeaconOLKAdapter frmHidden";
    static constexpr long kDelay = 100;  // ms

    void SetUp() override {
        AdapterTest::SetUp();
        SetDelay(kDelay);
        listener_.handle = Handle();
        sender_ = com::MakeObject<BeaconConnection>(services_);
        sender_->SetListener(&listener_);
        sender_->objApplication = link_ = com::MakeObject<Application>();
        link_->Init(listener_.handle, nullptr);
        link_->gAppAdapterStarted = link_->gAutoUpdate = true;
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
        AdapterTest::TearDown();
    }

    static void SetDelay(long milliseconds) {
        SetOfMachine(L"StartAnalysisDelay", std::to_wstring(milliseconds).c_str());
    }

    void Load(bool inspector) {
        form_ = frmHidden::Load(inspector);
        form_->SetConnection(sender_.Get());
    }

    static HWND FormWindow() { return FindWindowExW(HWND_MESSAGE, nullptr, kClass, nullptr); }

    void ExpectSends(int sends, DWORD milliseconds) {
        Pump(milliseconds, [&] { return listener_.sends >= sends; });
        EXPECT_EQ(listener_.sends, sends);
    }

    /// Call inside a tick.
    void EndForm() {
        const std::weak_ptr<frmHidden> form = form_;
        form_->Unload();
        form_.reset();
        EXPECT_FALSE(form.expired()) << "the tick has still to end";
    }

    FakeServices services_;
    FakeListener listener_;
    com::ComPtr<BeaconConnection> sender_;
    com::ComPtr<Application> link_;
    std::shared_ptr<frmHidden> form_;
};

}  // namespace beacon::test
