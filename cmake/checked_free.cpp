// Hardened builds free memory through these (-Wl,--wrap). A program that has written behind a block traps when it frees
// the block, because in_wine with BEACON_FILL_MEMORY lets Wine write a pattern there.
#include <windows.h>

#include <malloc.h>

extern "C" {
void __real_free(void* block);
void* __real_realloc(void* block, size_t size);

static void Check(const void* block) {
    if (block != nullptr && !HeapValidate(reinterpret_cast<HANDLE>(_get_heap_handle()), 0, block)) __builtin_trap();
}

void __wrap_free(void* block) {
    Check(block);
    __real_free(block);
}

void* __wrap_realloc(void* block, size_t size) {
    Check(block);
    return __real_realloc(block, size);
}
}
