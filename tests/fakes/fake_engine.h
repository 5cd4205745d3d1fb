#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "com/dual.h"
#include "common/automation_object.h"
#include "engine/engine_link.h"

namespace beacon::test {

/// One end of a channel, which tells what it hears. It remembers the other end while it is connected.
class FakeDispatcher final : public com::Dual<IMessageDispatch, kEngineLibrary> {
public:
    /// What it raises is the call's error.
    using Hear = std::function<void(const wchar_t* member, BSTR text, IMessageDispatch* sink, long id)>;

    explicit FakeDispatcher(Hear hear = {}) : hear_(std::move(hear)) {}

    com::ComPtr<IMessageDispatch> peer;
    long id = 0;

    STDMETHODIMP Connect(BSTR type, IMessageDispatch* sink, long linkId, VARIANT* result) override;
    STDMETHODIMP Disconnect(long linkId, VARIANT* result) override;
    STDMETHODIMP get_id(long* value) override;
    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override;

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return S_OK; }

private:
    const Hear hear_;
};

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
