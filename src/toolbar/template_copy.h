#pragma once

#include <string>

namespace beacon {

/// Whether there is such a file, hidden and system ones not counted. The path may contain wildcards. Logs its errors.
bool FileExists(const std::wstring& path);

/// Copies the toolbar container for Word from the program directory over the given file. Logs how it went.
void CopyFreshTemplateToAppData(const std::wstring& sDOTFilename);

}  // namespace beacon
