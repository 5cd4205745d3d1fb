#pragma once

#include <optional>
#include <span>

/// Paths of window classes to Outlook's controls; each step goes to a direct child. They depend on Outlook's major
/// version (9 to 12) and the inspector's editor type (1 plain text, 2 HTML, 3 rich text, 4 Word).
namespace beacon {

/// Static storage. A nullptr entry matches the first child of any class.
using ClassPath = std::span<const char* const>;

inline constexpr char kDialogClass[] = "#32770";
inline constexpr char kOutlookClass[] = "rctrl_renwnd32";  // top-level windows, and panes of an explorer
inline constexpr char kHtmlViewerClass[] = "Internet Explorer_Server";

struct ExplorerSelectionPath {
    bool startsAtDialog;  // at the explorer's first dialog descendant, not at the explorer
    ClassPath parents;
    const char* control;  // tried below the last parent before kHtmlViewerClass
};

/// Path to the control of the reading pane; nullopt if no selection is read in this version.
std::optional<ExplorerSelectionPath> ExplorerSelectionClasses(long version);

/// Path to the control with the selection in an item window. nullopt if no selection is read in this version; empty if
/// the version has no control for this editor.
std::optional<ClassPath> InspectorSelectionClasses(long version, long editorType);

/// Path from an item window to the dialog with its fields. Empty for unknown versions.
ClassPath ItemDialogClasses(long version);

/// Path from that dialog to the control with the body: three nullptr entries for unknown editors up to version 11, and
/// empty for unknown versions.
ClassPath ItemBodyClasses(long version, long editorType);

/// Whether the path's last window is an HTML viewer, whose text is read from its document.
bool LeadsToHtmlViewer(ClassPath path);

}  // namespace beacon
