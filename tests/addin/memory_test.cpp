#include <cstdlib>
#include <new>

#include "addin/connect.h"
#include "addin/listener_registry.h"
#include "support/log.h"
#include "tests/fakes/outlook_fixture.h"

namespace {

long failing = 0;      // counts down to the allocation that fails; 0: none does
bool allFail = false;  // every allocation

}  // namespace

// For the whole test program.
[[gnu::noinline]] void* operator new(size_t size) {
    const bool fails = allFail || (failing > 0 && --failing == 0);
    if (void* const block = fails ? nullptr : std::malloc(size)) return block;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }

[[gnu::noinline]] void operator delete(void* block, size_t) noexcept { std::free(block); }

namespace beacon::test {
namespace {

class Memory : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        SetOfUser(L"DefaultAutoUpdate", L"True");
        Mail(L"A body that is long enough to be sent");
        StartLikeANewProcess();  // off, as it is on a user's machine: its lines are most of the allocations
        connect_ = com::MakeObject<Connect>();
    }

    void TearDown() override {
        connect_->OnDisconnection(0, nullptr);
        connect_.Reset();
        OutlookTest::TearDown();
    }

    static ListenerRegistry& Registry() { return ListenerRegistry::OfProcess(); }

    void Start() { connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), 0, nullptr, nullptr); }

    com::ComPtr<Connect> connect_;
};

TEST_F(Memory, OneFailedAllocationOfTheStartLeavesNoWindowUnwatched) {
    int messages = 0;
    engine_->onMessage = [&](BSTR) { ++messages; };
    Explorer().items = {items_.front()};
    outlook_->activeExplorer = windows_.back();
    bool failed = true;
    for (long allocation = 1; failed; ++allocation) {
        SCOPED_TRACE(allocation);
        failing = allocation;
        Start();
        failed = std::exchange(failing, 0) == 0;
        windows_.front()->Fire(events::kExplorer, events::kActivate);
        SendMessageW(FindWindowExW(HWND_MESSAGE, nullptr, L"BeaconOLKAdapter frmHidden", nullptr), WM_TIMER, 2, 0);
        ASSERT_EQ(Registry().gExplorerListeners.Count(), 1);
        messages = 0;
        Registry().gExplorerListeners.Item(1)->Send();
        EXPECT_EQ(messages, 4) << "preamble, subject, body, end";
        connect_->OnDisconnection(0, nullptr);
    }
}

TEST_F(Memory, QuittingNeedsNone) {
    Start();
    for (int number = 0; number < 2; ++number) {
        FakeWindow& inspector = Inspector(*items_.front());
        outlook_->inspectors->Fire(events::kInspectors, events::kNewWindow, {com::FromObject(&inspector)});
        inspector.Fire(events::kInspector10, events::kActivate);
    }
    ASSERT_EQ(Registry().gInspectorListeners.Count(), 2);
    allFail = true;
    Registry().ReleaseOutlook();
    allFail = false;
    for (const auto& window : windows_) EXPECT_EQ(window->OutsideReferences() + window->Sinks(), 0u);
}

}  // namespace
}  // namespace beacon::test
