#include "outlook/bars/bar_objects.h"

#include <algorithm>

#include "outlook/bars/control_objects.h"

namespace beacon::standin {
namespace {

bool IsText(const _variant_t& value) { return value.vt == VT_BSTR; }

/// The place of a 1-based index in a list of that size.
size_t Place(long index, size_t size) {
    if (index < 1 || static_cast<size_t>(index) > size) throw CallError{DISP_E_BADINDEX};
    return static_cast<size_t>(index) - 1;
}

bool IsDockingPosition(long value) { return value >= 0 && value <= kMenuBarPosition && value != kPopupPosition; }

bool IsProtection(long value) { return value >= 0 && value <= 127; }

bool IsRow(long value) { return value >= -1; }

LONG LeftOf(const RECT& place) { return place.left; }

LONG TopOf(const RECT& place) { return place.top; }

LONG HeightOf(const RECT& place) { return place.bottom - place.top; }

}  // namespace

CommandBarsObject::CommandBarsObject(std::shared_ptr<BarSet> set)
    : AutomationObject(L"CommandBars"), set_(std::move(set)) {
    AddEither(DISPID_VALUE, L"Item", 1, 1, [this](const CallArguments& arguments) { return Item(arguments); });
    AddProperty(0x60020001, L"Count", [this] { return com::FromLong(static_cast<long>(set_->Bars().size())); });
    AddMethod(0x60020002, L"Add", 0, 4, [this](const CallArguments& arguments) { return Add(arguments); });
}

_variant_t CommandBarsObject::Item(const CallArguments& arguments) const {
    BarSet::BarPointer bar;
    if (IsText(arguments.Value(0))) {
        bar = set_->Find(arguments.Text(0));
        if (bar == nullptr) throw CallError{DISP_E_BADINDEX};
    } else {
        bar = set_->Bars()[Place(arguments.Long(0), set_->Bars().size())];
    }
    return Give(CommandBarObject::Make(set_, bar));
}

_variant_t CommandBarsObject::Add(const CallArguments& arguments) const {
    const long position = arguments.Long(1, kFloatingPosition);
    if (position < 0 || position > kMenuBarPosition) InvalidArgument();
    const bool menuBar = arguments.Bool(2, false);
    const bool temporary = arguments.Bool(3, false);
    const auto bar = set_->Add(arguments.Text(0, {}), menuBar ? kMenuBarPosition : position, temporary);
    return Give(CommandBarObject::Make(set_, bar));
}

std::shared_ptr<AutomationObject> CommandBarObject::Make(const std::shared_ptr<BarSet>& set,
                                                         const BarSet::BarPointer& bar) {
    auto object = std::make_shared<CommandBarObject>(set, bar);
    set->Register(object, bar.get(), nullptr);
    return object;
}

CommandBarObject::CommandBarObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar)
    : RecordObject(L"CommandBar", std::move(set), std::move(bar)) {
    SetLabel(L"\"" + record_->name + L"\"");
    AddProperty(
        DISPID_VALUE, L"Name", [this] { return com::FromText(record_->name); },
        [this](const CallArguments& arguments) {
            const std::wstring name = arguments.Text(0);
            const BarSet::BarPointer other = set_->Find(name);
            if (record_->builtIn || name.empty() || (other != nullptr && other != record_)) InvalidArgument();
            record_->name = name;
            SetLabel(L"\"" + name + L"\"");
            Changed();
        });
    AddProperty(0x60020002, L"BuiltIn", [this] { return com::FromBool(record_->builtIn); });
    AddEither(0x60020003, L"Controls", 0, 1, [this](const CallArguments& arguments) {
        const auto controls = CommandBarControlsObject::Make(set_, record_);
        if (arguments.Count() == 0) return Give(controls);
        return static_cast<CommandBarControlsObject&>(*controls).Item(arguments);
    });
    AddMethod(0x60020004, L"Delete", 0, 0, [this](const CallArguments&) {
        set_->Delete(record_);
        return _variant_t();
    });
    AddProperty(0x60020005, L"Index", [this] {
        const auto& bars = set_->Bars();
        return com::FromLong(static_cast<long>(std::find(bars.begin(), bars.end(), record_) - bars.begin()) + 1);
    });
    AddField(0x60020006, L"Position", &Bar::position, &IsDockingPosition);
    AddField(0x60020007, L"Protection", &Bar::protection, &IsProtection);
    AddField(0x60020008, L"RowIndex", &Bar::rowIndex, &IsRow);
    AddField(0x60020009, L"Visible", &Bar::visible);
    AddField(0x6002000A, L"Enabled", &Bar::enabled);
    AddPlace(0x6002000B, L"Left", &Bar::left, &LeftOf);
    AddPlace(0x6002000C, L"Top", &Bar::top, &TopOf);
    AddPlace(0x6002000D, L"Width", &Bar::width, &WidthOf);
    AddPlace(0x6002000E, L"Height", &Bar::height, &HeightOf);
}

std::shared_ptr<AutomationObject> CommandBarControlsObject::Make(const std::shared_ptr<BarSet>& set,
                                                                 const BarSet::BarPointer& bar) {
    auto object = std::make_shared<CommandBarControlsObject>(set, bar);
    set->Register(object, bar.get(), nullptr);
    return object;
}

CommandBarControlsObject::CommandBarControlsObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar)
    : AutomationObject(L"CommandBarControls"), set_(std::move(set)), bar_(std::move(bar)) {
    SetLabel(L"of \"" + bar_->name + L"\"");
    AddEither(DISPID_VALUE, L"Item", 1, 1, [this](const CallArguments& arguments) { return Item(arguments); });
    AddProperty(0x60020001, L"Count", [this] { return com::FromLong(static_cast<long>(bar_->controls.size())); });
    AddMethod(0x60020002, L"Add", 0, 5, [this](const CallArguments& arguments) { return Add(arguments); });
}

_variant_t CommandBarControlsObject::Item(const CallArguments& arguments) const {
    const auto& controls = bar_->controls;
    if (!IsText(arguments.Value(0)))
        return Give(ControlObject::Make(set_, bar_, controls[Place(arguments.Long(0), controls.size())]));
    const std::wstring caption = PlainCaption(arguments.Text(0));
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const BarSet::ControlPointer& control) {
        return SameName(PlainCaption(control->caption), caption);
    });
    if (found == controls.end()) throw CallError{DISP_E_BADINDEX};
    return Give(ControlObject::Make(set_, bar_, *found));
}

_variant_t CommandBarControlsObject::Add(const CallArguments& arguments) const {
    const long before = arguments.Long(3, 0);
    if (arguments.Has(3) && before < 1) InvalidArgument();
    const auto control = set_->AddControl(bar_, arguments.Long(0, kButtonControl), arguments.Long(1, 1),
                                          static_cast<size_t>(before), arguments.Bool(4, false));
    return Give(ControlObject::Make(set_, bar_, control));
}

}  // namespace beacon::standin
