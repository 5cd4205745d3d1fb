#include <algorithm>

#include "outlook/bars/control_objects.h"
#include "outlook/bars/record_object.h"

namespace beacon::standin {
namespace {

bool IsDockingPosition(long value) { return value >= 0 && value <= kMenuBarPosition && value != kPopupPosition; }

bool IsProtection(long value) { return value >= 0 && value <= 127; }

bool IsRow(long value) { return value >= -1; }

LONG LeftOf(const RECT& place) { return place.left; }

LONG TopOf(const RECT& place) { return place.top; }

LONG HeightOf(const RECT& place) { return place.bottom - place.top; }

bool IsNamed(const Bar& bar, const std::wstring& name) { return SameName(bar.name, name); }

bool IsNamed(const BarControl& control, const std::wstring& name) {
    return SameName(PlainCaption(control.caption), PlainCaption(name));
}

/// The element with the 1-based index or the name in the argument.
template <class Pointer>
Pointer Pick(const std::vector<Pointer>& all, const CallArguments& arguments) {
    if (arguments.Value(0).vt != VT_BSTR) {
        const long index = arguments.Long(0);
        if (index < 1 || static_cast<size_t>(index) > all.size()) throw CallError{DISP_E_BADINDEX};
        return all[static_cast<size_t>(index) - 1];
    }
    const std::wstring name = arguments.Text(0);
    for (const Pointer& one : all)
        if (IsNamed(*one, name)) return one;
    throw CallError{DISP_E_BADINDEX};
}

class ControlsObject final : public RecordObject<Bar> {
public:
    ControlsObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar)
        : RecordObject(L"CommandBarControls", std::move(set), std::move(bar)) {
        SetLabel(L"of \"" + record_->name + L"\"");
        AddEither(DISPID_VALUE, L"Item", 1, 1, [this](const CallArguments& arguments) { return Item(arguments); });
        AddProperty(0x60020001, L"Count",
                    [this] { return com::FromLong(static_cast<long>(record_->controls.size())); });
        AddMethod(0x60020002, L"Add", 0, 5, [this](const CallArguments& arguments) { return Add(arguments); });
    }

    _variant_t Item(const CallArguments& arguments) const {
        return HandOut(MakeControl(set_, record_, Pick(record_->controls, arguments)));
    }

private:
    /// Type, Id, Parameter, Before, Temporary
    _variant_t Add(const CallArguments& arguments) const {
        const long before = arguments.Long(3, 0);
        if (arguments.Has(3) && before < 1) InvalidArgument();
        const auto control = set_->AddControl(record_, arguments.Long(0, kButtonControl), arguments.Long(1, 1),
                                              static_cast<size_t>(before), arguments.Bool(4, false));
        return HandOut(MakeControl(set_, record_, control));
    }
};

class BarObject final : public RecordObject<Bar> {
public:
    BarObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar)
        : RecordObject(L"CommandBar", std::move(set), std::move(bar)) {
        SetLabel(L"\"" + record_->name + L"\"");
        AddReadOnly(DISPID_VALUE, L"Name", &Bar::name);
        AddReadOnly(0x60020002, L"BuiltIn", &Bar::builtIn);
        AddEither(0x60020003, L"Controls", 0, 1, [this](const CallArguments& arguments) {
            const auto controls = std::make_shared<ControlsObject>(set_, record_);
            set_->Register(controls, record_.get());
            return arguments.Count() == 0 ? HandOut(controls) : controls->Item(arguments);
        });
        AddAction(0x60020004, L"Delete", 0, 0, [this](const CallArguments&) { set_->Delete(record_); });
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
};

class BarsObject final : public AutomationObject {
public:
    explicit BarsObject(std::shared_ptr<BarSet> set) : AutomationObject(L"CommandBars"), set_(std::move(set)) {
        AddEither(DISPID_VALUE, L"Item", 1, 1, [this](const CallArguments& arguments) {
            return HandOut(MakeCommandBar(set_, Pick(set_->Bars(), arguments)));
        });
        AddProperty(0x60020001, L"Count", [this] { return com::FromLong(static_cast<long>(set_->Bars().size())); });
        AddMethod(0x60020002, L"Add", 0, 4, [this](const CallArguments& arguments) { return Add(arguments); });
    }

private:
    /// Name, Position, MenuBar, Temporary
    _variant_t Add(const CallArguments& arguments) const {
        const long position = arguments.Bool(2, false) ? kMenuBarPosition : arguments.Long(1, kFloatingPosition);
        if (position < 0 || position > kMenuBarPosition) InvalidArgument();
        const auto bar = set_->Add(arguments.Text(0, {}), position, arguments.Bool(3, false));
        return HandOut(MakeCommandBar(set_, bar));
    }

    const std::shared_ptr<BarSet> set_;
};

}  // namespace

std::shared_ptr<AutomationObject> MakeCommandBar(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar) {
    auto object = std::make_shared<BarObject>(set, bar);
    set->Register(object, bar.get());
    return object;
}

std::shared_ptr<AutomationObject> MakeCommandBars(const std::shared_ptr<BarSet>& set) {
    auto object = std::make_shared<BarsObject>(set);
    set->Register(object, set.get());
    return object;
}

}  // namespace beacon::standin
