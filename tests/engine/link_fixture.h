#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "com/module.h"
#include "tests/fakes/fake_engine.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/log_capture.h"

namespace beacon::test {

using LogLines = std::vector<std::wstring>;

/// The link's owner. Its demands appear in the level-1 log.
class FakeHost final : public LinkHost {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    bool ToolbarWasRemoved() override { return toolbarWasRemoved; }

    void ReplayPendingClick() override { LogMsg(L"* host replays"); }

    void ReSend(bool bForce) override { LogMsg(L"* host re-sends ", bForce ? 1 : 0); }

    void ForceUpdate() override { LogMsg(L"* host forces"); }

    void SetUpWindowsHook() override { LogMsg(L"* host hooks"); }

    ULONG references = 0;
    bool toolbarWasRemoved = false;
};

/// A link for a hidden window. At the end everything must have been released.
class LinkTest : public testing::Test {
protected:
    void SetUp() override {
        com::SetModuleInstance(GetModuleHandleW(nullptr));
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
        globals::gUserInterrupt = globals::gShutdownInProgress = false;
        live_ = com::LiveThings();
        window_ =
            CreateWindowExW(0, L"STATIC", L"watched", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        log_.emplace();
    }

    void TearDown() override {
        if (link_ != nullptr) EXPECT_EQ(link_->References(), 1u);
        EndLink();
        EXPECT_EQ(host_.references, 0u);
        EXPECT_FALSE(globals::gShutdownInProgress);
        StopEngine();
        EXPECT_EQ(com::LiveThings(), live_);
        if (IsWindow(window_)) DestroyWindow(window_);
        log_.reset();
        CoUninitialize();
    }

    FakeEngine& RunEngine() {
        engine_.emplace();
        return *engine_;
    }

    void StopEngine() {
        if (!engine_) return;
        engine_->LetGo();
        EXPECT_EQ(engine_->OutsideReferences(), 0u);
        engine_.reset();
    }

    long Handle() const { return HandleToLong(window_); }

    Application& MakeLink() { return MakeLink(Handle()); }

    Application& MakeLink(long handle) {
        link_ = com::MakeObject<Application>();
        link_->Init(handle, &host_);
        if (engine_) engine_->link = link_.Get();
        return *link_.Get();
    }

    /// A link that is up, and an empty log.
    Application& StartLink() {
        RunEngine();
        MakeLink().StartUp();
        EXPECT_TRUE(link_->gAppAdapterStarted);
        log_->Clear();
        return *link_.Get();
    }

    void EndLink() {
        link_.Reset();
        if (engine_) engine_->link = nullptr;
    }

    /// The level-1 lines since the last call, "#" standing for the window's handle.
    LogLines NewLines() {
        LogLines lines = log_->Lines(1);
        log_->Clear();
        const std::wstring handle = std::to_wstring(Handle());
        for (std::wstring& line : lines)
            for (size_t at = 0; (at = line.find(handle, at)) != std::wstring::npos;)
                line.replace(at, handle.size(), L"#");
        return lines;
    }

    static HRESULT PutControl(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        return sink->PutControl(_bstr_t(text), nullptr, 0, &result);
    }

    static HRESULT PutMessage(MessageSink* sink, const wchar_t* text) {
        _variant_t result;
        return sink->PutMessage(_bstr_t(text), nullptr, 0, &result);
    }

    HWND window_ = nullptr;
    FakeHost host_;
    com::ComPtr<Application> link_;
    std::optional<FakeEngine> engine_;
    std::optional<LogCapture> log_;

private:
    long live_ = 0;
};

}  // namespace beacon::test
