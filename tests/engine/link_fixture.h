#pragma once

#include <optional>

#include "engine/engine_link.h"
#include "support/log.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_engine.h"

namespace beacon::test {

/// The owner of a link. Logs the link's requests at level 1.
class FakeHost final : public LinkHost {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    bool ToolbarWasRemoved() override { return toolbarWasRemoved; }

    void ReplayPendingClick() override {
        LogMsg(L"* host replays");
        if (onReplay) onReplay();
    }

    void ReSend(bool bForce) override { LogMsg(L"* host re-sends ", bForce ? 1 : 0); }

    STDMETHODIMP ForceUpdate() override {
        LogMsg(L"* host forces");
        return S_OK;
    }

    void SetUpWindowsHook() override { LogMsg(L"* host hooks"); }

    ULONG references = 0;
    bool toolbarWasRemoved = false;
    std::function<void()> onReplay;
};

/// A running engine, and links to it.
class LinkTest : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        engine_.emplace();
    }

    void TearDown() override {
        if (link_ != nullptr) EXPECT_EQ(link_->References(), 1u);
        link_.Reset();
        EXPECT_EQ(host_.references, 0u);
        engine_.reset();
        AdapterTest::TearDown();
    }

    /// Replaces an earlier link.
    Application& MakeLink() {
        link_ = com::MakeObject<Application>();
        link_->Init(Handle(), &host_);
        return *link_.Get();
    }

    /// The same for a started link; clears the log.
    Application& StartLink() {
        MakeLink().StartUp();
        EXPECT_TRUE(link_->gAppAdapterStarted);
        log_.Clear();
        return *link_.Get();
    }

    FakeHost host_;
    com::ComPtr<Application> link_;
    std::optional<FakeEngine> engine_;
};

inline void Fail() { throw com::Error(57, L"Device I/O error", L"the fake"); }

}  // namespace beacon::test
