#pragma once

#include <algorithm>
#include <stdexcept>

#include "common/call_points.h"
#include "common/journal.h"
#include "engine/toolbar_config.h"
#include "outlook/bars/bar_set.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_outlook.h"
#include "toolbar/toolbar.h"

namespace beacon::test {

using Numbers = std::vector<long>;
using Texts = std::vector<std::wstring>;

class WindowWithBars final : public standin::AutomationObject {
public:
    explicit WindowWithBars(const std::shared_ptr<standin::BarSet>& bars) : AutomationObject(L"Window") {
        AddProperty(1, L"CommandBars", [bars] { return standin::HandOut(bars->CommandBars()); });
    }
};

class FakeHost final : public ToolbarHost {
public:
    explicit FakeHost(long window) : window_(window) {}

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    long GetHwnd() override { return ended ? Gone() : window_; }

    bool ListenerIsInspector() override { return ended ? Gone() != 0 : isInspector; }

    com::Object OutlookApplication() override { return outlook; }

    void SetContextString(const std::wstring& text) override { contexts.push_back(text); }

    STDMETHODIMP OnUpdateClicked() override {
        ++updates;
        return S_OK;
    }

    void StopToolbarTimer() override { ++timerStops; }

    com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) override {
        return others.contains(hWnd) ? com::ComPtr<ToolbarHost>(others[hWnd]) : nullptr;
    }

    IDispatch* AsDispatch() override { return nullptr; }

    com::Object outlook;
    bool ended = false;  ///< the window is gone
    bool isInspector = false;
    std::map<long, ToolbarHost*> others;
    Texts contexts;
    int updates = 0;
    int timerStops = 0;
    ULONG references = 0;

private:
    [[noreturn]] static long Gone() { com::Raise(com::kNoObject); }

    const long window_;
};

/// The utility server in this process: the values that its objects return, and the calls that they received.
struct UtilityServer : standin::ToolbarSettings {
    HRESULT creationResult = S_OK;
    int creations = 0;  ///< attempts included
    Texts calls;        ///< "BeginCommand", "CommandDone 5", "NewSearch 5 text", "SaveLayout ..."
};

/// An explorer window with its own bars, a utility server in this process, and a toolbar that is not yet installed.
class ToolbarFixture : public AdapterTest, private standin::BarView {
protected:
    static constexpr long kWindow = 4711;

    void SetUp() override {
        AdapterTest::SetUp();
        standin::TheCallPoints().Watch(GetModuleHandleW(nullptr));
        standin::TheCallPoints().SetListener([this](auto... call) { PlanCall(call...); });
        standin::TheJournal().Redirect([this](std::wstring_view line) { config_.calls.emplace_back(line.substr(2)); });
        RegisterServer();
        config_.bitmaps = L"C:\\nowhere";  // most tests need no faces, which take time
        config_.buttons[0].caption = L"Beacon";
        config_.engineState = 3;
        host_.outlook = com::ToObject(standin::HandOut(outlook_));
        OpenWindow();
    }

    void TearDown() override {
        onCall_ = nullptr;  // it may refer to locals of the test
        toolbar_.Reset();
        host_.outlook.Reset();
        EXPECT_EQ(host_.references, 0u) << "the toolbar must not own its connection";
        bars_->Close();
        Uninstall();
        standin::TheCallPoints().Watch(nullptr);
        standin::TheJournal().Redirect({});
        AdapterTest::TearDown();
    }

    /// Opens another window, as in a later session: it has the permanent bars.
    void OpenWindow() {
        toolbar_.Reset();
        if (bars_ != nullptr) bars_->Close();
        bars_ = std::make_shared<standin::BarSet>(standin::WindowKind::Explorer, store_);
        bars_->SetView(this);
        outlook_->activeExplorer = std::make_shared<WindowWithBars>(bars_);
        toolbar_ = NewToolbar(host_);
    }

    void RegisterServer() {
        const auto factory = com::MakeClassFactory([this] {
            ++config_.creations;
            if (onCall_) onCall_(L"ToolbarConfig");
            com::Check(config_.creationResult);
            return standin::MakeToolbarConfig(config_, monitor_);
        });
        com::Check(CoRegisterClassObject(__uuidof(::ToolbarConfig), factory.Get(), CLSCTX_INPROC_SERVER,
                                         REGCLS_MULTIPLEUSE, &classRegistration_));
    }

    void Uninstall() {
        if (classRegistration_ != 0) CoRevokeClassObject(std::exchange(classRegistration_, 0));
    }

    com::ComPtr<CToolbar> NewToolbar(FakeHost& host) {
        auto toolbar = com::MakeObject<CToolbar>();
        toolbar->SetConnect(&host);
        return toolbar;
    }

    std::shared_ptr<standin::Bar> BeaconBar() const { return bars_->Find(L"Beacon Toolbar"); }

    /// Throws, and so fails the test, if there is no bar.
    standin::Bar& Bar() const {
        if (BeaconBar() == nullptr) throw std::runtime_error("there is no bar");
        return *BeaconBar();
    }

    standin::BarControl& Control(int position) const { return *Pointer(position); }

    /// Returns false if the handler cancelled the default action.
    bool Click(int position) {
        std::wstring said;
        bars_->SetListener([&](const std::wstring& line) { said = line; });
        bars_->RaiseClick(Pointer(position));
        bars_->SetListener({});
        return !said.ends_with(L" cancelled");
    }

    void Choose(const std::wstring& text) {
        standin::EnterText(Control(3), text);
        bars_->RaiseChange(Pointer(3));
    }

    void Install() { toolbar_->InstallBeaconToolbar(VARIANT_FALSE); }

    /// Tries to install while the next call of this name fails.
    void InstallWithFailure(const wchar_t* call) {
        failures_[call] = E_FAIL;
        Install();
        EXPECT_TRUE(failures_.empty()) << com::ToAnsi(call) << " is not called";
    }

    /// As the user does.
    void DeleteBar() {
        if (BeaconBar() != nullptr) bars_->Delete(BeaconBar());
    }

    com::Object Late() const { return com::Object(toolbar_.Get()); }

    Texts Tags() const {
        Texts tags;
        for (const auto& control : Bar().controls) tags.push_back(control->tag);
        return tags;
    }

    /// The tags of a bar that is synchronised with the window.
    static Texts TagsFor(long window) {
        Texts tags;
        for (int position = 1; position <= 7; ++position)
            tags.push_back(L"corvantis-beacon " + std::to_wstring(window) + L";" + std::to_wstring(position));
        return tags;
    }

    /// Runs after every call that the toolbar makes, before the caller goes on, with the name of the call:
    /// "ToolbarConfig.ButtonCount", "CommandBars.Invoke Add", or "ToolbarConfig" for the creation of a server.
    std::function<void(const std::wstring&)> onCall_;
    /// Results of the next call whose name ends like this. Such a call has no effect.
    std::map<std::wstring, HRESULT> failures_;
    UtilityServer config_;
    standin::BarStore store_;
    std::shared_ptr<standin::BarSet> bars_;
    const std::shared_ptr<FakeApplication> outlook_ = std::make_shared<FakeApplication>();
    FakeHost host_{kWindow};
    com::ComPtr<CToolbar> toolbar_;
    int barChanges_ = 0;

private:
    void PlanCall(unsigned number, const std::wstring& name) {
        standin::CallPlan plan;
        plan.number = number;
        plan.after = [this, name] {
            if (onCall_) onCall_(name);
        };
        const auto failure =
            std::ranges::find_if(failures_, [&](const auto& one) { return name.ends_with(one.first); });
        if (failure != failures_.end()) {
            plan.result = failure->second;
            failures_.erase(failure);
        }
        standin::TheCallPoints().Start(plan);
    }

    standin::BarSet::ControlPointer Pointer(int position) const {
        return Bar().controls.at(static_cast<size_t>(position) - 1);
    }

    void BarsChanged() override { ++barChanges_; }

    std::optional<RECT> PlaceOf(const standin::Bar&) override { return std::nullopt; }

    std::optional<RECT> PlaceOf(const standin::BarControl&) override { return std::nullopt; }

    HWND Window() const override { return nullptr; }

    standin::Monitor monitor_{true};
    DWORD classRegistration_ = 0;
};

}  // namespace beacon::test
