#include "engine/clients.h"

#include <algorithm>

namespace beacon::standin {

com::ComPtr<MessageChannel> Clients::Channel(Side side, long handle) {
    const auto found = channels_.find({handle, side});
    return found != channels_.end() ? found->second : NewChannel(side, handle);
}

com::ComPtr<MessageChannel> Clients::NewChannel(Side side, long handle) {
    return com::MakeObject<MessageChannel>(*this, monitor_, faults_, side, handle);
}

void Clients::OnConnected(MessageChannel& channel) {
    com::ComPtr<MessageChannel>& slot = channels_[{channel.Handle(), channel.WhichSide()}];
    const com::ComPtr<MessageChannel> earlier = slot;
    slot = &channel;
    if (earlier != nullptr && earlier.Get() != &channel) earlier->DropSink(false);
    Watch(channel.Handle());
}

void Clients::OnDisconnected(MessageChannel& channel) {
    const auto found = channels_.find({channel.Handle(), channel.WhichSide()});
    if (found != channels_.end() && found->second.Get() == &channel) channels_.erase(found);
    const long handle = channel.Handle();
    if (!channels_.contains({handle, Side::Controller}) && !channels_.contains({handle, Side::Engine}))
        processes_.erase(handle);
}

std::vector<com::ComPtr<MessageChannel>> Clients::Connected(Side side, std::optional<long> handle) const {
    std::vector<com::ComPtr<MessageChannel>> found;
    for (const auto& [key, channel] : channels_)
        if (key.second == side && (!handle || key.first == *handle)) found.push_back(channel);
    return found;
}

std::vector<long> Clients::Handles() const {
    std::vector<long> handles;
    for (const auto& [key, channel] : channels_)
        if (handles.empty() || handles.back() != key.first) handles.push_back(key.first);
    return handles;
}

void Clients::DropEnded() {
    std::vector<long> ended;
    for (const auto& [handle, process] : processes_)
        if (process != nullptr && WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0) ended.push_back(handle);
    for (const long handle : ended) {
        for (const Side side : {Side::Controller, Side::Engine})
            for (const com::ComPtr<MessageChannel>& channel : Connected(side, handle)) channel->DropSink(false);
    }
}

void Clients::Clear() {
    channels_.clear();
    processes_.clear();
}

void Clients::Watch(long handle) {
    if (processes_.contains(handle)) return;
    const auto window = static_cast<HWND>(LongToHandle(handle));
    DWORD process = 0;
    if (!IsWindow(window))
        monitor_.Note(handle, L"the handle is not that of a window");
    else
        GetWindowThreadProcessId(window, &process);
    processes_[handle] = UniqueHandle(process == 0 ? nullptr : OpenProcess(SYNCHRONIZE, FALSE, process));
}

}  // namespace beacon::standin
