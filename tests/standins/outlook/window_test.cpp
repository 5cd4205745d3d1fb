// Windows, their events and the commands that cause them.
#include <gmock/gmock.h>

#include "running_outlook.h"

namespace beacon::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> Inspection(const Ended& run) {
    std::vector<std::string> told;
    for (const std::string& line : run.After("addin: "))
        if (line.find("nspector") != std::string::npos || line.find("item") == 0) told.push_back(line);
    return told;
}

TEST(Explorer, OneChangeOfSelectionRaisesTwoEvents) {
    const Ended run = RunOutlook({.script = "select 1\nselect \"Anna Weber\",1\nselect none\n"});
    EXPECT_THAT(run.After("addin: SelectionChange "), ElementsAre("1", "1", "2", "2", "0", "0"));
}

TEST(Explorer, ANewOneIsAnnounced) {
    const Ended run = RunOutlook({.script = "new explorer\nclose\nwindows\n"});
    EXPECT_THAT(run.After("addin: NewExplorer "), ElementsAre("Inbox - Microsoft Outlook"));
    EXPECT_EQ(run.Count("event Quit"), 1u);
    EXPECT_LT(run.all.find("closed explorer 2"), run.all.find("closed explorer 1"));
}

TEST(Inspector, HasNoWindowWhenItIsAnnounced) {
    const Ended run = RunOutlook({.arguments = "--outlook-version 10 --events new", .script = "open 1\nclose\nquit\n"});
    EXPECT_THAT(Inspection(run),
                ElementsAre("NewInspector, no window", "inspector events new", "item events new",
                            "inspector new Activate, window", "item new Close", "inspector new Close, window"));
}

TEST(Inspector, Outlook2000HasTheOldEventsOnly) {
    const Ended run = RunOutlook({.arguments = "--outlook-version 9", .script = "open 1\ndelete 1\nquit\n"});
    EXPECT_THAT(Inspection(run),
                ElementsAre("NewInspector, no window", "inspector events old", "item events old",
                            "inspector old Activate, window", "item old Close", "inspector old Close, window"));
    EXPECT_FALSE(run.Has("BeforeDelete"));
}

TEST(Inspector, LaterVersionsTellOfDeletion) {
    const Ended run = RunOutlook({.script = "select 1\nopen 1\ndelete 1\nitems\n"});
    const auto told = Inspection(run);
    EXPECT_THAT(told, testing::Contains("item new BeforeDelete"));
    EXPECT_THAT(told, testing::Not(testing::Contains("item old BeforeDelete")));
    EXPECT_THAT(run.After("addin: SelectionChange "), ElementsAre("1", "1", "1", "1"));  // the next one is selected
    EXPECT_TRUE(run.Has("item 1 MailItem \"Gr"));
}

TEST(Inspector, ActivationMovesBetweenWindows) {
    const Ended run = RunOutlook({.arguments = "--events new",
                                  .script = "open 1\nactivate explorer\nactivate Budget\nactivate Budget\nclose 1\n"});
    EXPECT_EQ(run.Count("addin: inspector new Activate"), 2u);
    EXPECT_EQ(run.Count("addin: inspector new Deactivate"), 1u);
    EXPECT_EQ(run.Count("event Activate explorer 1"), 3u);
}

TEST(Inspector, ACancelledCloseKeepsTheWindowAndTheProgram) {
    const Ended run =
        RunOutlook({.arguments = "--events new", .script = "open 1\nclose\nwindows\nquit\n", .addin = "cancel"});
    EXPECT_EQ(run.Count("close cancelled inspector 1"), 3u);  // by hand, by the quit, at the end of the script
    EXPECT_EQ(run.After("quit cancelled").size(), 2u);
    EXPECT_TRUE(run.Has("error: the quit was cancelled"));
    EXPECT_EQ(run.code, 2u);
}

TEST(Inspector, TitlesAreOutlooks) {
    const Ended run = RunOutlook({.script = "open 2\ncaption\nopen 3\ncaption\ncompose\ncaption\nadd task \"Call "
                                            "back\"\nopen \"Call back\"\ncaption\n"});
    EXPECT_TRUE(
        run.Has("\"Gr\xC3\xBC\xC3\x9F"
                "e \xE6\x9D\xB1\xE4\xBA\xAC - Message (HTML)\""));
    EXPECT_TRUE(run.Has("\"Anna Weber - Contact\""));
    EXPECT_TRUE(run.Has("\"Untitled - Message (Plain Text)\""));
    EXPECT_TRUE(run.Has("\"Call back - Task\""));
}

TEST(Input, GoesThroughTheMessageQueue) {
    const Ended run = RunOutlook({.script = "key a\nwait 50\nclick 5 5\nwheel\nmove\nwait 50\n"});
    EXPECT_THAT(run.After("addin: hook "), ElementsAre("key", "button", "wheel"));
}

TEST(Compose, TextIsTheWindowsUntilItIsSaved) {
    const Ended run = RunOutlook({.script = "compose\nkey a\nwait 100\nbody\nsave\nbody\nitems\n", .withAddin = false});
    // What is stored against what the object model and the window say.
    EXPECT_THAT(run.After("body "), ElementsAre("stored \"\" now \"a\"", "stored \"a\" now \"a\"")) << run.all;
    EXPECT_TRUE(run.Has("saved item 4"));
}

TEST(Edit, IsSeenInTheReadingPaneAndTheItemsWindow) {
    const Ended run =
        RunOutlook({.script = "select 1\nselect text \"second line\"\nopen 1\n"
                              "edit 1 replace \"second\" \"changed second\"\nselect text \"changed second\"\n"
                              "activate explorer\nselect text \"changed\"\nselect text \"absent\"\n",
                    .withAddin = false});
    EXPECT_THAT(run.After("selection "), ElementsAre("11 characters \"second line\"",
                                                     "14 characters \"changed second\"", "7 characters \"changed\""));
    EXPECT_EQ(run.code, 2u);
}

TEST(Script, AnErrorNamesItsLineAndEndsWithCode2) {
    for (const auto& [script, message] : std::vector<std::pair<std::string, std::string>>{
             {"# fine\n\nselect 9\nselect 1\n", "error: line 3: there is no item 9 (items: 3)"},
             {"jump\n", "error: line 1: unknown command \"jump\"; \"help\" lists them"},
             {"open \"Bud\n", "error: line 1: quote is not closed"},
             {"close inspector 1\n", "error: line 1: there is no inspector 1"},
             {"wait for \"never\" 0\n", "error: line 1: no line matched \"never\" in time"},
             {"edit 1 replace \"none of it\" x\n", "error: line 1: the body does not hold \"none of it\""},
             {"quit later\n", "error: line 1: unexpected \"later\""}}) {
        const Ended run = RunOutlook({.script = script, .withAddin = false});
        EXPECT_TRUE(run.Has(message)) << run.all;
        EXPECT_FALSE(run.Has("SelectionChange"));
        EXPECT_EQ(run.code, 2u) << script;
    }
}

TEST(Script, TypedErrorsAreOnlySaid) {
    const Ended run = RunOutlook({.input = "jump\nselect 1\nwait for SelectionChange\n", .withAddin = false});
    EXPECT_TRUE(run.Has("error: unknown command \"jump\""));
    EXPECT_EQ(run.Count("event SelectionChange"), 2u);
    EXPECT_EQ(run.code, 0u);
}

TEST(Start, BadFilesAndOptionsAreTold) {
    const Ended option = RunOutlook({.arguments = "--fast", .withAddin = false});
    EXPECT_TRUE(option.Has("unknown argument \"--fast\""));
    EXPECT_EQ(option.code, 1u);
    const Ended store = RunOutlook({.arguments = "--store C:\\none.json", .withAddin = false});
    EXPECT_TRUE(store.Has("cannot open C:\\none.json"));
    EXPECT_EQ(store.code, 1u);
}

}  // namespace
}  // namespace beacon::test
