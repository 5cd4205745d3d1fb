// Start, end and what is left behind, as an add-in meets them.
#include <gmock/gmock.h>

#include "running_outlook.h"

namespace beacon::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

TEST(Life, StartAndQuitInOrderAndNothingLeft) {
    const Ended run = RunOutlook({.arguments = "--outlook-version 10.0.2627", .script = "quit\n"});
    EXPECT_THAT(
        run.After("addin: "),
        ElementsAre("OnConnection 1 custom", "version 10.0.2627", "instance StandinTest.Addin", "Startup explorers=1",
                    "OnStartupComplete", "explorer Close", "Quit, no window", "OnBeginShutdown", "OnDisconnection 0"));
    EXPECT_THAT(run.lines, IsSupersetOf({"references: none", "sinks: none", "PROP_OLK: none",
                                         "DllCanUnloadNow: S_OK (StandinTest.Addin)",
                                         "windows of StandinTest.Addin: none", "library of StandinTest.Addin: unloaded",
                                         "hooks: none called after the unload", "end 0"}));
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, QuitNowComesWithWindowsOpen) {
    const Ended run = RunOutlook({.script = "open 1\nquit now\n"});
    const auto told = run.After("addin: ");
    EXPECT_TRUE(run.Has("addin: Quit, window"));
    EXPECT_FALSE(run.Has("addin: explorer Close"));
    // The add-in takes its property away on Close, which did not come.
    EXPECT_THAT(run.After("PROP_OLK: "), ElementsAre(testing::MatchesRegex("\\d+=0x\\w+"))) << run.all;
    EXPECT_LT(run.all.rfind("event "), run.all.find("addin: OnDisconnection"));
    EXPECT_EQ(told.back(), "OnDisconnection 0");
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, FastShutdownSkipsTheFarewell) {
    const Ended run = RunOutlook({.arguments = "--fast-shutdown", .script = "quit\n"});
    EXPECT_EQ(run.After("addin: ").back(), "Quit, no window");
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, StartupCanBeLeftOut) {
    const Ended run = RunOutlook({.arguments = "--no-startup-event", .script = "quit\n"});
    EXPECT_FALSE(run.Has("addin: Startup"));
    EXPECT_TRUE(run.Has("addin: OnStartupComplete"));
}

TEST(Life, ItemOnlyHasNoExplorer) {
    const Ended run = RunOutlook({.arguments = "--item-only Budget", .script = "windows\nclose\n"});
    EXPECT_TRUE(run.Has("addin: Startup explorers=0"));
    EXPECT_TRUE(run.Has("addin: no explorer"));
    EXPECT_FALSE(run.Has("addin: NewInspector"));
    EXPECT_TRUE(run.Has("addin: Quit, no window"));  // the last window's end is the program's
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, AddinsComeAndGoAtRunTime) {
    const Ended run =
        RunOutlook({.arguments = "--no-addins",
                    .script = "connect\ndisconnect\nunload?\nconnect external\ndisconnect\ndisconnect\n"});
    EXPECT_THAT(run.After("addin: On"),
                ElementsAre("Connection 0 custom", "Disconnection 1", "Connection 2 custom", "Disconnection 1"));
    EXPECT_TRUE(run.Has("error: line 6: StandinTest.Addin is not connected"));
    EXPECT_EQ(run.code, 2u);
}

struct LeakCase {
    const char* asked;
    const char* script;
    const char* reported;
};

class Leaks : public testing::TestWithParam<LeakCase> {};

TEST_P(Leaks, AreCountedByObject) {
    const LeakCase& leak = GetParam();
    const Ended run = RunOutlook({.script = leak.script, .addin = leak.asked});
    EXPECT_THAT(run.lines, testing::Contains(leak.reported)) << run.all;
    EXPECT_TRUE(run.Has("addin: OnDisconnection 0"));  // not strict: goes on all the same
    EXPECT_EQ(run.code, 0u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Leaks,
                         testing::Values(LeakCase{"leak-explorer", "quit\n", "references: Explorer 1: 1"},
                                         LeakCase{"leak-explorer leak-twice", "quit\n", "references: Explorer 1: 2"},
                                         LeakCase{"leak-point", "quit\n", "references: Explorer 1: 1"},
                                         LeakCase{"leak-selection", "quit\n", "references: Selection: 1"},
                                         LeakCase{"leak-instance", "quit\n",
                                                  "references: COMAddIn StandinTest.Addin: 1"},
                                         LeakCase{"leak-item leak-inspector", "open Budget\nquit\n",
                                                  "references: MailItem \"Budget\": 1, Inspector 1: 1"}));

TEST(StrictExit, HoldsBackUntilTheTimeoutAndSaysWhy) {
    const Ended run =
        RunOutlook({.arguments = "--strict-exit --strict-timeout 0.3", .script = "quit\n", .addin = "leak-explorer"});
    EXPECT_TRUE(run.Has("strict exit: held back by references: Explorer 1: 1"));
    EXPECT_TRUE(run.Has("addin: OnBeginShutdown"));
    EXPECT_FALSE(run.Has("addin: OnDisconnection"));
    EXPECT_EQ(run.code, 3u);
}

TEST(StrictExit, EndsAtOnceWhenNothingIsHeld) {
    const Ended run = RunOutlook({.arguments = "--strict-exit", .script = "open 1\nquit\n"});
    EXPECT_EQ(run.After("addin: ").back(), "OnDisconnection 0");
    EXPECT_EQ(run.code, 0u);
}

TEST(Left, SinksPropertiesAndWindowsAreReported) {
    const Ended run = RunOutlook({.script = "quit\n", .addin = "keep-window keep-property"});
    EXPECT_TRUE(run.Has("windows of StandinTest.Addin: TestAddinWindow"));
    EXPECT_TRUE(run.Has("PROP_OLK left on explorer 1"));
    EXPECT_FALSE(run.Has("PROP_OLK: none"));
    const Ended held = RunOutlook({.script = "quit now\n", .addin = "hold"});
    EXPECT_TRUE(held.Has("references: none")) << held.all;  // OnDisconnection let go in time
}

TEST(Left, AHookOfAnUnloadedLibraryEndsTheProgram) {
    const Ended run = RunOutlook({.script = "quit\n", .addin = "keep-hook"});
    // Windows ends the program there; Wine lets it go on, and it says so.
    EXPECT_FALSE(run.Has("hooks: none")) << run.all;
    EXPECT_NE(run.code, 0u);
}

}  // namespace
}  // namespace beacon::test
