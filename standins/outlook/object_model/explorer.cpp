#include "outlook/object_model/explorer.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "outlook/object_model/collections.h"
#include "outlook/object_model/events.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {
namespace {

constexpr int kColumns = 3;
constexpr int kWidths[kColumns] = {27, 53, 20};  // percent

const std::wstring& CellText(const ItemData& item, int column) {
    if (column == 2) return item.received;
    if (item.itemClass == ItemClass::Contact) return column == 0 ? item.fullName : item.company;
    return column == 0 ? item.senderName : item.subject;
}

}  // namespace

Explorer::Explorer(Outlook& host, int number) : Frame(L"Explorer", WindowKind::Explorer, host, number) {
    AddFrameMembers();
    AddProperty(0x2202, L"Selection", [this] { return HandOut(std::make_shared<Selection>(selected_)); });
    AddEvents(events::kExplorer, L"ExplorerEvents");
}

std::wstring Explorer::Title() const { return host_.Items().Folder() + L" - Microsoft Outlook"; }

void Explorer::Raise(const wchar_t* name, DISPID member) {
    SayEvent(name);
    Fire(events::kExplorer, member);
}

void Explorer::BuildContent() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    list_ = CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"",
                            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL |
                                LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                            0, 0, 0, 0, Handle(), nullptr, nullptr, nullptr);
    SendMessageW(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
    for (const wchar_t* title : {L"From", L"Subject", L"Received"}) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT;
        column.pszText = const_cast<wchar_t*>(title);
        SendMessageW(list_, LVM_INSERTCOLUMNW, kColumns, reinterpret_cast<LPARAM>(&column));
    }
    ShowSelected();
}

void Explorer::DestroyContent() {
    for (const auto& item : selected_) item->OnChange(this, {});
    list_ = nullptr;  // ends with the window
}

RECT Explorer::PaneArea(const RECT& client) const {
    return {client.left, client.top + (client.bottom - client.top) * 2 / 5, client.right, client.bottom};
}

void Explorer::Layout(const RECT& client) {
    MoveWindow(list_, client.left, client.top, client.right - client.left, PaneArea(client).top - client.top, TRUE);
    const int width = client.right - client.left - GetSystemMetrics(SM_CXVSCROLL) - 4;
    for (int column = 0; column < kColumns; ++column)
        SendMessageW(list_, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), width * kWidths[column] / 100);
}

LRESULT Explorer::Notify(NMHDR& notification) {
    if (notification.hwndFrom != list_) return 0;
    const auto& items = host_.Items().Items();
    if (notification.code == LVN_GETDISPINFOW) {
        LVITEMW& cell = reinterpret_cast<NMLVDISPINFOW&>(notification).item;
        const auto place = static_cast<size_t>(cell.iItem);
        if ((cell.mask & LVIF_TEXT) != 0 && place < items.size())
            lstrcpynW(cell.pszText, CellText(items[place]->Data(), cell.iSubItem).c_str(), cell.cchTextMax);
    } else if (notification.code == LVN_ITEMCHANGED) {
        const auto& change = reinterpret_cast<NMLISTVIEW&>(notification);
        const bool selected = (change.uNewState & ~change.uOldState & LVIS_SELECTED) != 0;
        const auto place = static_cast<size_t>(change.iItem);
        if (selected && !showing_ && place < items.size()) Select({items[place]});
    } else if (notification.code == LVN_ITEMACTIVATE && !selected_.empty()) {
        host_.OpenInspector(selected_.front(), true);
    }
    return 0;
}

void Explorer::ShowSelected() {
    const std::shared_ptr<Item> first = selected_.empty() ? nullptr : selected_.front();
    showing_ = true;
    SendMessageW(list_, LVM_SETITEMCOUNT, host_.Items().Count(), LVSICF_NOSCROLL);
    const auto wanted = first == nullptr ? -1 : static_cast<LRESULT>(host_.Items().NumberOf(*first)) - 1;
    if (wanted != SendMessageW(list_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)) {
        LVITEMW state{};
        state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        state.state = wanted < 0 ? 0 : state.stateMask;
        SendMessageW(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(wanted), reinterpret_cast<LPARAM>(&state));
        SendMessageW(list_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(wanted), FALSE);
    }
    InvalidateRect(list_, nullptr, FALSE);
    showing_ = false;
    ShowInPane(first.get(), true);
    if (first != nullptr) first->OnChange(this, [this] { ShowSelected(); });
}

void Explorer::Select(std::vector<std::shared_ptr<Item>> items) {
    for (const auto& item : selected_) item->OnChange(this, {});
    selected_ = std::move(items);
    if (Handle() != nullptr) ShowSelected();
    Raise(L"SelectionChange", events::kSelectionChange);
    if (Handle() != nullptr) Raise(L"SelectionChange", events::kSelectionChange);
}

void Explorer::ItemRemoved(const Item& item, size_t place) {
    const auto found = std::find_if(selected_.begin(), selected_.end(),
                                    [&](const auto& candidate) { return candidate.get() == &item; });
    if (found == selected_.end()) return;
    std::vector<std::shared_ptr<Item>> next;
    const auto& items = host_.Items().Items();
    if (!items.empty()) next.push_back(items[std::min(place, items.size()) - 1]);
    Select(std::move(next));
}

}  // namespace beacon::standin
