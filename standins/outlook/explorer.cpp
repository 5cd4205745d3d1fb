#include "outlook/explorer.h"

#include <algorithm>

#include "outlook/collections.h"
#include "outlook/events.h"
#include "outlook/outlook.h"

namespace beacon::standin {

Explorer::Explorer(Outlook& host, int number) : Frame(L"Explorer", host, number) {
    AddFrameMembers(34);
    AddProperty(0x2202, L"Selection", [this] { return Give(std::make_shared<Selection>(selected_)); });
    AddProperty(0x2101, L"CurrentFolder", [this] { return Give(std::make_shared<Folder>(host_.Items().Folder())); });
    AddMethod(0x2104, L"Display", 0, 0, [this](const CallArguments&) {
        Activate();
        return _variant_t();
    });
    AddEvents(events::kExplorer, L"ExplorerEvents");
}

std::wstring Explorer::Title() const { return host_.Items().Folder() + L" - Microsoft Outlook"; }

void Explorer::Raise(const wchar_t* name, DISPID member) {
    SayEvent(name);
    Fire(events::kExplorer, member);
}

void Explorer::Select(std::vector<std::shared_ptr<Item>> items) {
    selected_ = std::move(items);
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
