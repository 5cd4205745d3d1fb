#pragma once

#include <cstddef>
#include <string>

namespace beacon::standin {

/// What this process holds of the system's.
struct Resources {
    size_t memory = 0;      // KB committed, with all that Wine takes on the host's side
    size_t heap = 0;        // KB in use in the process's heaps
    size_t handles = 0;     // of the kernel
    size_t gdiObjects = 0;  // counted in the platform's own table, for GetGuiResources knows none in Wine
    size_t windows = 0;     // with their children, and message-only ones

    static Resources Now();

    static size_t GdiObjects();

    /// "memory KB 5120, heap KB 250, handles 80, GDI objects 40, windows 12".
    std::wstring Text() const;
};

}  // namespace beacon::standin
