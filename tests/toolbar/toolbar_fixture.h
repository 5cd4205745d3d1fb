#pragma once

#include "common/call_points.h"
#include "common/journal.h"
#include "engine/toolbar_config.h"
#include "outlook/bars/bar_set.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_outlook.h"
#include "toolbar/toolbar.h"

namespace beacon::test {

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
        if (onUpdate) onUpdate();
        return S_OK;
    }

    void StopToolbarTimer() override { ++timerStops; }

    com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) override {
        return others.contains(hWnd) ? com::ComPtr<ToolbarHost>(others[hWnd]) : nullptr;
    }

    IDispatch* AsDispatch() override { return nullptr; }

    com::Object outlook;
    bool ended = false;  ///< as a connection whose window has gone
    bool isInspector = false;
    std::map<long, ToolbarHost*> others;
    std::function<void()> onUpdate;
    Texts contexts;
    int updates = 0;
    int timerStops = 0;
    ULONG references = 0;

private:
    [[noreturn]] static long Gone() { com::Raise(com::kNoObject); }

    const long window_;
};

/// The utility server in this process: what its objects tell, and what they have been told.
struct UtilityServer : standin::ToolbarSettings {
    HRESULT refusal = S_OK;  ///< how objects fail to be created
    int asked = 0;           ///< for an object
    /// "BeginCommand", "CommandDone 5", "NewSearch 5 text", "SaveLayout ...".
    Texts calls;
    /// Runs inside every call, as from outside while the caller waits, with the member's name ("" inside a creation).
    std::function<void(const std::wstring&)> onCall;
    /// What the member of this name returns at its next call.
    std::map<std::wstring, HRESULT> failures;

    /// What this call meets.
    void Hear(unsigned number, const std::wstring& name) {
        standin::CallPlan plan;
        const std::wstring member = name.substr(name.find(L'.') + 1);
        if (name.starts_with(L"ToolbarConfig.") && member.find(L' ') == std::wstring::npos) {
            plan.number = number;
            plan.after = [this, member] {
                if (onCall) onCall(member);
            };
            const auto failure = failures.extract(member);
            if (!failure.empty()) plan.result = failure.mapped();
        }
        standin::TheCallPoints().Start(plan);
    }
};

/// One explorer window with bars of its own, a utility server in this process, and a toolbar that is not yet installed.
class ToolbarFixture : public AdapterTest, private standin::BarView {
protected:
    static constexpr long kWindow = 4711;

    void SetUp() override {
        AdapterTest::SetUp();
        standin::TheCallPoints().Watch(GetModuleHandleW(nullptr));
        standin::TheCallPoints().SetListener([this](auto... call) { config_.Hear(call...); });
        standin::TheJournal().Divert([this](std::wstring_view line) { config_.calls.emplace_back(line.substr(2)); });
        RegisterServer();
        config_.bitmaps = TOOLBAR_BITMAPS;
        config_.buttons[0].caption = L"Beacon";
        config_.engineState = 3;
        host_.outlook = com::ToObject(standin::HandOut(outlook_));
        OpenWindow();
    }

    void TearDown() override {
        toolbar_.Reset();
        host_.outlook.Reset();
        EXPECT_EQ(host_.references, 0u) << "the connection must not be kept by its toolbar";
        bars_->Close();
        Uninstall();
        standin::TheCallPoints().Watch(nullptr);
        standin::TheJournal().Divert({});
        AdapterTest::TearDown();
    }

    /// Another window, as a later session has it, with bars of its own and those that are permanent.
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
            ++config_.asked;
            if (config_.onCall) config_.onCall(L"");
            com::Check(config_.refusal);
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

    standin::BarControl& Control(int position) const { return *Pointer(position); }

    /// False when the default was cancelled.
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

    com::Object Late() const { return com::Object(toolbar_.Get()); }

    Texts Tags() const {
        Texts tags;
        for (const auto& control : BeaconBar()->controls) tags.push_back(control->tag);
        return tags;
    }

    /// The tags of a bar that has been synchronised.
    static Texts TagsFor(long window) {
        Texts tags;
        for (int position = 1; position <= 7; ++position)
            tags.push_back(L"corvantis-beacon " + std::to_wstring(window) + L";" + std::to_wstring(position));
        return tags;
    }

    UtilityServer config_;
    standin::BarStore store_;
    std::shared_ptr<standin::BarSet> bars_;
    const std::shared_ptr<FakeApplication> outlook_ = std::make_shared<FakeApplication>();
    FakeHost host_{kWindow};
    com::ComPtr<CToolbar> toolbar_;
    int barChanges_ = 0;

private:
    standin::BarSet::ControlPointer Pointer(int position) const {
        return BeaconBar()->controls.at(static_cast<size_t>(position) - 1);
    }

    void BarsChanged() override { ++barChanges_; }

    std::optional<RECT> PlaceOf(const standin::Bar&) override { return std::nullopt; }

    std::optional<RECT> PlaceOf(const standin::BarControl&) override { return std::nullopt; }

    HWND Window() const override { return nullptr; }

    standin::Monitor monitor_{true};
    DWORD classRegistration_ = 0;
};

}  // namespace beacon::test
