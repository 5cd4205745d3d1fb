#pragma once

#include <vector>

#include "check/report.h"

namespace beacon::check {

/// Every setting with the value that an add-in of this program's bitness would use.
std::vector<SettingInForce> SettingsInForce();

/// Whether the registered text means something else than the value in force.
bool IsMisread(const SettingInForce& setting);

}  // namespace beacon::check
