#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

/// Every call of the utility server lets other code run, so the window may close inside it.
class ToolbarOfAClosingWindow : public ToolbarFixture {
protected:
    /// What the toolbar has written, except CommandDone, which may follow a command that has begun.
    Numbers Written() const {
        const auto isOther = [](const std::wstring& call) { return !call.starts_with(L"CommandDone"); };
        return {barChanges_, host_.updates, static_cast<long>(host_.contexts.size()),
                static_cast<long>(std::ranges::count_if(config_.calls, isOther))};
    }

    /// Repeats `act`, with the window closing inside the first call of the server, then inside the second, and so on.
    /// `check` runs after each with what had been written when the window closed. Returns the number of calls.
    int CloseInsideEveryCall(const std::function<void()>& prepare, const std::function<void()>& act,
                             const std::function<void(const Numbers&)>& check) {
        for (int last = 1;; ++last) {
            SCOPED_TRACE(last);
            OpenWindow();
            prepare();
            int calls = 0;
            Numbers written;
            onCall_ = [&](const std::wstring& call) {
                if (!call.starts_with(L"ToolbarConfig") || ++calls != last) return;
                host_.ended = true;
                written = Written();
            };
            act();
            onCall_ = nullptr;
            if (host_.ended) check(written);
            DeleteBar();
            if (!std::exchange(host_.ended, false)) return calls;
        }
    }
};

TEST_F(ToolbarOfAClosingWindow, StopsAnInstallation) {
    const auto check = [&](const Numbers&) {
        EXPECT_EQ(host_.timerStops, 0);
        if (BeaconBar() == nullptr) return;
        EXPECT_EQ(Tags().size(), 7u) << "only a complete bar stays";
        EXPECT_TRUE(BeaconBar()->visible);
    };
    EXPECT_GT(CloseInsideEveryCall([] {}, [&] { Install(); }, check), 30);
}

TEST_F(ToolbarOfAClosingWindow, DoesNotBuildABarInAnotherWindow) {
    InstallWithFailure(L"ButtonTooltip");  // now the toolbar knows the window's bars
    host_.ended = true;
    barChanges_ = 0;
    Install();
    EXPECT_EQ(Numbers({barChanges_, host_.timerStops}), Numbers({0, 0}));
}

TEST_F(ToolbarOfAClosingWindow, StopsACommand) {
    struct {
        const char* name;
        bool contextIsChosen;
        std::function<void()> act;
        int fewestCalls;
    } const cases[] = {{"update", true, [&] { Click(1); }, 3},
                       {"search", true, [&] { Click(4); }, 3},
                       {"search in context", true, [&] { Click(5); }, 3},
                       {"synchronisation", false, [&] { toolbar_->SyncToolbar(5); }, 2},
                       {"choice of a context", false, [&] { Choose(L"Sales"); }, 1}};

    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const auto prepare = [&] {
            Install();
            if (one.contextIsChosen) Choose(L"Sales");
        };
        const auto check = [&](const Numbers& written) {
            EXPECT_EQ(Written(), written);
            EXPECT_GE(std::ranges::count(config_.calls, L"CommandDone 4711"),
                      std::ranges::count(config_.calls, L"BeginCommand"));
        };
        EXPECT_GE(CloseInsideEveryCall(prepare, one.act, check), one.fewestCalls);
    }
}

TEST_F(ToolbarOfAClosingWindow, SurvivesItsReleaseInsideACommand) {
    Install();
    onCall_ = [&](const std::wstring& call) {
        if (call != L"ToolbarConfig.NewSearch") return;
        toolbar_->SetConnect(nullptr);
        const long alive = com::LiveThings();
        toolbar_.Reset();
        EXPECT_EQ(com::LiveThings(), alive) << "the command keeps the toolbar";
    };
    Click(4);
    EXPECT_EQ(toolbar_, nullptr);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
    EXPECT_EQ(host_.references, 0u);
}

}  // namespace
}  // namespace beacon::test
