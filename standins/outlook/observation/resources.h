#pragma once

#include <cstddef>
#include <string>

namespace beacon::standin {

/// The system resources of this process.
struct Resources {
    size_t memory = 0;   // KB committed, including memory of Wine itself
    size_t heap = 0;     // KB allocated in the process's heaps
    size_t handles = 0;  // kernel handles
    size_t gdiObjects = 0;
    size_t windows = 0;  // including child and message-only windows

    static Resources Now();

    static size_t GdiObjects();

    /// "memory KB 5120, heap KB 250, handles 80, GDI objects 40, windows 12".
    std::wstring Text() const;
};

}  // namespace beacon::standin
