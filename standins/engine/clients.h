#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "common/threads.h"
#include "engine/message_channel.h"

namespace beacon::standin {

/// The clients of this engine. A client is a window handle with up to two connected channels.
class Clients {
public:
    Clients(Monitor& monitor, InjectedFaults& faults) : monitor_(monitor), faults_(faults) {}

    /// The connected channel of this side for this window, or a new one.
    com::ComPtr<MessageChannel> Channel(Side side, long handle);
    /// A channel that belongs to no client yet.
    com::ComPtr<MessageChannel> NewChannel(Side side, long handle);

    void OnConnected(MessageChannel& channel);
    void OnDisconnected(MessageChannel& channel);

    /// The connected channels of a side: of one client, or of all.
    std::vector<com::ComPtr<MessageChannel>> Connected(Side side, std::optional<long> handle) const;
    std::vector<long> Handles() const;

    bool IsEmpty() const { return Handles().empty(); }

    /// Removes clients whose process has ended. Handles that are no windows are not watched.
    void DropEnded();
    /// Removes all clients without notifying them.
    void Clear();

private:
    void Watch(long handle);

    Monitor& monitor_;
    InjectedFaults& faults_;
    std::map<std::pair<long, Side>, com::ComPtr<MessageChannel>> channels_;
    std::map<long, UniqueHandle> processes_;
};

}  // namespace beacon::standin
