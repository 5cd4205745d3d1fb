// Start, end and what is left behind, as an add-in meets them.
#include <gmock/gmock.h>

#include "running_outlook.h"

namespace beacon::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

TEST(Life, StartAndQuitInOrderAndNothingLeft) {
    const Ended run = RunOutlook({.arguments = L"--outlook-version 10.0.2627 --strict-exit", .script = "quit\n"});
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
    const Ended run = RunOutlook({.script = "open 1\nquit now\n", .addin = L"hold"});
    EXPECT_TRUE(run.Has("addin: Quit, window"));
    EXPECT_FALSE(run.Has("addin: explorer Close"));
    // The add-in takes its property away on Close, which did not come.
    EXPECT_THAT(run.After("PROP_OLK: "), ElementsAre(testing::MatchesRegex("\\d+=0x\\w+"))) << run.all;
    EXPECT_LT(run.all.rfind("event "), run.all.find("addin: OnDisconnection"));
    EXPECT_EQ(run.After("addin: ").back(), "OnDisconnection 0");
    EXPECT_THAT(run.lines, Contains("references: none"));  // OnDisconnection let go in time
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, StartupAndTheFarewellCanBeLeftOut) {
    const Ended run = RunOutlook({.arguments = L"--no-startup-event --fast-shutdown", .script = "quit\n"});
    EXPECT_FALSE(run.Has("addin: Startup"));
    EXPECT_TRUE(run.Has("addin: OnStartupComplete"));
    EXPECT_EQ(run.After("addin: ").back(), "Quit, no window");
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, ItemOnlyHasNoExplorer) {
    const Ended run = RunOutlook({.arguments = L"--item-only Budget", .script = "windows\nclose\n"});
    EXPECT_THAT(run.lines, IsSupersetOf({"addin: Startup explorers=0", "addin: no explorer"}));
    EXPECT_FALSE(run.Has("addin: NewInspector"));
    EXPECT_TRUE(run.Has("addin: Quit, no window"));  // the last window's end is the program's
    EXPECT_EQ(run.code, 0u);
}

TEST(Life, AddinsComeAndGoAtRunTime) {
    const Ended run =
        RunOutlook({.arguments = L"--no-addins",
                    .script = "connect\ndisconnect\nunload?\nconnect external\ndisconnect\ndisconnect\n"});
    EXPECT_THAT(run.After("addin: On"),
                ElementsAre("Connection 0 custom", "Disconnection 1", "Connection 2 custom", "Disconnection 1"));
    EXPECT_TRUE(run.Has("error: line 6: StandinTest.Addin is not connected"));
    EXPECT_EQ(run.code, 2u);
}

TEST(Left, ReferencesAreCountedByObject) {
    const Ended run =
        RunOutlook({.script = "open Budget\nquit\n",
                    .addin = L"leak-explorer leak-twice leak-point leak-selection leak-instance leak-item "
                             L"leak-inspector"});
    EXPECT_THAT(run.After("references: "),
                ElementsAre("MailItem \"Budget\": 1, COMAddIn StandinTest.Addin: 1, Explorer 1: 3, Selection: 1, "
                            "Inspector 1: 1"));
    EXPECT_TRUE(run.Has("addin: OnDisconnection 0"));  // not strict: goes on all the same
    EXPECT_EQ(run.code, 0u);
}

TEST(Left, AStrictExitIsHeldBackUntilTheTimeoutAndSaysWhy) {
    const Ended run =
        RunOutlook({.arguments = L"--strict-exit --strict-timeout 0.3", .script = "quit\n", .addin = L"leak-explorer"});
    EXPECT_TRUE(run.Has("strict exit: held back by references: Explorer 1: 1"));
    EXPECT_TRUE(run.Has("addin: OnBeginShutdown"));
    EXPECT_FALSE(run.Has("addin: OnDisconnection"));
    EXPECT_EQ(run.code, 3u);
}

TEST(Left, PropertiesWindowsAndHooksAreReported) {
    const Ended run = RunOutlook({.script = "quit\n", .addin = L"keep-window keep-property keep-hook"});
    EXPECT_TRUE(run.Has("windows of StandinTest.Addin: TestAddinWindow"));
    EXPECT_TRUE(run.Has("PROP_OLK left on explorer 1"));
    EXPECT_FALSE(run.Has("PROP_OLK: none"));
    // Windows ends the program at the call of an unloaded hook; Wine lets it go on, and it says so.
    EXPECT_FALSE(run.Has("hooks: none")) << run.all;
    EXPECT_NE(run.code, 0u);
}

}  // namespace
}  // namespace beacon::tests
