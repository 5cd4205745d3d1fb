#include "engine/message_sinks.h"

#include "com/object.h"
#include "com/out_values.h"
#include "engine/control_verbs.h"
#include "engine/engine_link.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"

namespace beacon {
namespace {

using com::ComPtr;

HRESULT GiveNothing(VARIANT* result) {
    if (result != nullptr) VariantInit(result);
    return S_OK;
}

// Runs a member of a sink. No error reaches the peer. The call may end its own link, so sink and link are kept alive
// until it returns.
template <class Statement>
HRESULT Member(MessageSink& sink, VARIANT* result, Statement&& body) {
    const ComPtr<MessageSink> alive(&sink);
    const ComPtr<Application> link(sink.gApplication());
    GiveNothing(result);
    GoOnAfterError([&] { body(); });
    return S_OK;
}

}  // namespace

void MessageSink::KeepPeer(IMessageDispatch* peer, long id) {
    ReturnMessageDispatch = peer;
    id_ = id;
}

Application& MessageSink::Link() const {
    Application* const link = gApplication();
    return *com::Need(link);
}

HRESULT MessageSink::get_id(long* value) { return com::Give(value, id_); }

HRESULT MessageSink::Status(BSTR, IDispatch*, long, VARIANT* result) { return GiveNothing(result); }

ControllerInterface::ControllerInterface() { LogMsg(L"CI Class_init"); }

void ControllerInterface::Final() noexcept {
    if (!IsOnItsThread()) return;
    LogMsg(L"CI Class_term begin");
    if (globals::gShutdownInProgress) {
        LogMsg(L"CI Class_term exit shutdown in progress");
        return;
    }
    GoOnAfterError([&] { Link().ShutdownNoEnd(); });
    LogMsg(L"CI Class_term end");
}

HRESULT ControllerInterface::Connect(BSTR, IMessageDispatch* peer, long id, VARIANT* result) {
    return Member(*this, result, [&] {
        LogMsg(L"CI connect begin");
        if (ReturnMessageDispatch == nullptr) {
            LogMsg(L"CI connect rmd is nothing");
            KeepPeer(peer, id);
        }
        LogMsg(L"CI connect end");
    });
}

HRESULT ControllerInterface::Disconnect(long, VARIANT* result) {
    return Member(*this, result, [&] {
        LogMsg(L"CI disconnect begin");
        ReturnMessageDispatch.Reset();
        if (gApplication() != nullptr) gApplication()->DropControllerInterface();
        LogMsg(L"CI disconnect end");
    });
}

HRESULT ControllerInterface::PutControl(BSTR text, IMessageDispatch*, long, VARIANT* result) {
    return Member(*this, result, [&] {
        const std::wstring message = com::ToText(text);
        LogMsg(L"CI PutControl begin ", message);
        const auto verb = MessageVerb(message);
        if (!verb) return;
        if (*verb == L"EXIT") {
            Link().ShutdownNoEnd();
            return;
        }
        if (*verb == L"SET_AUTOUPDATE") GoOnAfterError([&] { Link().SetAutoUpdate(SwitchesAutoUpdateOn(message)); });
        LogMsg(L"CI PutControl end");
    });
}

HRESULT ControllerInterface::PutMessage(BSTR text, IMessageDispatch*, long, VARIANT* result) {
    return Member(*this, result, [&] {
        const std::wstring message = com::ToText(text);
        LogMsg(L"CI PutMessage begin ", message);
        const auto verb = MessageVerb(message);
        if (!verb) return;
        if (*verb == L"BUTTON_CLICK")
            GoOnAfterError([&] { com::Need(ComPtr<LinkHost>(Link().gBeaconConnection))->ForceUpdate(); });
        LogMsg(L"CI PutMessage end");
    });
}

EngineInterface::EngineInterface() { LogMsg(L"EI init"); }

void EngineInterface::Final() noexcept {
    if (!IsOnItsThread()) return;
    LogMsg(L"EI Term begin");
    if (!globals::gShutdownInProgress) GoOnAfterError([&] { Link().ShutdownNoEnd(); });
    LogMsg(L"EI Term end");
}

HRESULT EngineInterface::Connect(BSTR, IMessageDispatch* peer, long id, VARIANT* result) {
    return Member(*this, result, [&] {
        LogMsg(L"EI Connect begin");
        if (ReturnMessageDispatch == nullptr) {
            LogMsg(L"EI rmd is nothing");
            KeepPeer(peer, id);
        }
        LogMsg(L"EI Connect end");
    });
}

HRESULT EngineInterface::Disconnect(long, VARIANT* result) {
    const HRESULT done = Member(*this, result, [&] {
        LogMsg(L"EI Disconnect begin");
        // A wrong id disconnects as well.
        ReturnMessageDispatch.Reset();
        if (gApplication() != nullptr) gApplication()->DropEngineInterface();
        LogMsg(L"EI Disconnect end");
    });
    if (result != nullptr) {
        result->vt = VT_I4;
        result->lVal = 0;
    }
    return done;
}

HRESULT EngineInterface::PutControl(BSTR, IMessageDispatch*, long, VARIANT* result) { return GiveNothing(result); }

HRESULT EngineInterface::PutMessage(BSTR, IMessageDispatch*, long, VARIANT* result) { return GiveNothing(result); }

}  // namespace beacon
