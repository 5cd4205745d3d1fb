#pragma once

#include <windows.h>

#include <mapicode.h>

// The header declares that members do not throw; ours do not either, but need not say so in each place.
#pragma push_macro("COM_DECLSPEC_NOTHROW")
#undef COM_DECLSPEC_NOTHROW
#define COM_DECLSPEC_NOTHROW
#include <mapidefs.h>
#pragma pop_macro("COM_DECLSPEC_NOTHROW")

// MAPI's objects that have properties, by the name that com's templates ask for.
__CRT_UUID_DECL(IMAPIProp, 0x00020303, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
