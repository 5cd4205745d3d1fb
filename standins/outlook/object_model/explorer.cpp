#include "outlook/object_model/explorer.h"

#include <algorithm>

#include "outlook/object_model/collections.h"
#include "outlook/object_model/events.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {
namespace {
constexpr WORD kList = 1;
}

Explorer::Explorer(Outlook& host, int number) : Frame(L"Explorer", WindowKind::Explorer, host, number) {
    AddFrameMembers(34);
    AddProperty(0x2202, L"Selection", [this] { return HandOut(std::make_shared<Selection>(selected_)); });
    AddProperty(0x2101, L"CurrentFolder", [this] { return HandOut(std::make_shared<Folder>(host_.Items().Folder())); });
    AddAction(0x2104, L"Display", 0, [this] { Activate(); });
    AddEvents(events::kExplorer, L"ExplorerEvents");
}

std::wstring Explorer::Title() const { return host_.Items().Folder() + L" - Microsoft Outlook"; }

void Explorer::Raise(const wchar_t* name, DISPID member) {
    SayEvent(name);
    Fire(events::kExplorer, member);
}

void Explorer::BuildContent() {
    list_ = CreateWindowExW(WS_EX_CLIENTEDGE, L"LISTBOX", L"",
                            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, 0,
                            0, 0, 0, Handle(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(kList)), nullptr, nullptr);
    SendMessageW(list_, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
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
}

void Explorer::Command(WORD control, WORD notification) {
    if (control != kList || notification != LBN_SELCHANGE) return;
    const auto place = SendMessageW(list_, LB_GETCURSEL, 0, 0);
    const auto& items = host_.Items().Items();
    if (place >= 0 && static_cast<size_t>(place) < items.size()) Select({items[static_cast<size_t>(place)]});
}

void Explorer::ShowSelected() {
    const std::shared_ptr<Item> first = selected_.empty() ? nullptr : selected_.front();
    SendMessageW(list_, LB_RESETCONTENT, 0, 0);
    size_t place = 0;
    for (const auto& item : host_.Items().Items()) {
        const ItemData& data = item->Data();
        const bool contact = data.itemClass == ItemClass::Contact;
        const std::wstring line =
            contact ? L"  " + data.fullName + L"    " + data.company : L"  " + data.senderName + L"    " + data.subject;
        SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        if (item == first) SendMessageW(list_, LB_SETCURSEL, place, 0);
        ++place;
    }
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
