#include "outlook/object_model/inspector.h"

#include "outlook/object_model/events.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

Inspector::Inspector(Outlook& host, int number, std::shared_ptr<Item> item, bool composing)
    : Frame(L"Inspector", WindowKind::Inspector, host, number), item_(std::move(item)), composing_(composing) {
    AddFrameMembers(35);
    AddProperty(0x2102, L"CurrentItem", [this] { return HandOut(item_); });
    AddProperty(0x2110, L"EditorType", [this] { return com::FromLong(item_->Data().editorType); });
    AddAction(0x2104, L"Display", 1, [this] { Activate(); });
    const EventGeneration generation = host.Settings().events;
    if (generation != EventGeneration::New) AddEvents(events::kInspector, L"InspectorEvents");
    if (generation != EventGeneration::Old) AddEvents(events::kInspector10, L"InspectorEvents_10");
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
    if (composing_) item_->SetEditor([this] { return Pane()->Body(); });
}

void Inspector::DestroyContent() {
    item_->OnChange(this, {});
    item_->SetEditor({});
}

HWND Inspector::FocusWindow() const { return composing_ && Pane() != nullptr ? Pane()->TextWindow() : nullptr; }

}  // namespace beacon::standin
