#pragma once

#include <windows.h>

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "beacon_util.h"
#include "com/object.h"
#include "engine/monitor.h"

namespace beacon::standin {

/// Class of the toolbar's configuration, BeaconUtil.ToolbarConfig.
inline constexpr CLSID kToolbarConfigClass{
    0x78256BD9, 0xA478, 0x4B56, {0x88, 0x67, 0xBB, 0x0E, 0x43, 0xD1, 0x57, 0xBF}};

struct ToolbarButton {
    std::wstring caption;
    std::wstring tooltip;
    bool enabled = true;
    OLE_COLOR maskColor = 0xFF00FF;  // magenta
};

/// Place of a client's command bar.
struct ToolbarLayout {
    std::array<long, 5> numbers{};  // height, width, left, top, row
    std::wstring position = L"Top";
};

/// The values of every ToolbarConfig object of this program; commands change them while it runs.
struct ToolbarSettings {
    std::vector<ToolbarButton> buttons{{L"Update", L"Send this item to Beacon now"},
                                       {L"Backpack", L"Put this item into the backpack"},
                                       {L"New Search", L"Start a new search"},
                                       {L"Search in Context", L"Search with the context chosen in the box"},
                                       {L"Focus", L"Focus Beacon on this item"},
                                       {L"Refresh", L"Refresh Beacon's results"}};
    std::optional<long> buttonCount;  // none: the number of buttons
    std::wstring bitmaps;             // folder of button0.bmp to button5.bmp
    long contextMode = 1;
    std::optional<long> engineState;  // nothing: 3 while a controller is in the running object table, otherwise 0
    std::map<std::wstring, ToolbarLayout> layouts;  // by application, as clients have saved them
};

/// A new object for the class factory. Settings and monitor must outlive it.
com::ComPtr<IUnknown> MakeToolbarConfig(ToolbarSettings& settings, Monitor& monitor);

}  // namespace beacon::standin
