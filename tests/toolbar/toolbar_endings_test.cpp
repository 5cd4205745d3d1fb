#include <algorithm>

#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

/// Whatever the toolbar does, the utility server lets others run meanwhile: the window may end inside every call.
class TheWindowsEnd : public ToolbarFixture {
protected:
    /// All that the toolbar has written, but for the word that a command is done: it may follow one that was begun.
    std::vector<std::ptrdiff_t> Written() const {
        const auto isMore = [](const std::wstring& call) { return !call.starts_with(L"CommandDone"); };
        return {barChanges_, host_.updates, std::ssize(host_.contexts),
                std::count_if(config_.calls.begin(), config_.calls.end(), isMore)};
    }

    /// Does it all over again with the window ending inside the first call of the server, then inside the second, and
    /// so on; `check` sees what was left after each. How many calls there are.
    int EndInsideEveryCall(const std::function<void()>& prepare, const std::function<void()>& act,
                           const std::function<void()>& check) {
        config_.bitmaps = L"C:\\nowhere";
        for (int last = 1;; ++last) {
            SCOPED_TRACE(last);
            OpenWindow();
            host_.ended = false;
            prepare();
            int calls = 0;
            config_.onCall = [&](const std::wstring&) {
                if (++calls != last) return;
                host_.ended = true;
                writtenAtTheEnd_ = Written();
            };
            act();
            config_.onCall = nullptr;
            if (calls >= last) check();
            if (BeaconBar() != nullptr) bars_->Delete(BeaconBar());
            host_.ended = false;
            if (calls < last) return calls;
        }
    }

    std::vector<std::ptrdiff_t> writtenAtTheEnd_;
};

TEST_F(TheWindowsEnd, StopsAnInstallation) {
    const auto check = [&] {
        EXPECT_EQ(host_.timerStops, 0);
        if (BeaconBar() == nullptr) return;
        // The end came when the last control stood: then the bar is whole and fit for the next.
        EXPECT_EQ(BeaconBar()->controls.size(), 7u);
        EXPECT_TRUE(BeaconBar()->visible);
        EXPECT_EQ(Control(7).tag.substr(0, 16), L"corvantis-beacon");
    };
    EXPECT_GT(EndInsideEveryCall([] {}, [&] { Install(); }, check), 30);
}

TEST_F(TheWindowsEnd, StopsASecondTryInTheBarsOfWhicheverWindowIsActive) {
    const auto window = std::exchange(outlook_->activeExplorer, nullptr);
    Install();
    outlook_->activeExplorer = window;
    host_.ended = true;
    barChanges_ = 0;
    Install();
    host_.ended = false;
    config_.failures[L"ButtonTooltip"] = E_FAIL;
    Install();  // leaves no bar, but has seen the window's bars
    host_.ended = true;
    const int changes = std::exchange(barChanges_, 0);
    Install();
    EXPECT_EQ(barChanges_, 0);
    EXPECT_GT(changes, 0);
    EXPECT_EQ(host_.timerStops, 0);
}

TEST_F(TheWindowsEnd, StopsWhateverTheUserHasBegun) {
    const auto replay = [&] {
        Late().Put(L"g_sPendingButton", L"New Search");
        Late().Put(L"g_nPendingButton", 1L);
        toolbar_->OnConnect();
    };

    struct {
        bool contextIsChosen;
        std::function<void()> act;
        int calls;
    } const cases[] = {{true, [&] { Click(1); }, 3},
                       {true, [&] { Click(4); }, 3},
                       {true, [&] { Click(5); }, 3},
                       {true, [&] { Click(7); }, 3},
                       {false, replay, 4},
                       {false, [&] { toolbar_->SyncToolbar(5); }, 2},
                       {false, [&] { Choose(L"Sales"); }, 1}};

    int number = 0;
    for (const auto& [contextIsChosen, act, calls] : cases) {
        SCOPED_TRACE(++number);
        const auto prepare = [&] {
            Install();
            if (contextIsChosen) Choose(L"Sales");
        };
        const auto check = [&] {
            EXPECT_EQ(Written(), writtenAtTheEnd_);
            EXPECT_GE(std::ranges::count(config_.calls, L"CommandDone 4711"),
                      std::ranges::count(config_.calls, L"BeginCommand"));
        };
        EXPECT_GE(EndInsideEveryCall(prepare, act, check), calls);
    }
}

TEST_F(TheWindowsEnd, MayLetGoOfTheToolbarInsideItsOwnCommand) {
    Install();
    config_.onCall = [&](const std::wstring& member) {
        if (member != L"NewSearch") return;
        toolbar_->SetConnect(nullptr);
        toolbar_.Reset();
    };
    Click(4);
    EXPECT_EQ(toolbar_, nullptr);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
    EXPECT_EQ(host_.references, 0u);
    config_.onCall = nullptr;

    toolbar_ = NewToolbar(host_);
    Install();
    host_.onUpdate = [&] { bars_->Delete(BeaconBar()); };
    Click(7);
    EXPECT_EQ(host_.updates, 1);
    EXPECT_EQ(config_.calls.back(), L"CommandDone 4711");
}

}  // namespace
}  // namespace beacon::test
