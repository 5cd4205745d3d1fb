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

// The adapter reads bodies out of Outlook 2000's windows only; what is known of the later ones is kept all the same.
TEST(ClassPaths, OfBodiesFollowVersionAndEditor) {
    const struct {
        long version;
        long editor;
        const char* dialog;
        const char* body;
    } cases[] = {
        {10, 1, "AfxWndA/#32770", "AfxWndA/AfxWndA/RichEdit20W"},
        {10, 2, "AfxWndA/#32770", "AfxWndA/AfxWndA/Internet Explorer_Server"},
        {10, 3, "AfxWndA/#32770", "AfxWndA/RichEdit20W"},
        {10, 4, "AfxWndA/#32770", "*/*/*"},
        {11, 1, "AfxWndW/#32770", "AfxWndA/AfxWndW/RichEdit20W"},
        {11, 2, "AfxWndW/#32770", "AfxWndA/AfxWndW/Internet Explorer_Server"},
        {11, 3, "AfxWndW/#32770", "AfxWndA/RichEdit20W"},
        {11, 0, "AfxWndW/#32770", "*/*/*"},
        {12, 1, "AfxWndW/AfxWndW/#32770", "AfxWndA/_WwB/_WwG"},
        {12, 7, "AfxWndW/AfxWndW/#32770", "AfxWndA/_WwB/_WwG"},
        // Of other versions nothing is known.
        {8, 1, "", ""},
        {13, 1, "", ""},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << "version " << row.version << " editor " << row.editor);
        EXPECT_EQ(row.dialog, Joined(ItemDialogClasses(row.version)));
        EXPECT_EQ(row.body, Joined(ItemBodyClasses(row.version, row.editor)));
        EXPECT_EQ(*row.body != 0, ExplorerSelectionClasses(row.version).has_value());
        EXPECT_EQ(*row.body != 0, InspectorSelectionClasses(row.version, row.editor).has_value());
    }
}

}  // namespace
}  // namespace beacon
