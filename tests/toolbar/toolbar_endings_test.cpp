#include <algorithm>

#include "toolbar_fixture.h"

namespace beacon::test {
namespace {

/// Whatever the toolbar does, the utility server lets others run meanwhile: the window may end inside every call.
class TheWindowsEnd : public ToolbarFixture {
protected:
    /// Does it all over again with the window ending inside the first call of the server, then inside the second, and
    /// so on; `check` sees what was left after each.
    void EndInsideEveryCall(const std::function<void()>& prepare, const std::function<void()>& act,
                            const std::function<void()>& check) {
        config_.bitmapFolder = L"C:\\nowhere";
        bool ended = true;
        for (int last = 1; ended; ++last) {
            SCOPED_TRACE(last);
            OpenWindow();
            host_.ended = false;
            prepare();
            int calls = 0;
            config_.onCall = [&](const std::wstring&) {
                if (++calls != last) return;
                host_.ended = true;
                Note();
            };
            act();
            config_.onCall = nullptr;
            ended = calls >= last;
            if (ended) {
                check();
                ++endings_;
            }
            if (BeaconBar() != nullptr) bars_->Delete(BeaconBar());
        }
        host_.ended = false;
    }

    void Note() {
        changesBefore_ = barChanges_;
        callsBefore_ = config_.calls.size();
        updatesBefore_ = host_.updates;
        contextsBefore_ = host_.contexts.size();
    }

    void ExpectNothingWritten() const {
        EXPECT_EQ(barChanges_, changesBefore_);
        EXPECT_EQ(host_.updates, updatesBefore_);
        EXPECT_EQ(host_.contexts.size(), contextsBefore_);
        EXPECT_TRUE(std::all_of(config_.calls.begin() + static_cast<std::ptrdiff_t>(callsBefore_), config_.calls.end(),
                                [](const std::wstring& call) { return call.starts_with(L"CommandDone"); }))
            << "a command that was begun may be told done, nothing more";
    }

    int endings_ = 0;

private:
    int changesBefore_ = 0;
    size_t callsBefore_ = 0;
    int updatesBefore_ = 0;
    size_t contextsBefore_ = 0;
};

TEST_F(TheWindowsEnd, StopsAnInstallation) {
    EndInsideEveryCall([] {}, [&] { Install(); },
                       [&] {
                           EXPECT_EQ(host_.timerStops, 0);
                           if (BeaconBar() == nullptr) return;
                           // The end came when the last control stood: then the bar is whole and fit for the next.
                           EXPECT_EQ(BeaconBar()->controls.size(), 7u);
                           EXPECT_TRUE(BeaconBar()->visible);
                           EXPECT_EQ(Control(7).tag.substr(0, 16), L"corvantis-beacon");
                       });
    EXPECT_GT(endings_, 30);
}

TEST_F(TheWindowsEnd, StopsASecondTryInTheBarsOfWhicheverWindowIsActive) {
    outlook_->explorer = nullptr;
    Install();
    outlook_->explorer = bars_;
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

TEST_F(TheWindowsEnd, StopsWhateverAClickHasBegun) {
    for (const int position : {1, 4, 5, 7}) {
        SCOPED_TRACE(position);
        endings_ = 0;
        EndInsideEveryCall(
            [&] {
                Install();
                Choose(L"Sales");
            },
            [&] { Click(position); }, [&] { ExpectNothingWritten(); });
        EXPECT_GE(endings_, 3);
    }
}

TEST_F(TheWindowsEnd, StopsAReplay) {
    EndInsideEveryCall(
        [&] {
            Install();
            Late().Put(L"g_sPendingButton", L"Search");
            Late().Put(L"g_nPendingButton", 1L);
        },
        [&] { toolbar_->OnConnect(); }, [&] { ExpectNothingWritten(); });
    EXPECT_GE(endings_, 4);
}

TEST_F(TheWindowsEnd, StopsAnActivationAndAChoice) {
    EndInsideEveryCall([&] { Install(); }, [&] { toolbar_->SyncToolbar(5); }, [&] { ExpectNothingWritten(); });
    EXPECT_EQ(endings_, 2);
    endings_ = 0;
    EndInsideEveryCall([&] { Install(); }, [&] { bars_->RaiseChange(BeaconBar()->controls.at(2)); },
                       [&] { ExpectNothingWritten(); });
    EXPECT_EQ(endings_, 1);
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
