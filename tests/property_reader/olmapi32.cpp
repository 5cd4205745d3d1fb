// A library with the name of Outlook's own MAPI, which counts what it frees.
#include <windows.h>

namespace {
LONG freed = 0;
}

extern "C" {

ULONG WINAPI MAPIFreeBuffer(void* memory) {
    using Function = ULONG WINAPI(void*);
    ++freed;
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"mapi32.dll"), "MAPIFreeBuffer")))(memory);
}

LONG WINAPI Freed() { return freed; }
}
