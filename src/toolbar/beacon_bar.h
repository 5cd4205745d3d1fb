#pragma once

#include <string>
#include <string_view>

#include "com/object.h"

namespace beacon {

/// Prefix of the tag of every control that the add-in creates; the handle of its window follows.
inline constexpr wchar_t ToolbarTagPrefix[] = L"corvantis-beacon ";

/// Whether a control's tag contains the marker "corvantis-beacon", ignoring case.
bool HasToolbarMarker(std::wstring_view tag);

/// The first command bar of the collection with a control whose tag contains the marker; empty if there is none. Raises
/// the errors of the collection.
com::Object FindBeaconBar(const com::Object& commandBars);

/// Deletes a bar of the add-in.
void DeleteBeaconBar(const com::Object& bar);

/// How often in this process FindBeaconBar has found a bar, and DeleteBeaconBar was called. A bar that disappears
/// without such a call was deleted by the user.
unsigned BeaconBarsFound();
unsigned BeaconBarsDeleted();

/// Office's number of a docking position: "Left" 0, "Top" 1, "Right" 2, "Bottom" 3, "Floating" 4, "Popup" 5, "Menu Bar"
/// 6. Any other text counts as "Top".
long PositionFromName(std::wstring_view name);
/// The inverse; "Unsupported type" for other numbers.
std::wstring PositionName(long position);

}  // namespace beacon
