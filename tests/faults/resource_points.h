#pragma once

#include <string>
#include <vector>

namespace beacon::standin {

enum class Resource { Memory, System };

/// Which requests of a run are refused: from number `first` (1-based; 0: none), `count` in a row.
struct ResourcePlan {
    Resource kind = Resource::Memory;
    unsigned first = 0;
    unsigned count = 1;
};

/// Numbers every request for memory or for a system object (windows, timers, files, keys) that the adapter's DLLs make
/// through their import tables, from the load of each DLL on, so that each request can be refused.
class ResourcePoints {
public:
    /// Replaces the functions in each of the adapter's DLLs that is loaded from now on. Throws com::Error.
    static void Install();

    /// Makes the next request of each kind number 1, and records the requests by new paths if that is wanted. Ignores
    /// the requests of other threads.
    static void Start(const ResourcePlan& plan, bool recordsPaths);
    /// Nothing is refused or recorded from now on; the numbers stay.
    static void Stop();

    static unsigned Count(Resource kind);

    /// The recorded requests of this run that came by a new path.
    static const std::vector<unsigned>& Firsts(Resource kind);
    /// Whether nothing of this name has come from this stack so far; remembers it.
    static bool IsNewPath(const std::wstring& name);

    /// The first refused request: function, then the addresses in the DLLs that led to it ("malloc
    /// BeaconOLKAdapter.dll+0x1234 ..."); empty when there was none.
    static const std::wstring& Met();

    /// A C++ exception has left one of the DLLs since Start, or nobody has caught it. Known in 64-bit builds only.
    static bool ExceptionLeft();

    /// The addresses in the DLLs on the stack of this thread.
    static std::wstring Stack();
};

}  // namespace beacon::standin
