#pragma once

#include <string>
#include <vector>

#include "com/object.h"

namespace beacon {

/// The place of a text in the list of a combo box, from 1; 0 when it is not there. Capitals matter.
long FindComboItem(const com::Object& box, const std::wstring& text);

/// Fills the list of a window's context box from the contexts used so far: each one that is missing goes to the top, so
/// that the latest comes first, and the current one is selected. Without any, the default text is listed and selected.
/// A shared list belongs to several windows and is not cleared first.
void RefillContextBox(const com::Object& box, const std::vector<std::wstring>& contexts, const std::wstring& current,
                      bool shared, const std::wstring& defaultText);

}  // namespace beacon
