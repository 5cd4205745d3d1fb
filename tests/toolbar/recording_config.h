#pragma once

#include <windows.h>

#include <beacon_util.h>

#include <functional>
#include <map>
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
    OLE_COLOR maskColors[8] = {0xFF00FF, 0xFF00FF, 0xFF00FF, 0xFF00FF, 0xFF00FF, 0xFF00FF, 0xFF00FF, 0xFF00FF};
    std::wstring defaultContext = L"No context";
    std::wstring bitmapFolder;

    /// A failure makes objects fail to be created with it.
    HRESULT refusal = S_OK;
    int asked = 0;  ///< for an object
    /// "BeginCommand", "CommandDone 5", "NewSearch 5 <text>", "SaveLayout ...".
    std::vector<std::wstring> calls;
    /// Runs inside every call, as from outside while the caller waits, with the member's name ("" inside a creation).
    std::function<void(const std::wstring&)> onCall;
    /// What the member of this name returns at its next call.
    std::map<std::wstring, HRESULT> failures;
};

/// A factory of objects that answer from the record, which must outlive them.
com::ComPtr<IClassFactory> MakeConfigFactory(ConfigRecord& record);

}  // namespace beacon::test
