#pragma once

#include <cstdlib>
#include <new>

namespace beacon::test {

inline long failingAllocation = 0;  // counts down to the one that fails; 0: none does
inline bool outOfMemory = false;    // every allocation fails

}  // namespace beacon::test

// Replaces the operators of the whole program: include this in one of its sources. Not inline: the compiler would
// complain about the pair of malloc and delete.
[[gnu::noinline]] void* operator new(size_t size) {
    using namespace beacon::test;
    const bool fails = outOfMemory || (failingAllocation > 0 && --failingAllocation == 0);
    if (void* const block = fails ? nullptr : std::malloc(size)) return block;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }

[[gnu::noinline]] void operator delete(void* block, size_t) noexcept { std::free(block); }
