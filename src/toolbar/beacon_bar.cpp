#include "toolbar/beacon_bar.h"

#include <algorithm>
#include <array>

#include "support/string_values.h"

namespace beacon {
namespace {

constexpr std::wstring_view kMarker = L"CORVANTIS-BEACON";  // of a tag in upper case
constexpr std::array<std::wstring_view, 7> kPositions = {L"Left",     L"Top",   L"Right",   L"Bottom",
                                                         L"Floating", L"Popup", L"Menu Bar"};

unsigned g_barsFound = 0;
unsigned g_barsDeleted = 0;

/// Bars and controls have 16-bit indexes.
short CountOf(const com::Object& collection) {
    const long count = collection.GetLong(L"Count");
    if (count > SHRT_MAX) com::Raise(com::kOverflow);
    return static_cast<short>(count);
}

com::Object ItemOf(const com::Object& collection, int index) {
    return collection.GetObject(L"Item", {_variant_t(static_cast<short>(index))});
}

}  // namespace

bool HasToolbarMarker(std::wstring_view tag) { return UpperAscii(tag).find(kMarker) != std::wstring::npos; }

com::Object FindBeaconBar(const com::Object& commandBars) {
    const int bars = CountOf(commandBars);
    for (int i = 1; i <= bars; ++i) {
        const com::Object bar = ItemOf(commandBars, i);
        const com::Object controls = bar.GetObject(L"Controls");
        const int count = CountOf(controls);
        for (int j = 1; j <= count; ++j)
            if (HasToolbarMarker(ItemOf(controls, j).GetText(L"Tag"))) {
                ++g_barsFound;
                return bar;
            }
    }
    return {};
}

void DeleteBeaconBar(const com::Object& bar) {
    if (bar) ++g_barsDeleted;  // before the call, which may let other windows' code run
    bar.Call(L"Delete");
}

unsigned BeaconBarsFound() { return g_barsFound; }

unsigned BeaconBarsDeleted() { return g_barsDeleted; }

long PositionFromName(std::wstring_view name) {
    constexpr long kTop = 1;
    const auto found = std::find(kPositions.begin(), kPositions.end(), name);
    return found == kPositions.end() ? kTop : static_cast<long>(found - kPositions.begin());
}

std::wstring PositionName(long position) {
    if (position < 0 || position >= static_cast<long>(kPositions.size())) return L"Unsupported type";
    return std::wstring(kPositions[static_cast<size_t>(position)]);
}

}  // namespace beacon
