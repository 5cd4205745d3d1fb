#pragma once

#include <windows.h>

#include <beacon_util.h>
#include <mapi_prop.h>

#include <string>
#include <vector>

#include "com/object.h"

namespace beacon::bench {

/// What the sending of a mail asks of Outlook, the property reader, the system and the engine, and nothing else: member
/// numbers are known and the messages are ready, but a BSTR is made of each.
class BareSend {
public:
    /// Finds the engine in the running object table.
    explicit BareSend(std::vector<std::wstring> messages);

    void Send(IDispatch* item, IDispatch* previous) const;

private:
    com::ComPtr<IMessageDispatch> engine_;
    com::ComPtr<IMAPIPropWrapper> reader_;
    std::vector<std::wstring> messages_;
};

}  // namespace beacon::bench
