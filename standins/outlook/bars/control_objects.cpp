#include "outlook/bars/control_objects.h"

#include <algorithm>

#include "outlook/bars/bar_objects.h"
#include "outlook/bars/face_clipboard.h"

namespace beacon::standin {
namespace {

bool IsButtonStyle(long style) { return style >= 0 && style <= 15; }

bool IsComboStyle(long style) { return style == 0 || style == 1; }

bool IsState(long state) { return state >= -1 && state <= 2 && state != 1; }

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
    : AutomationObject(kind), set_(std::move(set)), bar_(std::move(bar)), control_(std::move(control)) {
    SetLabel(L"\"" + control_->caption + L"\" of \"" + bar_->name + L"\"");
    AddProperty(
        DISPID_VALUE, L"Caption", [this] { return com::FromText(control_->caption); },
        [this](const CallArguments& arguments) {
            control_->caption = arguments.Text(0);
            SetLabel(L"\"" + control_->caption + L"\" of \"" + bar_->name + L"\"");
            Changed();
        });
    AddProperty(0x60030001, L"Type", [this] { return com::FromLong(control_->type); });
    AddProperty(0x60030002, L"Id", [this] { return com::FromLong(control_->id); });
    AddProperty(0x60030003, L"Index", [this] {
        const auto& all = bar_->controls;
        return com::FromLong(static_cast<long>(std::find(all.begin(), all.end(), control_) - all.begin()) + 1);
    });
    AddProperty(0x60030004, L"BuiltIn", [this] { return com::FromBool(control_->builtIn); });
    AddText(0x60030005, L"Tag", &BarControl::tag);
    AddText(0x60030006, L"TooltipText", &BarControl::tooltip);
    AddText(0x60030007, L"DescriptionText", &BarControl::description);
    AddFlag(0x60030008, L"Enabled", &BarControl::enabled);
    AddFlag(0x60030009, L"Visible", &BarControl::visible);
    AddFlag(0x6003000A, L"BeginGroup", &BarControl::beginGroup);
    AddProperty(
        0x6003000B, L"Width",
        [this] {
            if (control_->width != 0 || set_->View() == nullptr) return com::FromLong(control_->width);
            const std::optional<RECT> place = set_->View()->PlaceOf(*control_);
            return com::FromLong(place ? place->right - place->left : 0);
        },
        [this](const CallArguments& arguments) {
            const long width = arguments.Long(0);
            if (width < 0 || width > 4096) InvalidArgument();
            control_->width = width;
            Changed();
        });
    AddProperty(0x6003000C, L"Parent", [this] { return Give(CommandBarObject::Make(set_, bar_)); });
    AddMethod(0x6003000D, L"Delete", 0, 1,
              [this](const CallArguments&) {
                  set_->Delete(bar_, control_);
                  return _variant_t();
              },
              {L"Temporary"});
}

void ControlObject::AddText(DISPID member, const wchar_t* name, std::wstring BarControl::*field) {
    AddProperty(
        member, name, [this, field] { return com::FromText((*control_).*field); },
        [this, field](const CallArguments& arguments) {
            (*control_).*field = arguments.Text(0);
            Changed();
        });
}

void ControlObject::AddFlag(DISPID member, const wchar_t* name, bool BarControl::*field) {
    AddProperty(
        member, name, [this, field] { return com::FromBool((*control_).*field); },
        [this, field](const CallArguments& arguments) {
            (*control_).*field = arguments.Bool(0);
            Changed();
        });
}

void ControlObject::AddNumber(DISPID member, const wchar_t* name, long BarControl::*field, bool (*check)(long)) {
    AddProperty(
        member, name, [this, field] { return com::FromLong((*control_).*field); },
        [this, field, check](const CallArguments& arguments) {
            const long value = arguments.Long(0);
            if (!check(value)) InvalidArgument();
            (*control_).*field = value;
            Changed();
        });
}

ButtonObject::ButtonObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control)
    : ControlObject(L"CommandBarButton", std::move(set), std::move(bar), std::move(control)) {
    AddEvents(kCommandBarButtonEvents, L"_CommandBarButtonEvents");
    AddNumber(0x60040001, L"Style", &BarControl::style, &IsButtonStyle);
    AddNumber(0x60040002, L"State", &BarControl::state, &IsState);
    AddNumber(0x60040003, L"FaceId", &BarControl::faceId, &IsFace);
    AddText(0x60040004, L"ShortcutText", &BarControl::shortcut);
    AddMethod(0x60040005, L"PasteFace", 0, 0, [this](const CallArguments&) {
        PasteFace();
        return _variant_t();
    });
    AddMethod(0x60040006, L"CopyFace", 0, 0, [this](const CallArguments&) {
        FaceToClipboard(set_->View() == nullptr ? nullptr : set_->View()->Window(), control_->face);
        return _variant_t();
    });
    AddMethod(0x60040007, L"Execute", 0, 0, [this](const CallArguments&) {
        if (!control_->enabled) throw com::Error(E_FAIL, L"The button is not enabled", L"Microsoft Outlook");
        set_->RaiseClick(control_);
        return _variant_t();
    });
}

void ButtonObject::PasteFace() {
    control_->face = FaceFromClipboard(set_->View() == nullptr ? nullptr : set_->View()->Window());
    control_->faceId = 0;
    Changed();
}

ComboBoxObject::ComboBoxObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control)
    : ControlObject(L"CommandBarComboBox", std::move(set), std::move(bar), std::move(control)) {
    AddEvents(kCommandBarComboBoxEvents, L"_CommandBarComboBoxEvents");
    AddNumber(0x60040001, L"Style", &BarControl::style, &IsComboStyle);
    AddProperty(
        0x60040002, L"Text", [this] { return com::FromText(control_->text); },
        [this](const CallArguments& arguments) {
            EnterText(*control_, arguments.Text(0));
            Changed();
        });
    AddListMembers();
}

void ComboBoxObject::AddListMembers() {
    AddProperty(0x60040003, L"ListCount", [this] { return com::FromLong(static_cast<long>(control_->items.size())); });
    AddEither(
        0x60040004, L"List", 1, 1,
        [this](const CallArguments& arguments) { return com::FromText(control_->items[ItemAt(arguments.Long(0))]); },
        {L"Index"});
    AddProperty(
        0x60040005, L"ListIndex", [this] { return com::FromLong(control_->listIndex); },
        [this](const CallArguments& arguments) { Select(arguments.Long(0)); });
    AddMethod(0x60040006, L"AddItem", 1, 2,
              [this](const CallArguments& arguments) {
                  AddItem(arguments);
                  return _variant_t();
              },
              {L"Text", L"Index"});
    AddMethod(0x60040007, L"RemoveItem", 1, 1,
              [this](const CallArguments& arguments) {
                  RemoveItem(ItemAt(arguments.Long(0)));
                  return _variant_t();
              },
              {L"Index"});
    AddMethod(0x60040008, L"Clear", 0, 0, [this](const CallArguments&) {
        control_->items.clear();
        control_->text.clear();  // Office empties the edit box with the list
        control_->listIndex = 0;
        Changed();
        return _variant_t();
    });
}

size_t ComboBoxObject::ItemAt(long index) const {
    if (index < 1 || static_cast<size_t>(index) > control_->items.size()) throw CallError{DISP_E_BADINDEX};
    return static_cast<size_t>(index) - 1;
}

void ComboBoxObject::AddItem(const CallArguments& arguments) {
    auto& items = control_->items;
    const long end = static_cast<long>(items.size()) + 1;
    const long index = arguments.Long(1, end);
    if (index < 1 || index > end) throw CallError{DISP_E_BADINDEX, 1};
    items.insert(items.begin() + (index - 1), arguments.Text(0));
    if (control_->listIndex >= index) ++control_->listIndex;
    Changed();
}

void ComboBoxObject::RemoveItem(size_t place) {
    control_->items.erase(control_->items.begin() + static_cast<std::ptrdiff_t>(place));
    const long index = static_cast<long>(place) + 1;
    if (control_->listIndex == index) control_->listIndex = 0;
    if (control_->listIndex > index) --control_->listIndex;
    Changed();
}

void ComboBoxObject::Select(long index) {
    if (index == 0) {
        // The text of an item goes with its selection; typed text stays.
        if (control_->listIndex != 0) control_->text.clear();
    } else {
        control_->text = control_->items[ItemAt(index)];
    }
    control_->listIndex = index;
    Changed();
}

void EnterText(BarControl& control, const std::wstring& text) {
    control.text = text;
    const auto found = std::find(control.items.begin(), control.items.end(), text);
    control.listIndex = found == control.items.end() ? 0 : static_cast<long>(found - control.items.begin()) + 1;
}

}  // namespace beacon::standin
