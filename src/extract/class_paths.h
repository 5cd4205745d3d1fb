#pragma once

#include <optional>
#include <span>

/// Where Outlook keeps its controls: paths of window classes, walked one direct child a step. They differ by Outlook's
/// major version (9 to 12) and by the inspector's editor type (1 plain text, 2 HTML, 3 rich text, 4 Word).
namespace beacon {

/// Static storage, valid for ever. A nullptr entry stands for no class at all: the first child of any class.
using ClassPath = std::span<const char* const>;

inline constexpr char kDialogClass[] = "#32770";
inline constexpr char kOutlookClass[] = "rctrl_renwnd32";  // its top-level windows, and panes inside an explorer
inline constexpr char kHtmlViewerClass[] = "Internet Explorer_Server";

struct ExplorerSelectionPath {
    bool startsAtDialog;  // from the first dialog descendant of the explorer instead of the explorer itself
    ClassPath parents;
    const char* control;  // tried below the last parent before kHtmlViewerClass
};

/// The reading pane's control. nullopt: no selection is read in this version.
std::optional<ExplorerSelectionPath> ExplorerSelectionClasses(long version);

/// The control that holds the selection in an item window. nullopt: no selection is read in this version; empty: the
/// version has no control to read for this editor.
std::optional<ClassPath> InspectorSelectionClasses(long version, long editorType);

/// From an item window to the dialog that holds its fields. Empty for versions without one.
ClassPath ItemDialogClasses(long version);

/// From that dialog to the control with the body; unknown editors up to version 11 have three unset (nullptr) entries.
/// Empty for unknown versions.
ClassPath ItemBodyClasses(long version, long editorType);

/// The path's last window shows HTML: its text comes out of its document.
bool LeadsToHtmlViewer(ClassPath path);

}  // namespace beacon
