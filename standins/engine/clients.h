#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "common/threads.h"
#include "engine/message_channel.h"

namespace beacon::standin {

/// The client windows that talk with this engine: a client is a window handle with up to two connected channels.
class Clients {
public:
    Clients(Monitor& monitor, Mischief& mischief) : monitor_(monitor), mischief_(mischief) {}

    /// The dispatcher of this side for this window: the one in use, or a new one.
    com::ComPtr<MessageChannel> Channel(Side side, long handle);
    /// A dispatcher that belongs to no client, to offer as a second peer.
    com::ComPtr<MessageChannel> Stranger(Side side, long handle);

    void Joined(MessageChannel& channel);
    void Left(MessageChannel& channel);

    /// The connected channels of a side; of one client, or of all.
    std::vector<com::ComPtr<MessageChannel>> Connected(Side side, std::optional<long> handle) const;
    std::vector<long> Handles() const;

    bool IsEmpty() const { return Handles().empty(); }

    /// Drops the clients whose process has ended. A window that belongs to nobody is not watched.
    void DropEnded();
    /// Forgets all, without a word to the clients.
    void Clear();

private:
    void Watch(long handle);

    Monitor& monitor_;
    Mischief& mischief_;
    std::map<std::pair<long, Side>, com::ComPtr<MessageChannel>> channels_;
    std::map<long, UniqueHandle> processes_;
};

}  // namespace beacon::standin
