#include "outlook/bars/control_objects.h"

#include <algorithm>

#include "outlook/bars/record_object.h"

namespace beacon::standin {
namespace {

bool IsButtonStyle(long style) { return style >= 0 && style <= 15; }

bool IsComboStyle(long style) { return style == 0 || style == 1; }

bool IsState(long state) { return state >= -1 && state <= 2 && state != 1; }

bool IsWidth(long width) { return width >= 0 && width <= 4096; }

class ControlObject : public RecordObject<BarControl> {
public:
    ControlObject(const wchar_t* kind, std::shared_ptr<BarSet> set, BarSet::BarPointer bar,
                  BarSet::ControlPointer control)
        : RecordObject(kind, std::move(set), std::move(control)), bar_(std::move(bar)) {
        SetLabel(L"\"" + record_->caption + L"\" of \"" + bar_->name + L"\"");
        AddProperty(
            DISPID_VALUE, L"Caption", [this] { return com::FromText(record_->caption); },
            [this](const CallArguments& arguments) {
                record_->caption = arguments.Text(0);
                SetLabel(L"\"" + record_->caption + L"\" of \"" + bar_->name + L"\"");
                set_->Changed(*record_);
            });
        AddReadOnly(0x60030001, L"Type", &BarControl::type);
        AddReadOnly(0x60030002, L"Id", &BarControl::id);
        AddProperty(0x60030003, L"Index", [this] {
            const auto& all = bar_->controls;
            return com::FromLong(static_cast<long>(std::find(all.begin(), all.end(), record_) - all.begin()) + 1);
        });
        AddReadOnly(0x60030004, L"BuiltIn", &BarControl::builtIn);
        AddField(0x60030005, L"Tag", &BarControl::tag);
        AddField(0x60030006, L"TooltipText", &BarControl::tooltip);
        AddField(0x60030007, L"DescriptionText", &BarControl::description);
        AddField(0x60030008, L"Enabled", &BarControl::enabled);
        AddField(0x60030009, L"Visible", &BarControl::visible);
        AddField(0x6003000A, L"BeginGroup", &BarControl::beginGroup);
        AddPlace(0x6003000B, L"Width", &BarControl::width, &WidthOf, &IsWidth);
        AddAction(0x6003000D, L"Delete", 0, 1, [this](const CallArguments&) { set_->Delete(bar_, record_); });
    }

protected:
    void Unreferenced() override { DropSinks(); }

private:
    const BarSet::BarPointer bar_;
};

class ButtonObject final : public ControlObject {
public:
    ButtonObject(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                 const BarSet::ControlPointer& control)
        : ControlObject(L"CommandBarButton", set, bar, control) {
        AddEvents(kCommandBarButtonEvents, L"_CommandBarButtonEvents");
        AddField(0x60040001, L"Style", &BarControl::style, &IsButtonStyle);
        AddField(0x60040002, L"State", &BarControl::state, &IsState);
        AddField(0x60040004, L"ShortcutText", &BarControl::shortcut);
        AddAction(0x60040005, L"PasteFace", 0, 0, [this](const CallArguments&) {
            record_->face = FaceFromClipboard(set_->View() == nullptr ? nullptr : set_->View()->Window());
        });
    }
};

class ComboBoxObject final : public ControlObject {
public:
    ComboBoxObject(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                   const BarSet::ControlPointer& control)
        : ControlObject(L"CommandBarComboBox", set, bar, control) {
        AddEvents(kCommandBarComboBoxEvents, L"_CommandBarComboBoxEvents");
        AddField(0x60040001, L"Style", &BarControl::style, &IsComboStyle);
        AddProperty(
            0x60040002, L"Text", [this] { return com::FromText(record_->text); },
            [this](const CallArguments& arguments) {
                EnterText(*record_, arguments.Text(0));
                set_->Changed(*record_);
            });
        AddProperty(0x60040003, L"ListCount",
                    [this] { return com::FromLong(static_cast<long>(record_->items.size())); });
        AddEither(0x60040004, L"List", 1, 1,
                  [this](const CallArguments& arguments) { return com::FromText(ItemAt(arguments.Long(0))); });
        AddProperty(
            0x60040005, L"ListIndex", [this] { return com::FromLong(record_->listIndex); },
            [this](const CallArguments& arguments) { Select(arguments.Long(0)); });
        AddAction(0x60040006, L"AddItem", 1, 2, [this](const CallArguments& arguments) { AddItem(arguments); });
        AddAction(0x60040008, L"Clear", 0, 0, [this](const CallArguments&) {
            record_->items.clear();
            record_->text.clear();  // Office empties the edit box with the list
            record_->listIndex = 0;
        });
    }

private:
    const std::wstring& ItemAt(long index) const {
        if (index < 1 || static_cast<size_t>(index) > record_->items.size()) throw CallError{DISP_E_BADINDEX};
        return record_->items[static_cast<size_t>(index) - 1];
    }

    void AddItem(const CallArguments& arguments) {
        auto& items = record_->items;
        const long end = static_cast<long>(items.size()) + 1;
        const long index = arguments.Long(1, end);
        if (index < 1 || index > end) throw CallError{DISP_E_BADINDEX, 1};
        items.insert(items.begin() + (index - 1), arguments.Text(0));
        if (record_->listIndex >= index) ++record_->listIndex;
    }

    void Select(long index) {
        if (index != 0)
            record_->text = ItemAt(index);
        else if (record_->listIndex != 0)
            record_->text.clear();  // clears the text of an item, but not typed text
        record_->listIndex = index;
        set_->Changed(*record_);
    }
};

}  // namespace

std::shared_ptr<AutomationObject> MakeControl(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                                              const BarSet::ControlPointer& control) {
    std::shared_ptr<AutomationObject> object;
    switch (control->type) {
        case kButtonControl: object = std::make_shared<ButtonObject>(set, bar, control); break;
        case kComboBoxControl: object = std::make_shared<ComboBoxObject>(set, bar, control); break;
        default: object = std::make_shared<ControlObject>(L"CommandBarPopup", set, bar, control); break;
    }
    set->Register(object, control.get());
    return object;
}

}  // namespace beacon::standin
