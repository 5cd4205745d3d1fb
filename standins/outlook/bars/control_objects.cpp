#include "outlook/bars/control_objects.h"

#include <algorithm>

#include "outlook/bars/bar_objects.h"
#include "outlook/bars/face_clipboard.h"

namespace beacon::standin {
namespace {

bool IsButtonStyle(long style) { return style >= 0 && style <= 15; }

bool IsComboStyle(long style) { return style == 0 || style == 1; }

bool IsState(long state) { return state >= -1 && state <= 2 && state != 1; }

bool IsWidth(long width) { return width >= 0 && width <= 4096; }

bool IsFace(long face) { return face >= 0; }

}  // namespace

std::shared_ptr<AutomationObject> ControlObject::Make(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                                                      const BarSet::ControlPointer& control) {
    std::shared_ptr<AutomationObject> object;
    switch (control->type) {
        case kButtonControl: object = std::make_shared<ButtonObject>(set, bar, control); break;
        case kComboBoxControl: object = std::make_shared<ComboBoxObject>(set, bar, control); break;
        default: object = std::make_shared<ControlObject>(L"CommandBarPopup", set, bar, control); break;
    }
    set->Register(object, bar.get(), control.get());
    return object;
}

ControlObject::ControlObject(const wchar_t* kind, std::shared_ptr<BarSet> set, BarSet::BarPointer bar,
                             BarSet::ControlPointer control)
    : RecordObject(kind, std::move(set), std::move(control)), bar_(std::move(bar)) {
    SetLabel(L"\"" + record_->caption + L"\" of \"" + bar_->name + L"\"");
    AddProperty(
        DISPID_VALUE, L"Caption", [this] { return com::FromText(record_->caption); },
        [this](const CallArguments& arguments) {
            record_->caption = arguments.Text(0);
            SetLabel(L"\"" + record_->caption + L"\" of \"" + bar_->name + L"\"");
            Changed();
        });
    AddProperty(0x60030001, L"Type", [this] { return com::FromLong(record_->type); });
    AddProperty(0x60030002, L"Id", [this] { return com::FromLong(record_->id); });
    AddProperty(0x60030003, L"Index", [this] {
        const auto& all = bar_->controls;
        return com::FromLong(static_cast<long>(std::find(all.begin(), all.end(), record_) - all.begin()) + 1);
    });
    AddProperty(0x60030004, L"BuiltIn", [this] { return com::FromBool(record_->builtIn); });
    AddField(0x60030005, L"Tag", &BarControl::tag);
    AddField(0x60030006, L"TooltipText", &BarControl::tooltip);
    AddField(0x60030007, L"DescriptionText", &BarControl::description);
    AddField(0x60030008, L"Enabled", &BarControl::enabled);
    AddField(0x60030009, L"Visible", &BarControl::visible);
    AddField(0x6003000A, L"BeginGroup", &BarControl::beginGroup);
    AddPlace(0x6003000B, L"Width", &BarControl::width, &WidthOf, &IsWidth);
    AddProperty(0x6003000C, L"Parent", [this] { return Give(CommandBarObject::Make(set_, bar_)); });
    AddMethod(0x6003000D, L"Delete", 0, 1, [this](const CallArguments&) {
        set_->Delete(bar_, record_);
        return _variant_t();
    });
}

ButtonObject::ButtonObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control)
    : ControlObject(L"CommandBarButton", std::move(set), std::move(bar), std::move(control)) {
    AddEvents(kCommandBarButtonEvents, L"_CommandBarButtonEvents");
    AddField(0x60040001, L"Style", &BarControl::style, &IsButtonStyle);
    AddField(0x60040002, L"State", &BarControl::state, &IsState);
    AddField(0x60040003, L"FaceId", &BarControl::faceId, &IsFace);
    AddField(0x60040004, L"ShortcutText", &BarControl::shortcut);
    AddMethod(0x60040005, L"PasteFace", 0, 0, [this](const CallArguments&) {
        PasteFace();
        return _variant_t();
    });
    AddMethod(0x60040007, L"Execute", 0, 0, [this](const CallArguments&) {
        if (!record_->enabled) throw com::Error(E_FAIL, L"The button is not enabled", L"Microsoft Outlook");
        set_->RaiseClick(record_);
        return _variant_t();
    });
}

void ButtonObject::PasteFace() {
    record_->face = FaceFromClipboard(set_->View() == nullptr ? nullptr : set_->View()->Window());
    record_->faceId = 0;
    Changed();
}

ComboBoxObject::ComboBoxObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control)
    : ControlObject(L"CommandBarComboBox", std::move(set), std::move(bar), std::move(control)) {
    AddEvents(kCommandBarComboBoxEvents, L"_CommandBarComboBoxEvents");
    AddField(0x60040001, L"Style", &BarControl::style, &IsComboStyle);
    AddProperty(
        0x60040002, L"Text", [this] { return com::FromText(record_->text); },
        [this](const CallArguments& arguments) {
            EnterText(*record_, arguments.Text(0));
            Changed();
        });
    AddListMembers();
}

void ComboBoxObject::AddListMembers() {
    AddProperty(0x60040003, L"ListCount", [this] { return com::FromLong(static_cast<long>(record_->items.size())); });
    AddEither(0x60040004, L"List", 1, 1, [this](const CallArguments& arguments) {
        return com::FromText(record_->items[ItemAt(arguments.Long(0))]);
    });
    AddProperty(
        0x60040005, L"ListIndex", [this] { return com::FromLong(record_->listIndex); },
        [this](const CallArguments& arguments) { Select(arguments.Long(0)); });
    AddMethod(0x60040006, L"AddItem", 1, 2, [this](const CallArguments& arguments) {
        AddItem(arguments);
        return _variant_t();
    });
    AddMethod(0x60040007, L"RemoveItem", 1, 1, [this](const CallArguments& arguments) {
        RemoveItem(ItemAt(arguments.Long(0)));
        return _variant_t();
    });
    AddMethod(0x60040008, L"Clear", 0, 0, [this](const CallArguments&) {
        record_->items.clear();
        record_->text.clear();  // Office empties the edit box with the list
        record_->listIndex = 0;
        Changed();
        return _variant_t();
    });
}

size_t ComboBoxObject::ItemAt(long index) const {
    if (index < 1 || static_cast<size_t>(index) > record_->items.size()) throw CallError{DISP_E_BADINDEX};
    return static_cast<size_t>(index) - 1;
}

void ComboBoxObject::AddItem(const CallArguments& arguments) {
    auto& items = record_->items;
    const long end = static_cast<long>(items.size()) + 1;
    const long index = arguments.Long(1, end);
    if (index < 1 || index > end) throw CallError{DISP_E_BADINDEX, 1};
    items.insert(items.begin() + (index - 1), arguments.Text(0));
    if (record_->listIndex >= index) ++record_->listIndex;
    Changed();
}

void ComboBoxObject::RemoveItem(size_t place) {
    record_->items.erase(record_->items.begin() + static_cast<std::ptrdiff_t>(place));
    const long index = static_cast<long>(place) + 1;
    if (record_->listIndex == index) record_->listIndex = 0;
    if (record_->listIndex > index) --record_->listIndex;
    Changed();
}

void ComboBoxObject::Select(long index) {
    if (index == 0) {
        // The text of an item goes with its selection; typed text stays.
        if (record_->listIndex != 0) record_->text.clear();
    } else {
        record_->text = record_->items[ItemAt(index)];
    }
    record_->listIndex = index;
    Changed();
}

}  // namespace beacon::standin
