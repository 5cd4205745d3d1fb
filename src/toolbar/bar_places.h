#pragma once

#include "com/event_sink.h"

namespace beacon {

/// The controls of the bar, each with the subscription to its events.
struct BarSinks {
    com::WatchedObject mvargCbbBeacon;
    com::WatchedObject mvargCbbBackpack;
    com::WatchedObject mvargCboContext;
    com::WatchedObject mvargCbbSearch;
    com::WatchedObject mvargCbbSearchInContext;
    com::WatchedObject mvargCbbFocus;
    com::WatchedObject mvargCbbRefresh;
};

/// What a click does.
enum class BarCommand {
    kNone,
    kUpdate,           ///< sends the window's item again
    kSearch,           ///< starts a new search with the text of the context box
    kSearchInContext,  ///< sends the item again with the context, or warns the user that none is chosen
    kSearchForContext  ///< starts a new search if the context box is shown
};

/// A place on the bar and its properties.
struct BarPlace {
    long number;  ///< from 1, from the left
    com::WatchedObject BarSinks::*sink;
    const wchar_t* handler;  ///< name of the click handler in the log; null if there is none
    const wchar_t* clicked;  ///< log line of a click
    BarCommand command;
    const wchar_t* caption;  ///< built-in; null for the context box, which is no button
    const wchar_t* tooltip;
};

inline constexpr long kFirstPlace = 1;
inline constexpr long kContextPlace = 3;
inline constexpr long kSearchInContextPlace = 5;

/// In the order in which places are synchronised and captions compared: the context box comes last. The index of a
/// button is its number in the toolbar's definition, from 0.
inline constexpr BarPlace kBarPlaces[] = {
    {kFirstPlace, &BarSinks::mvargCbbBeacon, L"mvargCbbBeacon_Click", L"**** Beacon button clicked",
     BarCommand::kUpdate, L"Beacon", L"Show information related to this item"},
    {2, &BarSinks::mvargCbbBackpack, nullptr, L"**** Backpack button clicked", BarCommand::kNone, L"Backpack",
     L"Open the backpack"},
    {4, &BarSinks::mvargCbbSearch, L"mvargCbbSearch_Click", L"**** New search button clicked", BarCommand::kSearch,
     L"Search", L"Start a new search"},
    {kSearchInContextPlace, &BarSinks::mvargCbbSearchInContext, L"mvargCbbSearchInContext_Click",
     L"**** Search in context button clicked", BarCommand::kSearchInContext, L"Search in Context",
     L"Search within the chosen context"},
    {6, &BarSinks::mvargCbbFocus, L"mvargCbbFocus_Click", L"**** Focus button clicked", BarCommand::kUpdate, L"Focus",
     L"Bring the information on this item to the front"},
    {7, &BarSinks::mvargCbbRefresh, L"mvargCbbRefresh_Click", L"**** Refresh button clicked", BarCommand::kUpdate,
     L"Refresh", L"Analyse this item again"},
    {kContextPlace, &BarSinks::mvargCboContext, nullptr, L"**** Combo box accessed", BarCommand::kSearchForContext,
     nullptr, nullptr},
};

}  // namespace beacon
