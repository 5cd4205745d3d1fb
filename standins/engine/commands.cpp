#include "engine/commands.h"

#include <cwchar>

#include "common/call_points.h"

namespace beacon::standin {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr wchar_t kExit[] = L"<EXIT now=\"1\"/>";

/// A client's handle; "all" or nothing means every client.
std::optional<long> TakeHandle(Words& words) {
    if (words.AtEnd() || words.Accept(L"all")) return std::nullopt;
    return words.TakeNumber(L"the handle");
}

std::optional<long> TakeLastHandle(Words& words) {
    const std::optional<long> handle = TakeHandle(words);
    words.End();
    return handle;
}

/// Whether it is the first of two words; nothing else is accepted.
bool TakeEither(Words& words, const std::wstring& first, const std::wstring& second) {
    if (words.Accept(first)) return true;
    if (words.Accept(second)) return false;
    throw ScriptError{L"must be " + first + L" or " + second + L", not \"" + words.TakeRest() + L"\""};
}

template <class Action>
void ForEach(Engine& engine, Side side, std::optional<long> handle, Action action) {
    const auto channels = engine.clients.Connected(side, handle);
    if (channels.empty())
        throw ScriptError{handle ? L"no connected client " + std::to_wstring(*handle) : L"no client is connected"};
    for (const com::ComPtr<MessageChannel>& channel : channels) action(*channel.Get());
}

void SendControl(Engine& engine, std::optional<long> handle, const std::wstring& text) {
    ForEach(engine, Side::Controller, handle, [&](MessageChannel& channel) { channel.SendControl(text); });
}

void Exit(Engine& engine, Words& words) { SendControl(engine, TakeLastHandle(words), kExit); }

void SetAutoUpdate(Engine& engine, Words& words) {
    const wchar_t* const value = TakeEither(words, L"true", L"false") ? L"true" : L"false";
    SendControl(engine, TakeLastHandle(words), std::wstring(L"<SET_AUTOUPDATE value=\"") + value + L"\"/>");
}

void ButtonClick(Engine& engine, Words& words) {
    const std::wstring text = L"<BUTTON_CLICK id=\"" + std::to_wstring(words.TakeNumber(L"the button")) + L"\"/>";
    ForEach(engine, Side::Controller, TakeLastHandle(words),
            [&](MessageChannel& channel) { channel.SendMessageText(text); });
}

template <Side kSide, void (MessageChannel::*kSend)(std::wstring_view)>
void SendRaw(Engine& engine, Words& words) {
    const std::wstring text = words.TakeRest();
    ForEach(engine, kSide, std::nullopt, [&](MessageChannel& channel) { (channel.*kSend)(text); });
}

void Disconnect(Engine& engine, Words& words) {
    const Side side = TakeEither(words, L"controller", L"engine") ? Side::Controller : Side::Engine;
    const std::optional<long> handle = TakeHandle(words);
    const std::optional<long> id = words.AtEnd() ? std::nullopt : std::optional(words.TakeNumber(L"the id"));
    words.End();
    ForEach(engine, side, handle,
            [&](MessageChannel& channel) { channel.SendDisconnect(id.value_or(channel.Handle())); });
}

void SecondConnect(Engine& engine, Words& words) {
    const std::optional<long> handle = TakeLastHandle(words);
    for (const Side side : {Side::Controller, Side::Engine}) {
        ForEach(engine, side, handle, [&](MessageChannel& channel) {
            channel.SendSecondConnect(engine.clients.NewChannel(side, channel.Handle()).Get());
        });
    }
}

void ReadId(Engine& engine, Words& words) {
    const std::optional<long> handle = TakeLastHandle(words);
    for (const Side side : {Side::Controller, Side::Engine})
        ForEach(engine, side, handle, [](MessageChannel& channel) { channel.ReadSinkId(); });
}

void SayClients(Engine& engine, Words&) {
    if (engine.clients.IsEmpty()) engine.monitor.Event(L"no clients");
    for (const long handle : engine.clients.Handles()) {
        std::wstring line = L"client " + std::to_wstring(handle);
        if (!engine.clients.Connected(Side::Controller, handle).empty()) line += L" controller";
        if (!engine.clients.Connected(Side::Engine, handle).empty()) line += L" engine";
        engine.monitor.Event(line);
    }
}

void Hang(Engine& engine, Words& words) {
    const milliseconds time = words.TakeTime(seconds(1));
    words.End();
    engine.monitor.Event(L"hangs for " + std::to_wstring(time.count()) + L" ms");
    Sleep(static_cast<DWORD>(time.count()));
    engine.monitor.Event(L"goes on");
}

void HangNext(Engine& engine, Words& words) {
    const milliseconds time = words.TakeTime(seconds(1));
    words.End();
    engine.faults.hangMilliseconds = static_cast<unsigned>(time.count());
}

void FailNext(Engine&, Words& words) {
    const std::wstring name = words.Take(L"the call");
    const auto result = static_cast<HRESULT>(std::wcstoul(words.Take(L"the result").c_str(), nullptr, 16));
    words.End();
    TheCallPoints().WatchAll();
    TheCallPoints().SetListener([=, done = false](unsigned number, const std::wstring& call) mutable {
        if (done || call != name) return;
        done = true;
        TheCallPoints().Add({number, result, 0, {}, {}, true});
    });
}

void Die(Engine& engine, Words&) {
    engine.monitor.Event(L"dies");
    TerminateProcess(GetCurrentProcess(), 1);
}

void Away(Engine& engine, Words&) {
    engine.running.Leave();
    engine.monitor.Event(L"away");
}

void Back(Engine& engine, Words&) {
    com::Check(engine.running.Enter(engine.controller.Get()));
    engine.monitor.Event(L"back");
}

void State(Engine& engine, Words& words) {
    const long state = words.TakeNumber(L"the state");
    words.End();
    engine.toolbar.engineState = state;
}

ToolbarButton& TakeButton(Engine& engine, Words& words) {
    const long index = words.TakeNumber(L"the button");
    if (index < 0 || index >= static_cast<long>(engine.toolbar.buttons.size()))
        throw ScriptError{L"no button " + std::to_wstring(index)};
    return engine.toolbar.buttons[static_cast<size_t>(index)];
}

void Caption(Engine& engine, Words& words) {
    ToolbarButton& button = TakeButton(engine, words);
    button.caption = words.TakeRest();
}

const std::vector<CommandOf<Engine>>& EngineCommands() {
    static const std::vector<CommandOf<Engine>> commands = {
        {L"exit [HANDLE|all]", L"sends <EXIT now=\"1\"/>: the client says good-bye, and comes back by itself", Exit},
        {L"set_autoupdate true|false [HANDLE]", L"switches automatic update", SetAutoUpdate},
        {L"button_click N [HANDLE]", L"sends <BUTTON_CLICK id=\"N\"/>: the client sends its item again", ButtonClick},
        {L"control TEXT", L"puts a raw control on all clients' controller sinks",
         SendRaw<Side::Controller, &MessageChannel::SendControl>},
        {L"message TEXT", L"puts a raw message on all clients' controller sinks",
         SendRaw<Side::Controller, &MessageChannel::SendMessageText>},
        {L"engine_control TEXT", L"puts a raw control on all clients' engine sinks",
         SendRaw<Side::Engine, &MessageChannel::SendControl>},
        {L"engine_message TEXT", L"puts a raw message on all clients' engine sinks",
         SendRaw<Side::Engine, &MessageChannel::SendMessageText>},
        {L"disconnect controller|engine [HANDLE|all] [ID]", L"calls Disconnect on the sink, then lets go of it",
         Disconnect},
        {L"second_connect [HANDLE]", L"calls Connect on both sinks again, with another peer", SecondConnect},
        {L"read_id [HANDLE]", L"reads the id of both sinks", ReadId},
        {L"clients", L"lists the clients and what they are connected to", SayClients},
        {L"hang SECONDS", L"answers nothing for that time", Hang},
        {L"hang_next SECONDS", L"hangs inside the next incoming message", HangNext},
        {L"fail CALL RESULT", L"the next call of that name (AppToEngine.Connect) takes effect, then fails (0x80004005)",
         FailNext},
        {L"die", L"ends at once, as a crash does", Die},
        {L"die_in_call", L"ends inside the next incoming message",
         [](Engine& engine, Words&) { engine.faults.dieInCall = true; }},
        {L"away", L"leaves the running object table, keeps the clients", Away},
        {L"back", L"enters the running object table again", Back},
        {L"state N", L"the engine state that the toolbar is told", State},
        {L"caption BUTTON TEXT", L"the caption of a button, 0 to 5", Caption},
        {L"quit", L"leaves the table, sends all clients EXIT, waits up to 3 s for their good-byes, ends",
         [](Engine& engine, Words&) { engine.quit = true; }},
    };
    return commands;
}

}  // namespace

EngineConsole::EngineConsole(Engine& engine) : engine_(engine) { Add(EngineCommands(), engine); }

void EngineConsole::Failed(const Failure& failure) {
    engine_.monitor.Error((failure.command.empty() ? L"" : failure.command + L": ") + failure.text);
}

void SendExitToAll(Engine& engine) {
    for (const auto& channel : engine.clients.Connected(Side::Controller, std::nullopt)) channel->SendControl(kExit);
}

}  // namespace beacon::standin
