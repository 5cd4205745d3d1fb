#pragma once

#include <map>
#include <memory>
#include <string>

#include "common/automation_object.h"
#include "engine/engine_link.h"
#include "tests/fakes/fake_dispatcher.h"

namespace beacon::test {

/// The engine and its controller inside this process, in the running object table. Every call is written into the
/// level-1 log as "* " + name + member + arguments, so that one list shows calls and log lines in their order.
class FakeEngine {
public:
    FakeEngine();
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;
    ~FakeEngine();

    /// What happens once inside the call of this name ("controller Connect"). An error that it raises is the call's.
    std::map<std::wstring, std::function<void()>> once;
    /// Called in every call, `once` and all that is written before it.
    std::function<void()> always;
    /// For measurements. When set, it is called with each message, and neither messages nor questions for the state are
    /// written, or do what happens once.
    std::function<void(BSTR)> onMessage;
    /// The link whose sinks are named in the log.
    Application* link = nullptr;

    com::ComPtr<FakeDispatcher> controllerSide;
    com::ComPtr<FakeDispatcher> engineSide;

    void Enter(const std::wstring& call, const std::wstring& arguments);
    std::wstring NameOf(IMessageDispatch* sink) const;

    /// Whether it has been told of each client's end.
    bool KnowsNobody() const {
        return controllerSide->id == 0 && engineSide->id == 0 && controllerSide->peer.Get() == nullptr &&
               engineSide->peer.Get() == nullptr;
    }

    /// Lets go of the sinks, as an engine does that ends.
    void LetGo();
    /// References that others hold on this side's four objects, besides the running object table's.
    ULONG OutsideReferences() const;

private:
    class Published;

    com::ComPtr<FakeDispatcher> MakeSide(const std::wstring& name);

    std::shared_ptr<Published> controller_;
    std::shared_ptr<Published> engine_;
    DWORD registration_ = 0;
    ULONG tables_ = 0;
};

}  // namespace beacon::test
