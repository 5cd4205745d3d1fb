#pragma once

#include <string>

namespace beacon {

/// Whether the file exists; hidden files, system files and folders do not count. Accepts wildcards. Logs its errors.
bool FileExists(const std::wstring& path);

/// Copies the toolbar container for Word from the program directory to this path and replaces an existing file. Logs
/// the result; raises nothing.
void CopyFreshTemplateToAppData(const std::wstring& sDOTFilename);

}  // namespace beacon
