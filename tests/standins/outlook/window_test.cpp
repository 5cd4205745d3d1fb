// Windows, their events and the commands that cause them.
#include <gmock/gmock.h>

#include "running_outlook.h"

namespace beacon::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

std::vector<std::string> Inspection(const Ended& run) {
    std::vector<std::string> told;
    for (const std::string& line : run.After("addin: "))
        if (line.find("nspector") != std::string::npos || line.starts_with("item")) told.push_back(line);
    return told;
}

TEST(Explorer, OneChangeOfSelectionRaisesTwoEventsAndANewOneIsAnnounced) {
    const Ended run =
        RunOutlook({.script = "select 1\nselect \"Anna Weber\",1\nselect none\nnew explorer\nclose\nwindows\n"});
    EXPECT_THAT(run.After("addin: SelectionChange "), ElementsAre("1", "1", "2", "2", "0", "0"));
    EXPECT_THAT(run.After("addin: NewExplorer "), ElementsAre("Inbox - Microsoft Outlook"));
    EXPECT_EQ(run.Count("event Quit"), 1u);
    EXPECT_LT(run.all.find("closed explorer 2"), run.all.find("closed explorer 1"));
}

TEST(Inspector, HasNoWindowWhenItIsAnnouncedAndTellsOfActivation) {
    const Ended run = RunOutlook({.arguments = L"--outlook-version 10 --events new",
                                  .script = "open 1\nactivate explorer\nactivate Budget\nactivate Budget\nclose 1\n"});
    EXPECT_THAT(Inspection(run),
                ElementsAre("NewInspector, no window", "inspector events new", "item events new",
                            "inspector new Activate, window", "inspector new Deactivate",
                            "inspector new Activate, window", "item new Close", "inspector new Close, window"));
    EXPECT_EQ(run.Count("event Activate explorer 1"), 3u);
}

TEST(Inspector, Outlook2000HasTheOldEventsOnly) {
    const Ended run = RunOutlook({.arguments = L"--outlook-version 9", .script = "open 1\ndelete 1\nquit\n"});
    EXPECT_THAT(Inspection(run),
                ElementsAre("NewInspector, no window", "inspector events old", "item events old",
                            "inspector old Activate, window", "item old Close", "inspector old Close, window"));
    EXPECT_FALSE(run.Has("BeforeDelete"));
}

TEST(Inspector, LaterVersionsTellOfDeletionAndTitlesAreOutlooks) {
    const Ended run =
        RunOutlook({.script = "select 1\nopen 1\ndelete 1\nitems\nopen 1\ncaption\nopen 2\ncaption\ncompose\ncaption\n"
                              "add task \"Call back\"\nopen \"Call back\"\ncaption\n"});
    const auto told = Inspection(run);
    EXPECT_THAT(told, Contains("item new BeforeDelete"));
    EXPECT_THAT(told, testing::Not(Contains("item old BeforeDelete")));
    EXPECT_THAT(run.After("addin: SelectionChange "), ElementsAre("1", "1", "1", "1"));  // the next one is selected
    EXPECT_TRUE(run.Has("item 1 MailItem \"Gr"));
    EXPECT_TRUE(
        run.Has("\"Gr\xC3\xBC\xC3\x9F"
                "e \xE6\x9D\xB1\xE4\xBA\xAC - Message (HTML)\""));
    EXPECT_TRUE(run.Has("\"Anna Weber - Contact\""));
    EXPECT_TRUE(run.Has("\"Untitled - Message (Plain Text)\""));
    EXPECT_TRUE(run.Has("\"Call back - Task\""));
}

TEST(Inspector, ACancelledCloseKeepsTheWindowAndTheProgram) {
    const Ended run =
        RunOutlook({.arguments = L"--events new", .script = "open 1\nclose\nwindows\nquit\n", .addin = L"cancel"});
    EXPECT_EQ(run.Count("close cancelled inspector 1"), 3u);  // by hand, by the quit, at the end of the script
    EXPECT_EQ(run.After("quit cancelled").size(), 2u);
    EXPECT_TRUE(run.Has("error: the quit was cancelled"));
    EXPECT_EQ(run.code, 2u);
}

TEST(Item, TextIsTheWindowsUntilItIsSavedAndEditsAreSeenEverywhere) {
    const Ended run =
        RunOutlook({.script = "compose\nkey a\nwait 100\nbody\nsave\nbody\nactivate explorer\n"
                              "select 1\nselect text \"second line\"\nopen 1\n"
                              "edit 1 replace \"second\" \"changed second\"\nselect text \"changed second\"\n"
                              "activate explorer\nselect text \"changed\"\nselect text \"absent\"\n",
                    .withAddin = false});
    // What is stored against what the object model and the window say.
    EXPECT_THAT(run.After("body "), ElementsAre("stored \"\" now \"a\"", "stored \"a\" now \"a\"")) << run.all;
    EXPECT_TRUE(run.Has("saved item 4"));
    EXPECT_THAT(run.After("selection "), ElementsAre("11 characters \"second line\"",
                                                     "14 characters \"changed second\"", "7 characters \"changed\""));
    EXPECT_EQ(run.code, 2u);
}

TEST(Script, AnErrorNamesItsLineAndEndsWithCode2) {
    const Ended run = RunOutlook({.script = "# fine\n\nselect 9\nselect 1\n", .withAddin = false});
    EXPECT_THAT(run.lines, Contains("error: line 3: there is no item 9 (items: 3)"));
    EXPECT_FALSE(run.Has("SelectionChange"));
    EXPECT_EQ(run.code, 2u);
}

TEST(Script, TypedErrorsAreOnlySaidAndInputGoesThroughTheMessageQueue) {
    const Ended run = RunOutlook({.input = "jump\nopen \"Bud\nclose inspector 1\nwait for \"never\" 0\nquit later\n"
                                           "edit 1 replace \"none of it\" x\nitems all\nselect 1\n"
                                           "wait for ^event.SelectionChange\nsay heard\n"
                                           "key a\nwait 50\nclick 5 5\nwheel\nmove\nwait 50\n"});
    EXPECT_THAT(run.After("error: "),
                ElementsAre("unknown command \"jump\"; \"help\" lists them", "quote is not closed",
                            "there is no inspector 1", "no line matched \"never\" in time", "unexpected \"later\"",
                            "the body does not hold \"none of it\"", "unexpected \"all\""));
    EXPECT_EQ(run.Count("event SelectionChange"), 2u);
    EXPECT_THAT(run.lines, IsSupersetOf({"say heard", "> move"}));
    EXPECT_THAT(run.After("addin: hook "), ElementsAre("key", "button", "wheel"));
    EXPECT_EQ(run.code, 0u);
}

TEST(Start, BadFilesAndOptionsAreTold) {
    const Ended option = RunOutlook({.arguments = L"--fast", .withAddin = false});
    EXPECT_TRUE(option.Has("unknown argument \"--fast\""));
    EXPECT_EQ(option.code, 1u);
    const Ended store = RunOutlook({.arguments = L"--store C:\\none.json", .withAddin = false});
    EXPECT_TRUE(store.Has("cannot open C:\\none.json"));
    EXPECT_EQ(store.code, 1u);
}

}  // namespace
}  // namespace beacon::tests
