#include "extract/class_paths.h"

#include <gtest/gtest.h>

#include <string>

namespace beacon {
namespace {

std::string Joined(ClassPath path) {
    std::string text;
    for (const char* name : path) {
        text += text.empty() ? "" : "/";
        text += name == nullptr ? "*" : name;
    }
    return text;
}

TEST(ClassPaths, OfTheReadingPane) {
    const struct {
        long version;
        bool startsAtDialog;
        const char* parents;
        const char* control;
    } cases[] = {
        {9, false, "rctrl_renwnd32/rctrl_renwnd32/#32770/AfxWnd/AfxWnd", "RichEdit20A"},
        {10, false, "rctrl_renwnd32/rctrl_renwnd32/AfxWndA/#32770/AfxWndA/AfxWndA", "RichEdit20W"},
        {11, true, "AfxWndA/AfxWndW", "RichEdit20W"},
        {12, false, "rctrl_renwnd32/rctrl_renwnd32/AfxWndW/#32770/AfxWndA/_WwB", "_WwG"},
    };

    for (const auto& row : cases) {
        const auto path = ExplorerSelectionClasses(row.version);
        ASSERT_TRUE(path) << row.version;
        EXPECT_EQ(row.startsAtDialog, path->startsAtDialog) << row.version;
        EXPECT_EQ(row.parents, Joined(path->parents)) << row.version;
        EXPECT_STREQ(row.control, path->control) << row.version;
    }
    EXPECT_FALSE(ExplorerSelectionClasses(8));
    EXPECT_FALSE(ExplorerSelectionClasses(13));
}

TEST(ClassPaths, OfItemWindowsFollowVersionAndEditor) {
    const struct {
        long version;
        long editor;
        const char* dialog;
        const char* body;
        const char* selection;
    } cases[] = {
        {9, 1, "AfxWnd/#32770", "AfxWnd/AfxWnd/RichEdit20A", "AfxWnd/#32770/AfxWnd/AfxWnd/RichEdit20A"},
        {9, 2, "AfxWnd/#32770", "AfxWnd/AfxWnd/Internet Explorer_Server",
         "AfxWnd/#32770/AfxWnd/AfxWnd/Internet Explorer_Server"},
        {9, 3, "AfxWnd/#32770", "AfxWnd/RichEdit20A", "AfxWnd/#32770/AfxWnd/RichEdit20A"},
        {9, 4, "AfxWnd/#32770", "*/*/*", ""},
        {10, 1, "AfxWndA/#32770", "AfxWndA/AfxWndA/RichEdit20W", "AfxWndA/#32770/AfxWndA/AfxWndA/RichEdit20W"},
        {10, 2, "AfxWndA/#32770", "AfxWndA/AfxWndA/Internet Explorer_Server",
         "AfxWndA/#32770/AfxWndA/AfxWndA/Internet Explorer_Server"},
        {10, 3, "AfxWndA/#32770", "AfxWndA/RichEdit20W", "AfxWndA/#32770/AfxWndA/RichEdit20W"},
        {10, 4, "AfxWndA/#32770", "*/*/*", ""},
        {11, 1, "AfxWndW/#32770", "AfxWndA/AfxWndW/RichEdit20W", "AfxWndW/#32770/AfxWndA/AfxWndW/RichEdit20W"},
        {11, 2, "AfxWndW/#32770", "AfxWndA/AfxWndW/Internet Explorer_Server",
         "AfxWndW/#32770/AfxWndA/AfxWndW/Internet Explorer_Server"},
        {11, 3, "AfxWndW/#32770", "AfxWndA/RichEdit20W", "AfxWndW/#32770/AfxWndA/RichEdit20W"},
        {11, 0, "AfxWndW/#32770", "*/*/*", ""},
        {12, 1, "AfxWndW/AfxWndW/#32770", "AfxWndA/_WwB/_WwG", "AfxWndW/AfxWndW/#32770/AfxWndA/_WwB/_WwG"},
        {12, 7, "AfxWndW/AfxWndW/#32770", "AfxWndA/_WwB/_WwG", "AfxWndW/AfxWndW/#32770/AfxWndA/_WwB/_WwG"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << "version " << row.version << " editor " << row.editor);
        EXPECT_EQ(row.dialog, Joined(ItemDialogClasses(row.version)));
        EXPECT_EQ(row.body, Joined(ItemBodyClasses(row.version, row.editor)));
        const auto selection = InspectorSelectionClasses(row.version, row.editor);
        ASSERT_TRUE(selection);
        EXPECT_EQ(row.selection, Joined(*selection));
    }
    for (const long unknown : {8L, 13L}) {
        EXPECT_FALSE(InspectorSelectionClasses(unknown, 1));
        EXPECT_TRUE(ItemDialogClasses(unknown).empty());
        EXPECT_TRUE(ItemBodyClasses(unknown, 1).empty());
    }
}

}  // namespace
}  // namespace beacon
