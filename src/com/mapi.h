#pragma once

#include <windows.h>

#include <mapicode.h>

// The header declares its members noexcept, which every override would have to repeat.
#pragma push_macro("COM_DECLSPEC_NOTHROW")
#undef COM_DECLSPEC_NOTHROW
#define COM_DECLSPEC_NOTHROW
#include <mapidefs.h>
#pragma pop_macro("COM_DECLSPEC_NOTHROW")

// Lets __uuidof find the identifier.
__CRT_UUID_DECL(IMAPIProp, 0x00020303, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
