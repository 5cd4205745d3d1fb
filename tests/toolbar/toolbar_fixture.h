#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "outlook/bars/bar_set.h"
#include "recording_config.h"
#include "tests/fakes/adapter_fixture.h"
#include "toolbar/toolbar.h"

namespace beacon::test {

/// Outlook as far as the toolbar looks: an application whose active window has command bars.
class FakeOutlook final : public standin::AutomationObject {
public:
    FakeOutlook();

    /// Null: there is no active window of the kind.
    std::shared_ptr<standin::BarSet> explorer;
    std::shared_ptr<standin::BarSet> inspector;

private:
    _variant_t Window(const std::shared_ptr<standin::BarSet>& bars) const;
};

/// The connection behind a toolbar.
class FakeHost final : public ToolbarHost {
public:
    explicit FakeHost(long window) : window_(window) {}

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    long GetHwnd() override { return ended ? Gone() : window_; }

    bool ListenerIsInspector() override { return ended ? Gone() != 0 : isInspector; }

    com::Object OutlookApplication() override { return outlook; }

    void SetContextString(const std::wstring& text) override { contexts.push_back(text); }

    void OnUpdateClicked() override {
        ++updates;
        if (onUpdate) onUpdate();
    }

    void StopToolbarTimer() override { ++timerStops; }

    com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) override {
        const auto found = others.find(hWnd);
        return found == others.end() ? nullptr : com::ComPtr<ToolbarHost>(found->second);
    }

    IDispatch* AsDispatch() override { return nullptr; }

    com::Object outlook;
    bool ended = false;  ///< as a connection whose window has gone
    bool isInspector = false;
    std::map<long, ToolbarHost*> others;
    std::function<void()> onUpdate;
    std::vector<std::wstring> contexts;
    int updates = 0;
    int timerStops = 0;
    ULONG references = 0;

private:
    [[noreturn]] static long Gone() { com::Raise(com::kNoObject); }

    const long window_;
};

/// One explorer window with bars of its own, a utility server in this process, and a toolbar that is not yet installed.
class ToolbarFixture : public AdapterTest, private standin::BarView {
protected:
    static constexpr long kWindow = 4711;

    void SetUp() override;
    void TearDown() override;

    /// Another window, as a later session has it, with bars of its own and those that are permanent.
    void OpenWindow();
    /// The utility server is there from now on, or not any more.
    void RegisterServer();
    void Uninstall();
    com::ComPtr<CToolbar> NewToolbar(FakeHost& host);

    std::shared_ptr<standin::Bar> BeaconBar() const { return bars_->Find(L"Beacon Toolbar"); }

    standin::BarControl& Control(int position) const {
        return *BeaconBar()->controls.at(static_cast<size_t>(position) - 1);
    }

    /// False when the default was cancelled.
    bool Click(int position);

    /// As a user types or chooses.
    void Choose(const std::wstring& text);

    void Install() { toolbar_->InstallBeaconToolbar(VARIANT_FALSE); }

    com::Object Late() const { return com::Object(toolbar_.Get()); }

    std::vector<std::wstring> Tags() const;

    std::wstring bitmapFolder_;
    standin::BarStore store_;
    std::shared_ptr<standin::BarSet> bars_;
    std::shared_ptr<FakeOutlook> outlook_;
    FakeHost host_{kWindow};
    ConfigRecord config_;
    com::ComPtr<CToolbar> toolbar_;
    int barChanges_ = 0;

private:
    void BarsChanged() override { ++barChanges_; }

    std::optional<RECT> PlaceOf(const standin::Bar&) override { return std::nullopt; }

    std::optional<RECT> PlaceOf(const standin::BarControl&) override { return std::nullopt; }

    HWND Window() const override { return nullptr; }

    DWORD classRegistration_ = 0;
};

/// Waits for the clock's next second to begin: what follows at once is in the same second, and in none before.
void AwaitNextSecond();

}  // namespace beacon::test
