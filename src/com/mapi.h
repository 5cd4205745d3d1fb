#pragma once

#include <windows.h>

#include <mapicode.h>
#include <mapidefs.h>

// MAPI's objects that have properties, by the name that com's templates ask for.
__CRT_UUID_DECL(IMAPIProp, 0x00020303, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
