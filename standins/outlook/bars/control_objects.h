#pragma once

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

inline constexpr IID kCommandBarButtonEvents = {0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kCommandBarComboBoxEvents = {0x000C0354, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr DISPID kClickEvent = 1;
inline constexpr DISPID kChangeEvent = 1;

// New objects for add-ins: the bars of a window, a bar, a control. A control object raises events until its last
// reference is released.
std::shared_ptr<AutomationObject> MakeCommandBars(const std::shared_ptr<BarSet>& set);
std::shared_ptr<AutomationObject> MakeCommandBar(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar);
std::shared_ptr<AutomationObject> MakeControl(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar,
                                              const BarSet::ControlPointer& control);

}  // namespace beacon::standin
