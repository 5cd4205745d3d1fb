#pragma once

#include "outlook/bars/record_object.h"

namespace beacon::standin {

inline constexpr IID kCommandBarButtonEvents = {0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kCommandBarComboBoxEvents = {0x000C0354, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr DISPID kClickEvent = 1;
inline constexpr DISPID kChangeEvent = 1;

/// One reference's worth of a control: every fetch gives a new object, and its events end when the caller lets it go.
class ControlObject : public RecordObject<BarControl> {
public:
    static std::shared_ptr<AutomationObject> Make(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                                                  const BarSet::ControlPointer& control);

    ControlObject(const wchar_t* kind, std::shared_ptr<BarSet> set, BarSet::BarPointer bar,
                  BarSet::ControlPointer control);

protected:
    void Unreferenced() override { DropSinks(); }

    const BarSet::BarPointer bar_;
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

}  // namespace beacon::standin
