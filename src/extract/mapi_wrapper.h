#pragma once

#include <string>

#include "com/object.h"

namespace beacon {

/// The external object that reads an item's MAPI properties. It is created at first use, shared by all windows, and let
/// go whenever a window's sender disconnects; the next read creates it again.

inline constexpr wchar_t kMapiWrapperProgId[] = L"Mapiprop.MAPIPropWrapper";

/// Creates it if need be; a failure is ignored, and the next read then fails.
void InitMapiWrapper();
/// Ends and releases it. Raises the object's error, and keeps it, when it refuses.
void UninitMapiWrapper();
/// Releases it whatever it answers; for the end of the add-in.
void AbandonMapiWrapper() noexcept;

/// A property as text. Raises the object's error.
std::wstring MapiText(const com::Object& item, long tag);
/// The same, of at most maxCharacters characters.
std::wstring MapiTextLimited(const com::Object& item, long tag, long maxCharacters);

}  // namespace beacon
