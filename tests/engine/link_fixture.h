#pragma once

#include <optional>

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

class LinkTest : public AdapterTest {
protected:
    void TearDown() override {
        End();
        AdapterTest::TearDown();
    }

    /// Replaces an earlier engine, and ends its link.
    FakeEngine& RunEngine() {
        End();
        engine_.emplace();
        return *engine_;
    }

    void End() {
        if (link_ != nullptr) EXPECT_EQ(link_->References(), 1u);
        EndLink();
        EXPECT_EQ(host_.references, 0u);
        if (!engine_) return;
        engine_->LetGo();
        EXPECT_EQ(engine_->OutsideReferences(), 0u);
        engine_.reset();
    }

    Application& MakeLink() { return MakeLink(Handle()); }

    Application& MakeLink(long handle) {
        link_ = com::MakeObject<Application>();
        link_->Init(handle, &host_);
        if (engine_) engine_->link = link_.Get();
        return *link_.Get();
    }

    /// Starts engine and link, and clears the log.
    Application& StartLink() {
        RunEngine();
        MakeLink().StartUp();
        EXPECT_TRUE(link_->gAppAdapterStarted);
        log_.Clear();
        return *link_.Get();
    }

    void EndLink() {
        link_.Reset();
        if (engine_) engine_->link = nullptr;
    }

    static HRESULT PutControl(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        return sink->PutControl(_bstr_t(text), nullptr, 0, &result);
    }

    static HRESULT PutMessage(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        return sink->PutMessage(_bstr_t(text), nullptr, 0, &result);
    }

    FakeHost host_;
    com::ComPtr<Application> link_;
    std::optional<FakeEngine> engine_;
};

}  // namespace beacon::test
