#pragma once

#include <string>
#include <vector>

namespace beacon::standin {

/// The command line without the program's name.
std::vector<std::wstring> Arguments();

/// Handles every message that is waiting.
void PumpMessages();

}  // namespace beacon::standin
