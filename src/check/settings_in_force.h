#pragma once

#include <vector>

#include "check/report.h"

namespace beacon::check {

/// Every setting, with the value that the add-in would use, as programs of this program's bitness read it.
std::vector<SettingInForce> SettingsInForce();

}  // namespace beacon::check
