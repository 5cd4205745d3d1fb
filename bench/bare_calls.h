#pragma once

#include <windows.h>

#include <beacon_util.h>
#include <mapi_prop.h>

#include <string>
#include <vector>

#include "com/event_sink.h"
#include "com/object.h"

namespace beacon::bench {

/// The engine's end of a link, as RunningController gives it. Raises an error when there is none.
com::ComPtr<IMessageDispatch> EnginePeer();

/// The calls to Outlook, to the property reader and to the engine that a send makes, and nothing else: numbers of
/// members are known, messages are ready; but a text for COM is made of each, as whoever calls must.
class BareSend {
public:
    BareSend(com::ComPtr<IMessageDispatch> engine, std::vector<std::wstring> messages);

    void Mail(IDispatch* item, IDispatch* previous) const;
    void Contact(IDispatch* item, IDispatch* previous) const;
    void PutAll() const;

private:
    void Look(IDispatch* item, IDispatch* previous) const;
    void Read(IDispatch* item, std::initializer_list<long> tags) const;
    void ReadBody(IDispatch* item) const;

    com::ComPtr<IMessageDispatch> engine_;
    com::ComPtr<IMAPIPropWrapper> reader_;
    std::vector<std::wstring> messages_;
};

/// What a start of the add-in asks of Outlook, Windows, the registry and the engine, made and undone.
class BareStart {
public:
    explicit BareStart(IDispatch* application);
    BareStart(const BareStart&) = delete;
    BareStart& operator=(const BareStart&) = delete;
    ~BareStart();

private:
    void Attach();

    HHOOK hook_;
    HWND form_;
    HWND marked_ = nullptr;
    com::ComPtr<IMessageDispatch> sinks_[2];
    std::vector<com::EventSubscription> subscriptions_;
};

}  // namespace beacon::bench
