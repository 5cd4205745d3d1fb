#pragma once

#include <string>
#include <string_view>

#include "com/object.h"

namespace beacon {

/// The tag of every control that the add-in creates starts with this, followed by the handle of its window.
inline constexpr wchar_t ToolbarTagPrefix[] = L"corvantis-beacon ";

/// Whether a control's tag contains the marker "corvantis-beacon", in capitals or not.
bool HasToolbarMarker(std::wstring_view tag);

/// The first command bar of the collection on which any control's tag contains the marker; empty when none does. A
/// failing collection raises its error.
com::Object FindBeaconBar(const com::Object& commandBars);

/// Deletes a bar of the add-in's. BeaconBarsDeleted counts these calls in the process: a bar that is gone without one
/// was deleted by the user.
void DeleteBeaconBar(const com::Object& bar);
unsigned BeaconBarsDeleted();

/// The number that Office gives a docking position, from its name: "Left" 0, "Top" 1, "Right" 2, "Bottom" 3, "Floating"
/// 4, "Popup" 5, "Menu Bar" 6. Any other text is taken for "Top".
long PositionFromName(std::wstring_view name);
/// The reverse; "Unsupported type" for other numbers.
std::wstring PositionName(long position);

}  // namespace beacon
