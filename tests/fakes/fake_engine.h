#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "beacon_util.h"
#include "com/dual.h"
#include "common/automation_object.h"
#include "support/log.h"

namespace beacon::test {

/// The engine's end of a channel: reports each call and holds the peer while connected.
class FakeDispatcher final : public com::Dual<IMessageDispatch, 2> {  // number in type_libraries.rc
public:
    /// Called before the call has its effect. An exception becomes the error of the call.
    using Hear = std::function<void(const wchar_t* member, BSTR text, IMessageDispatch* sink, long id)>;

    explicit FakeDispatcher(Hear hear = {}) : hear_(std::move(hear)) {}

    com::ComPtr<IMessageDispatch> peer;
    long id = 0;

    STDMETHODIMP Connect(BSTR type, IMessageDispatch* sink, long linkId, VARIANT*) override {
        return Heard(L"Connect", type, sink, linkId, [&] { SetPeer(sink, linkId); });
    }

    STDMETHODIMP Disconnect(long linkId, VARIANT*) override {
        return Heard(L"Disconnect", nullptr, nullptr, linkId, [&] { SetPeer(nullptr, 0); });
    }

    STDMETHODIMP get_id(long* value) override {
        return Heard(L"id", nullptr, nullptr, id, [&] { *value = id; });
    }

    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override {
        return Heard(L"PutControl", text, sink, linkId, [&] { *result = com::FromText(L"controlled").Detach(); });
    }

    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override {
        return Heard(L"PutMessage", text, sink, linkId, [&] { *result = com::FromLong(7).Detach(); });
    }

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return S_OK; }

private:
    template <class Effect>
    HRESULT Heard(const wchar_t* member, BSTR text, IMessageDispatch* sink, long linkId, Effect&& effect) {
        return com::Method([&] {
            hear_(member, text, sink, linkId);
            effect();
        });
    }

    void SetPeer(IMessageDispatch* sink, long linkId) {
        const com::ComPtr<IMessageDispatch> released = std::exchange(peer, sink);
        id = linkId;
    }

    const Hear hear_;
};

/// Engine and controller in this process, registered in the running object table. Logs each call at level 1 as
/// "* " + name + member + arguments, so that one list shows calls and the add-in's own lines in order. The destructor
/// releases the sinks, as an ending engine does, and checks that the add-in holds nothing of the engine.
class FakeEngine {
public:
    FakeEngine() {
        com::Check(RegisterActiveObject(static_cast<IDispatch*>(controller_.get()), __uuidof(BeaconController),
                                        ACTIVEOBJECT_STRONG, &registration_));
    }

    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;

    ~FakeEngine() {
        Hide();
        for (const auto& side : {controllerSide, engineSide}) side->peer.Reset();
        EXPECT_EQ(controllerSide->References() + engineSide->References(), 2u) << "the add-in holds a channel";
        EXPECT_EQ(controller_->OutsideReferences() + engine_->OutsideReferences(), 0u) << "the add-in holds the engine";
    }

    /// Runs once inside the call of this name ("controller Connect"). An exception becomes the error of the call.
    std::map<std::wstring, std::function<void()>> once;
    /// For measurements: receives each message in place of the log and of `once`.
    std::function<void(BSTR)> onMessage;

    const com::ComPtr<FakeDispatcher> controllerSide = MakeSide(L"controller", L"CI");
    const com::ComPtr<FakeDispatcher> engineSide = MakeSide(L"engine", L"EI");

    /// True when every client has disconnected.
    bool KnowsNobody() const {
        return controllerSide->id == 0 && engineSide->id == 0 && controllerSide->peer.Get() == nullptr &&
               engineSide->peer.Get() == nullptr;
    }

    /// Leaves the running object table.
    void Hide() {
        if (registration_ != 0) RevokeActiveObject(std::exchange(registration_, 0), nullptr);
    }

private:
    class Published final : public standin::AutomationObject {
    public:
        Published(FakeEngine& owner, const std::wstring& name, IDispatch* dispatcher, std::shared_ptr<Published> engine)
            : AutomationObject(name) {
            const auto add = [&](DISPID member, const wchar_t* method, auto result) {
                AddMethod(member, method, 2, 2, [&owner, name, method, result](const standin::CallArguments& given) {
                    owner.Enter(name + L" " + method, given.Text(0) + L" " + given.Text(1));
                    return result();
                });
            };
            add(1, L"GetMessageInterface", [dispatcher] { return com::FromObject(dispatcher); });
            add(2, L"GetEngineInterface", [engine] { return standin::HandOut(engine); });
        }
    };

    /// `sinkName`: what the log calls the sink that the add-in connects to this side.
    com::ComPtr<FakeDispatcher> MakeSide(const std::wstring& name, const wchar_t* sinkName) {
        return com::MakeObject<FakeDispatcher>([=, this](std::wstring_view member, BSTR text, auto* sink, long id) {
            if (onMessage && member == L"PutMessage") return onMessage(text);
            if (onMessage && member == L"id") return;
            if (member == L"Connect") sinkNames_[sink] = sinkName;
            std::wstring arguments = member == L"id" ? L"" : std::to_wstring(id);
            if (text != nullptr) arguments = com::ToText(text) + L" " + sinkNames_[sink] + L" " + arguments;
            Enter(name + L" " + std::wstring(member), arguments);
        });
    }

    void Enter(const std::wstring& call, const std::wstring& arguments) {
        LogMsg(L"* ", call, L" ", arguments);
        if (auto found = once.extract(call)) found.mapped()();
    }

    std::map<IMessageDispatch*, std::wstring> sinkNames_{{nullptr, L"nothing"}};
    const std::shared_ptr<Published> engine_ = std::make_shared<Published>(*this, L"engine", engineSide.Get(), nullptr);
    const std::shared_ptr<Published> controller_ =
        std::make_shared<Published>(*this, L"controller", controllerSide.Get(), engine_);
    DWORD registration_ = 0;
};

}  // namespace beacon::test
