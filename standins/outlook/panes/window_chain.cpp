#include "outlook/panes/window_chain.h"

#include <algorithm>

#include "outlook/panes/pane_windows.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kAfx[] = L"AfxWnd";
constexpr wchar_t kAfxA[] = L"AfxWndA";
constexpr wchar_t kAfxW[] = L"AfxWndW";
constexpr wchar_t kNested[] = L"rctrl_renwnd32";
constexpr wchar_t kWordBody[] = L"_WwB";

struct Version {
    std::vector<const wchar_t*> explorer, inspector, body;
    const wchar_t* richEdit;
};

const Version& Classes(int outlookVersion) {
    static const Version versions[] = {
        {{kNested, kNested, kDialogClass}, {kAfx, kDialogClass}, {kAfx, kAfx}, kRichEditA},
        {{kNested, kNested, kAfxA, kDialogClass}, {kAfxA, kDialogClass}, {kAfxA, kAfxA}, kRichEditW},
        {{kNested, kNested, kAfxW, kDialogClass}, {kAfxW, kDialogClass}, {kAfxA, kAfxW}, kRichEditW},
        {{kNested, kNested, kAfxW, kDialogClass}, {kAfxW, kAfxW, kDialogClass}, {kAfxA, kWordBody}, kRichEditW},
    };
    return versions[std::clamp(outlookVersion, 9, 12) - 9];
}

const wchar_t* Control(const Version& version, int outlookVersion, Editor editor) {
    if (editor == Editor::None) return nullptr;
    if (outlookVersion >= 12 || editor == Editor::Word) return kWordClass;
    return editor == Editor::Html ? kHtmlClass : version.richEdit;
}

}  // namespace

WindowChain ExplorerChain(int outlookVersion, Editor editor) {
    if (outlookVersion < 12 && editor == Editor::Word) editor = Editor::Html;
    const Version& version = Classes(outlookVersion);
    return {version.explorer, version.body, Control(version, outlookVersion, editor), version.richEdit, false, false};
}

WindowChain InspectorChain(int outlookVersion, Editor editor) {
    const Version& version = Classes(outlookVersion);
    WindowChain chain{version.inspector, version.body, Control(version, outlookVersion, editor),
                      version.richEdit,  true,         false};
    if (outlookVersion >= 12) return chain;
    if (editor == Editor::Rich) chain.inner.pop_back();
    if (editor == Editor::Word) {
        chain.inner.back() = kWordBody;
        chain.foremost = true;
    }
    return chain;
}

}  // namespace beacon::standin
