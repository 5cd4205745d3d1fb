#pragma once

#include "check/report.h"

namespace beacon::check {

/// State and exceptions of the add-in's logs. Creates nothing.
Logs ReadLogs();

/// Creates the folder of the logs, which the add-in never does. Raises an error if that fails.
void MakeLogFolder();

}  // namespace beacon::check
