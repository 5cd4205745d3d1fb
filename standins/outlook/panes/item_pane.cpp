#include "outlook/panes/item_pane.h"

#include <richedit.h>

#include <algorithm>
#include <stdexcept>

#include "outlook/panes/html_view.h"
#include "outlook/panes/pane_windows.h"
#include "outlook/panes/text_view.h"
#include "outlook/panes/window_chain.h"

namespace beacon::standin {
namespace {

constexpr int kRowHeight = 24;
constexpr int kLabelWidth = 64;
constexpr int kInfoRows = 1;
constexpr const wchar_t* kLabels[] = {L"From", L"To", L"Cc", L"Sub&ject:"};
constexpr int kHeaderHeight = (kInfoRows + static_cast<int>(std::size(kLabels))) * kRowHeight;
constexpr DWORD kBodyStyle = WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_NOHIDESEL;

bool IsRichEdit(std::wstring_view windowClass) { return windowClass == kRichEditA || windowClass == kRichEditW; }

}  // namespace

std::unique_ptr<ItemPane> ItemPane::ForExplorer(HWND top, int outlookVersion, Editor editor) {
    return std::unique_ptr<ItemPane>(new ItemPane(top, ExplorerChain(outlookVersion, editor)));
}

std::unique_ptr<ItemPane> ItemPane::ForInspector(HWND top, int outlookVersion, Editor editor) {
    return std::unique_ptr<ItemPane>(new ItemPane(top, InspectorChain(outlookVersion, editor)));
}

ItemPane::ItemPane(HWND top) : top_(top) {}

// As in Outlook, the windows that lead to the text have siblings: others before them, and after each a decoy of the
// same class. A search that does not take the first window of a class ends in a decoy.
ItemPane::ItemPane(HWND top, const WindowChain& chain) : ItemPane(top) {
    RegisterPaneClasses();
    RegisterHtmlClass();
    Add(top, L"CommandBarDock", Place::Nowhere);
    HWND parent = top;
    for (const wchar_t* windowClass : chain.outer) {
        const HWND next = Add(parent, windowClass, parent == top ? Place::Area : Place::Whole);
        AddDecoy(parent, windowClass, parent == top);
        parent = next;
    }
    if (chain.foremost) AddBody(parent, chain);
    if (chain.header) AddHeader(parent, chain.field);
    if (!chain.foremost) AddBody(parent, chain);
    RECT area{};
    GetClientRect(top, &area);
    Resize(area);
}

ItemPane::~ItemPane() {
    view_.reset();
    for (const Placed& placed : windows_)
        if (GetParent(placed.window) == top_) DestroyWindow(placed.window);
}

HWND ItemPane::Add(HWND parent, const wchar_t* windowClass, Place place, const wchar_t* text, DWORD style, int row) {
    const HWND window = CreatePaneWindow(parent, windowClass, text, style);
    windows_.push_back({window, place, row});
    return window;
}

void ItemPane::AddDecoy(HWND parent, const wchar_t* windowClass, bool withDialog) {
    const HWND decoy = Add(parent, windowClass, Place::Nowhere);
    if (!withDialog) return;
    const HWND dialog = Add(decoy, kDialogClass, Place::Nowhere);
    Add(dialog, L"Static", Place::Nowhere, L"Look for:");
    Add(dialog, kRichEditW, Place::Nowhere);
}

void ItemPane::AddHeader(HWND dialog, const wchar_t* fieldClass) {
    Add(dialog, L"Static", Place::Label, L"Extra line breaks in this message were removed.", SS_NOPREFIX, 0);
    int row = kInfoRows;
    for (const wchar_t* label : kLabels) {
        Add(dialog, L"Static", Place::Label, label, 0, row);
        const HWND field = Add(dialog, fieldClass, Place::Field, L"", IsRichEdit(fieldClass) ? ES_AUTOHSCROLL : 0, row);
        fields_.push_back(field);
        ++row;
    }
}

void ItemPane::AddBody(HWND dialog, const WindowChain& chain) {
    HWND parent = dialog;
    for (const wchar_t* windowClass : chain.inner) {
        if (!chain.foremost) Add(parent, L"ScrollBar", Place::Nowhere, L"", SBS_VERT);
        const HWND next =
            Add(parent, windowClass, parent == dialog && chain.header ? Place::BelowHeader : Place::Whole);
        AddDecoy(parent, windowClass, false);
        parent = next;
    }
    if (chain.control == nullptr) return;
    if (!chain.foremost) Add(parent, L"PaneFrame", Place::Nowhere);
    if (chain.control == std::wstring_view(kHtmlClass))
        view_ = std::make_unique<HtmlView>(Add(parent, chain.control, Place::Whole));
    else if (IsRichEdit(chain.control))
        view_ = MakeRichTextView(Add(parent, chain.control, Place::Whole, L"", kBodyStyle));
    else
        view_ = MakeWordView(Add(parent, chain.control, Place::Whole));
    AddDecoy(parent, chain.control, false);
}

TextView& ItemPane::View() const {
    if (!view_) throw std::logic_error("this pane has no body window");
    return *view_;
}

void ItemPane::Show(const ItemText& item) {
    if (fields_.size() == std::size(kLabels)) {
        SetWindowTextW(fields_[0], item.from.c_str());
        SetWindowTextW(fields_[1], item.to.c_str());
        SetWindowTextW(fields_[3], item.subject.c_str());
    }
    // Only the beginning of a long body: Wine's rich edit takes minutes to replace megabytes.
    if (view_) view_->SetText(std::wstring_view(item.body).substr(0, 65536));
}

void ItemPane::SelectText(std::wstring_view text) {
    const std::wstring wanted = WithLineBreaks(text);
    const size_t start = View().Text().find(wanted);
    if (start == std::wstring::npos) throw std::invalid_argument("the body does not hold the text to select");
    View().Select(start, wanted.size());
}

void ItemPane::SelectRange(size_t start, size_t length) {
    const size_t size = View().Text().size();
    if (start > size || length > size - start) throw std::out_of_range("the selection is not within the body");
    View().Select(start, length);
}

std::wstring ItemPane::Selection() const { return view_ ? view_->Selection() : std::wstring(); }

void ItemPane::SetBody(std::wstring_view text) { View().SetText(text); }

std::wstring ItemPane::Body() const { return view_ ? view_->Text() : std::wstring(); }

void ItemPane::OfferDocument(bool offered) {
    auto* html = dynamic_cast<HtmlView*>(view_.get());
    if (html == nullptr) throw std::logic_error("only the HTML viewer has a document");
    html->OfferDocument(offered);
}

HWND ItemPane::TextWindow() const { return view_ ? view_->Window() : nullptr; }

void ItemPane::Resize(const RECT& area) {
    for (const Placed& placed : windows_) {
        RECT at = area;
        if (placed.place != Place::Area) GetClientRect(GetParent(placed.window), &at);
        const int top = placed.row * kRowHeight;
        switch (placed.place) {
            case Place::Area:
            case Place::Whole: break;
            case Place::BelowHeader: at.top = std::min<LONG>(kHeaderHeight, at.bottom); break;
            case Place::Label: at = {0, top, placed.row < kInfoRows ? at.right : kLabelWidth, top + kRowHeight}; break;
            case Place::Field: at = {kLabelWidth, top, std::max<LONG>(at.right, kLabelWidth), top + kRowHeight}; break;
            case Place::Nowhere: continue;
        }
        SetWindowPos(placed.window, nullptr, at.left, at.top, at.right - at.left, at.bottom - at.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

}  // namespace beacon::standin
