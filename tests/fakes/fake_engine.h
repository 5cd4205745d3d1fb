#pragma once

#include <map>
#include <memory>
#include <string>

#include "common/automation_object.h"
#include "engine/engine_link.h"
#include "tests/fakes/fake_dispatcher.h"

namespace beacon::test {

/// Engine and controller in this process, registered in the running object table. Logs each call at level 1 as
/// "* " + name + member + arguments, so that one list shows calls and the add-in's own lines in order.
class FakeEngine {
public:
    FakeEngine();
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;
    ~FakeEngine();

    /// Runs once inside the call of this name ("controller Connect"). An exception becomes the error of the call.
    std::map<std::wstring, std::function<void()>> once;
    /// For measurements: receives each message in place of the log and of `once`.
    std::function<void(BSTR)> onMessage;
    /// The link whose sinks the log calls CI and EI.
    Application* link = nullptr;

    com::ComPtr<FakeDispatcher> controllerSide;
    com::ComPtr<FakeDispatcher> engineSide;

    void Enter(const std::wstring& call, const std::wstring& arguments);
    std::wstring NameOf(IMessageDispatch* sink) const;

    /// True when every client has disconnected.
    bool KnowsNobody() const {
        return controllerSide->id == 0 && engineSide->id == 0 && controllerSide->peer.Get() == nullptr &&
               engineSide->peer.Get() == nullptr;
    }

    /// Leaves the running object table.
    void Hide();
    /// Releases the sinks, as an ending engine does.
    void LetGo();
    /// References that the add-in holds on the engine's four objects.
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
