#pragma once

#include "addin/timers.h"
#include "tests/fakes/sender_fixture.h"

namespace beacon::test {

/// A hidden form with real timers, for a connected sender with a listener.
class Timers : public Sender {
protected:
    static constexpr wchar_t kClass[] = L"BeaconOLKAdapter frmHidden";
    static constexpr long kDelay = 100;  // ms

    void SetUp() override {
        Sender::SetUp();
        SetDelay(kDelay);
        link_ = sender_->objApplication;
    }

    void TearDown() override {
        if (form_ != nullptr) std::exchange(form_, nullptr)->Unload();
        EXPECT_EQ(FormWindow(), nullptr);
        WNDCLASSW ignored;
        EXPECT_FALSE(GetClassInfoW(com::ModuleInstance(), kClass, &ignored)) << "its code may be gone";
        link_.Reset();
        Sender::TearDown();
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
        std::exchange(form_, nullptr)->Unload();
        EXPECT_FALSE(form.expired()) << "the tick has still to end";
    }

    com::ComPtr<Application> link_;
    std::shared_ptr<frmHidden> form_;
};

}  // namespace beacon::test
