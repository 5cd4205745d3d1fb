#pragma once

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

inline constexpr IID kCommandBarButtonEvents = {0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kCommandBarComboBoxEvents = {0x000C0354, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr DISPID kClickEvent = 1;
inline constexpr DISPID kChangeEvent = 1;

/// One reference's worth of a control: every fetch gives a new object, and its events end when the caller lets it go.
class ControlObject : public AutomationObject {
public:
    static std::shared_ptr<AutomationObject> Make(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                                                  const BarSet::ControlPointer& control);

    ControlObject(const wchar_t* kind, std::shared_ptr<BarSet> set, BarSet::BarPointer bar,
                  BarSet::ControlPointer control);

protected:
    void Unreferenced() override { DropSinks(); }

    void AddText(DISPID member, const wchar_t* name, std::wstring BarControl::*field);
    void AddFlag(DISPID member, const wchar_t* name, bool BarControl::*field);
    /// Values for which `check` is false raise error 5.
    void AddNumber(DISPID member, const wchar_t* name, long BarControl::*field, bool (*check)(long));

    void Changed() { set_->Changed(*control_); }

    const std::shared_ptr<BarSet> set_;
    const BarSet::BarPointer bar_;
    const BarSet::ControlPointer control_;
};

/// A CommandBarButton.
class ButtonObject final : public ControlObject {
public:
    ButtonObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control);

private:
    void PasteFace();
};

/// A CommandBarComboBox.
class ComboBoxObject final : public ControlObject {
public:
    ComboBoxObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar, BarSet::ControlPointer control);

private:
    void AddListMembers();
    size_t ItemAt(long index) const;
    void AddItem(const CallArguments& arguments);
    void RemoveItem(size_t place);
    void Select(long index);
};

/// Sets a combo box's text as a user does, and its list index to the item of that text.
void EnterText(BarControl& control, const std::wstring& text);

}  // namespace beacon::standin
