#pragma once

#include <windows.h>

#include <beacon_util.h>

#include <functional>
#include <string>
#include <vector>

#include "com/class_factory.h"

namespace beacon::test {

/// What the utility server in this process answers, and what it has been told.
struct ConfigRecord {
    long contextMode = 1;
    long buttonCount = 6;
    long engineState = 3;
    std::wstring captions[8] = {L"Beacon", L"Backpack", L"Search", L"In context",
                                L"Focus",  L"Refresh",  L"More",   L"Most"};
    bool enabled[8] = {true, true, true, true, true, true, true, true};
    std::wstring defaultContext = L"No context";
    std::wstring bitmapFolder;

    /// No objects are made, as if the server were not installed.
    bool refuse = false;
    int created = 0;
    /// "BeginCommand", "CommandDone 5", "NewSearch 5 <text>", "SaveLayout ...".
    std::vector<std::wstring> calls;
    /// Runs inside NewSearch.
    std::function<void()> onNewSearch;
    /// Returned by EngineState once, when set: as from a server that has gone.
    HRESULT engineStateFailure = S_OK;
};

/// A factory of objects that answer from the record, which must outlive them.
com::ComPtr<IClassFactory> MakeConfigFactory(ConfigRecord& record);

}  // namespace beacon::test
