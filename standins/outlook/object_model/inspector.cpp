#include "outlook/object_model/inspector.h"

#include "outlook/object_model/events.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

Inspector::Inspector(Outlook& host, int number, std::shared_ptr<Item> item)
    : Frame(L"Inspector", WindowKind::Inspector, host, number), item_(std::move(item)) {
    AddFrameMembers();
    AddProperty(0x2102, L"CurrentItem", [this] { return HandOut(item_); });
    AddProperty(0x2110, L"EditorType", [this] { return com::FromLong(item_->Data().editorType); });
    AddEvents(events::kInspector, L"InspectorEvents");
    if (host.Settings().HasNewEvents()) AddEvents(events::kInspector10, L"InspectorEvents_10");
}

Inspector::~Inspector() { item_->OnChange(this, {}); }

std::wstring Inspector::Title() const { return item_->WindowTitle(); }

void Inspector::Raise(const wchar_t* name, DISPID member) {
    SayEvent(name);
    Fire(events::kInspector, member);
    Fire(events::kInspector10, member);
}

void Inspector::BuildContent() {
    ShowInPane(item_.get(), false);
    item_->OnChange(this, [this] {
        RefreshTitle();
        ShowInPane(item_.get(), false);
    });
}

void Inspector::DestroyContent() { item_->OnChange(this, {}); }

}  // namespace beacon::standin
