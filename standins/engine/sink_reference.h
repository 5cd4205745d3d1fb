#pragma once

#include <windows.h>

#include "beacon_util.h"
#include "com/object.h"

namespace beacon::standin {

/// A client's sink. One of another process is held as it is. One of this process is held as COM would hold it for
/// another: the client can take it back by CoDisconnectObject, which a plain reference would not notice.
class SinkReference {
public:
    SinkReference() = default;
    SinkReference(const SinkReference&) = delete;
    SinkReference& operator=(const SinkReference&) = delete;

    ~SinkReference() { Reset(); }

    /// To be called first by an engine in the process of its clients.
    static void ClientsAreHere();

    /// In place of the one held before. Throws com::Error.
    void Hold(IMessageDispatch* sink);
    void Reset() noexcept;

    bool IsHeld() const { return direct_ != nullptr || cookie_ != 0; }

    /// Null when there is none, or when the client has taken it back.
    com::ComPtr<IMessageDispatch> Get() const;

private:
    com::ComPtr<IMessageDispatch> direct_;
    DWORD cookie_ = 0;  // in the process's table of interfaces
};

}  // namespace beacon::standin
