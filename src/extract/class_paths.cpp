#include "extract/class_paths.h"

#include <string_view>

namespace beacon {
namespace {

constexpr const char* kHtml = kHtmlViewerClass;
constexpr const char* kDialog = kDialogClass;
constexpr const char* kMain = kOutlookClass;

enum EditorType : long { kPlainText = 1, kHtmlText = 2, kRichText = 3 };

// Reading pane.
constexpr const char* kExplorer9[] = {kMain, kMain, kDialog, "AfxWnd", "AfxWnd"};
constexpr const char* kExplorer10[] = {kMain, kMain, "AfxWndA", kDialog, "AfxWndA", "AfxWndA"};
constexpr const char* kExplorer11[] = {"AfxWndA", "AfxWndW"};
constexpr const char* kExplorer12[] = {kMain, kMain, "AfxWndW", kDialog, "AfxWndA", "_WwB"};

// From an item window to the body's control, by way of the dialog.
constexpr const char* kPlain9[] = {"AfxWnd", kDialog, "AfxWnd", "AfxWnd", "RichEdit20A"};
constexpr const char* kHtml9[] = {"AfxWnd", kDialog, "AfxWnd", "AfxWnd", kHtml};
constexpr const char* kRich9[] = {"AfxWnd", kDialog, "AfxWnd", "RichEdit20A"};
constexpr const char* kPlain10[] = {"AfxWndA", kDialog, "AfxWndA", "AfxWndA", "RichEdit20W"};
constexpr const char* kHtml10[] = {"AfxWndA", kDialog, "AfxWndA", "AfxWndA", kHtml};
constexpr const char* kRich10[] = {"AfxWndA", kDialog, "AfxWndA", "RichEdit20W"};
constexpr const char* kPlain11[] = {"AfxWndW", kDialog, "AfxWndA", "AfxWndW", "RichEdit20W"};
constexpr const char* kHtml11[] = {"AfxWndW", kDialog, "AfxWndA", "AfxWndW", kHtml};
constexpr const char* kRich11[] = {"AfxWndW", kDialog, "AfxWndA", "RichEdit20W"};
constexpr const char* kWord12[] = {"AfxWndW", "AfxWndW", kDialog, "AfxWndA", "_WwB", "_WwG"};

// For an unknown editor: the first child of any class, three times.
constexpr const char* kUnset[] = {nullptr, nullptr, nullptr};

struct EditorPaths {
    ClassPath plain;
    ClassPath html;
    ClassPath rich;
};

ClassPath ForEditor(const EditorPaths& paths, long editorType) {
    switch (editorType) {
        case kPlainText: return paths.plain;
        case kHtmlText: return paths.html;
        case kRichText: return paths.rich;
        default: return {};
    }
}

// The whole path to the control; empty for an unknown editor or version.
ClassPath ItemControlClasses(long version, long editorType) {
    switch (version) {
        case 9: return ForEditor({kPlain9, kHtml9, kRich9}, editorType);
        case 10: return ForEditor({kPlain10, kHtml10, kRich10}, editorType);
        case 11: return ForEditor({kPlain11, kHtml11, kRich11}, editorType);
        case 12: return kWord12;
        default: return {};
    }
}

}  // namespace

std::optional<ExplorerSelectionPath> ExplorerSelectionClasses(long version) {
    switch (version) {
        case 9: return ExplorerSelectionPath{false, kExplorer9, "RichEdit20A"};
        case 10: return ExplorerSelectionPath{false, kExplorer10, "RichEdit20W"};
        case 11: return ExplorerSelectionPath{true, kExplorer11, "RichEdit20W"};
        case 12: return ExplorerSelectionPath{false, kExplorer12, "_WwG"};
        default: return std::nullopt;
    }
}

std::optional<ClassPath> InspectorSelectionClasses(long version, long editorType) {
    if (version < 9 || version > 12) return std::nullopt;
    return ItemControlClasses(version, editorType);
}

ClassPath ItemDialogClasses(long version) {
    switch (version) {
        case 9:
        case 10:
        case 11: return ItemControlClasses(version, kPlainText).first(2);
        case 12: return ClassPath(kWord12).first(3);
        default: return {};
    }
}

ClassPath ItemBodyClasses(long version, long editorType) {
    const std::size_t dialogDepth = ItemDialogClasses(version).size();
    if (dialogDepth == 0) return {};
    const ClassPath whole = ItemControlClasses(version, editorType);
    return whole.empty() ? ClassPath(kUnset) : whole.subspan(dialogDepth);
}

bool LeadsToHtmlViewer(ClassPath path) {
    return !path.empty() && path.back() != nullptr && path.back() == std::string_view(kHtmlViewerClass);
}

}  // namespace beacon
