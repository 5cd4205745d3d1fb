#pragma once

#include <string>

#include "com/object.h"

namespace beacon {

/// The external object that reads an item's MAPI properties. Created at first use, shared by all windows, and released
/// whenever a sender disconnects; the next read creates it again.

inline constexpr wchar_t kMapiWrapperProgId[] = L"Mapiprop.MAPIPropWrapper";

/// Whether the object may be created. Not after the end of the add-in: a call that was under way would leave it behind.
void AllowMapiWrapper(bool allowed) noexcept;
/// Creates the object unless it exists. Ignores a failure; the next read then fails.
void InitMapiWrapper();
/// Uninitialises and releases the object. If it refuses, raises its error and keeps it.
void UninitMapiWrapper();
/// Releases the object without asking; for the end of the add-in.
void AbandonMapiWrapper() noexcept;

/// A property as text. Raises the object's error.
std::wstring MapiText(const com::Object& item, long tag);
/// The same, of at most maxCharacters characters.
std::wstring MapiTextLimited(const com::Object& item, long tag, long maxCharacters);

}  // namespace beacon
