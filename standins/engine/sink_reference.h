#pragma once

#include <windows.h>

#include "beacon_util.h"
#include "com/object.h"

namespace beacon::standin {

/// A reference to a client's sink. A sink in this process is referenced through COM's table of global interfaces, so
/// that CoDisconnectObject cuts it off like a sink in another process.
class SinkReference {
public:
    SinkReference() = default;
    SinkReference(const SinkReference&) = delete;
    SinkReference& operator=(const SinkReference&) = delete;

    ~SinkReference() { Reset(); }

    /// Call before any other member if the clients run in this process.
    static void ClientsAreHere();

    /// Replaces the reference. Throws com::Error.
    void Set(IMessageDispatch* sink);
    void Reset() noexcept;

    bool IsSet() const { return direct_ != nullptr || cookie_ != 0; }

    /// Null if there is none or if the client has disconnected the sink.
    com::ComPtr<IMessageDispatch> Get() const;

private:
    com::ComPtr<IMessageDispatch> direct_;
    DWORD cookie_ = 0;  // in the process's table of interfaces
};

}  // namespace beacon::standin
