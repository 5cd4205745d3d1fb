#pragma once

#include "check/report.h"

namespace beacon::check {

/// Where the logs are, and what they say of failures. Makes no file.
Logs LookAtLogs();

/// Makes the folder of the logs, which the add-in never does. Raises an error, also when it is not known where it is.
void MakeLogFolder();

}  // namespace beacon::check
