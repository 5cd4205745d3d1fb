#include "commands.h"

#include <algorithm>
#include <cwctype>

#include "options.h"

namespace beacon::standin {
namespace {

/// What is wrong with a command line; becomes an error line.
struct BadCommand {
    std::wstring text;
};

/// The rest of a command line, taken word by word or whole.
class Words {
public:
    explicit Words(std::wstring text) : text_(std::move(text)) {}

    std::wstring Rest() { return std::exchange(text_, std::wstring()); }

    std::wstring Next() {
        const size_t end = std::min(text_.find_first_of(L" \t"), text_.size());
        std::wstring word = text_.substr(0, end);
        text_.erase(0, std::min(text_.find_first_not_of(L" \t", end), text_.size()));
        return word;
    }

    long Number(const wchar_t* what) {
        const std::wstring word = Next();
        const std::optional<long> number = ParseNumber(word);
        if (!number) throw BadCommand{std::wstring(what) + L" must be a number, not \"" + word + L"\""};
        return *number;
    }

    unsigned Milliseconds(long perUnit) {
        const long number = Number(L"the time");
        if (number < 0 || number > 86400000 / perUnit) throw BadCommand{L"the time must be between 0 and a day"};
        return static_cast<unsigned>(number * perUnit);
    }

    /// A client's handle; "all" or nothing means every client.
    std::optional<long> Handle() {
        if (text_.empty()) return std::nullopt;
        if (text_ == L"all" || text_.starts_with(L"all ")) {
            Next();
            return std::nullopt;
        }
        return Number(L"the handle");
    }

    void End() const {
        if (!text_.empty()) throw BadCommand{L"too much: \"" + text_ + L"\""};
    }

private:
    std::wstring text_;
};

std::wstring TrueOrFalse(Words& words) {
    const std::wstring word = words.Next();
    if (word != L"true" && word != L"false") throw BadCommand{L"must be true or false, not \"" + word + L"\""};
    return word;
}

Side ReadSide(Words& words) {
    const std::wstring word = words.Next();
    if (word != L"controller" && word != L"engine")
        throw BadCommand{L"must be controller or engine, not \"" + word + L"\""};
    return word == L"engine" ? Side::Engine : Side::Controller;
}

template <class Action>
void ForEach(Engine& engine, Side side, std::optional<long> handle, Action action) {
    const auto channels = engine.clients.Connected(side, handle);
    if (channels.empty())
        throw BadCommand{handle ? L"no connected client " + std::to_wstring(*handle) : L"no client is connected"};
    for (const com::ComPtr<MessageChannel>& channel : channels) action(*channel.Get());
}

void SendControl(Engine& engine, Side side, std::optional<long> handle, const std::wstring& text) {
    ForEach(engine, side, handle, [&](MessageChannel& channel) { channel.SendControl(text); });
}

void SendMessageText(Engine& engine, Side side, std::optional<long> handle, const std::wstring& text) {
    ForEach(engine, side, handle, [&](MessageChannel& channel) { channel.SendMessageText(text); });
}

constexpr wchar_t kExit[] = L"<EXIT now=\"1\"/>";

void DoExit(Engine& engine, Words& words, CommandSource&) {
    const std::optional<long> handle = words.Handle();
    words.End();
    SendControl(engine, Side::Controller, handle, kExit);
}

void DoSetAutoUpdate(Engine& engine, Words& words, CommandSource&) {
    const std::wstring value = TrueOrFalse(words);
    const std::optional<long> handle = words.Handle();
    words.End();
    SendControl(engine, Side::Controller, handle, L"<SET_AUTOUPDATE value=\"" + value + L"\"/>");
}

void DoButtonClick(Engine& engine, Words& words, CommandSource&) {
    const long button = words.Number(L"the button");
    const std::optional<long> handle = words.Handle();
    words.End();
    SendMessageText(engine, Side::Controller, handle, L"<BUTTON_CLICK id=\"" + std::to_wstring(button) + L"\"/>");
}

void DoControl(Engine& engine, Words& words, CommandSource&) {
    SendControl(engine, Side::Controller, std::nullopt, words.Rest());
}

void DoMessage(Engine& engine, Words& words, CommandSource&) {
    SendMessageText(engine, Side::Controller, std::nullopt, words.Rest());
}

void DoEngineControl(Engine& engine, Words& words, CommandSource&) {
    SendControl(engine, Side::Engine, std::nullopt, words.Rest());
}

void DoEngineMessage(Engine& engine, Words& words, CommandSource&) {
    SendMessageText(engine, Side::Engine, std::nullopt, words.Rest());
}

void DoDisconnect(Engine& engine, Words& words, CommandSource&) {
    const Side side = ReadSide(words);
    const std::optional<long> handle = words.Handle();
    std::optional<long> id;
    if (const std::wstring word = words.Next(); !word.empty()) {
        id = ParseNumber(word);
        if (!id) throw BadCommand{L"the id must be a number, not \"" + word + L"\""};
    }
    words.End();
    ForEach(engine, side, handle,
            [&](MessageChannel& channel) { channel.SendDisconnect(id ? *id : channel.Handle()); });
}

void DoSecondConnect(Engine& engine, Words& words, CommandSource&) {
    const std::optional<long> handle = words.Handle();
    words.End();
    for (const Side side : {Side::Controller, Side::Engine}) {
        ForEach(engine, side, handle, [&](MessageChannel& channel) {
            channel.SendSecondConnect(engine.clients.Stranger(side, channel.Handle()).Get());
        });
    }
}

void DoReadId(Engine& engine, Words& words, CommandSource&) {
    const std::optional<long> handle = words.Handle();
    words.End();
    for (const Side side : {Side::Controller, Side::Engine})
        ForEach(engine, side, handle, [](MessageChannel& channel) { channel.ReadSinkId(); });
}

void DoHang(Engine& engine, Words& words, CommandSource&) {
    const unsigned time = words.Milliseconds(1000);
    words.End();
    engine.monitor.Event(L"hangs for " + std::to_wstring(time) + L" ms");
    Sleep(time);
    engine.monitor.Event(L"goes on");
}

void DoHangNext(Engine& engine, Words& words, CommandSource&) {
    engine.mischief.hangMilliseconds = words.Milliseconds(1000);
    words.End();
}

void DoDie(Engine& engine, Words& words, CommandSource&) {
    words.End();
    engine.monitor.Event(L"dies");
    TerminateProcess(GetCurrentProcess(), 1);
}

void DoDieInCall(Engine& engine, Words& words, CommandSource&) {
    words.End();
    engine.mischief.dieInCall = true;
}

void DoState(Engine& engine, Words& words, CommandSource&) {
    engine.toolbar.engineState = words.Number(L"the state");
    words.End();
}

void DoContextMode(Engine& engine, Words& words, CommandSource&) {
    engine.toolbar.contextMode = words.Number(L"the mode");
    words.End();
}

ToolbarButton& ReadButton(Engine& engine, Words& words) {
    const long index = words.Number(L"the button");
    if (index < 0 || index >= static_cast<long>(engine.toolbar.buttons.size()))
        throw BadCommand{L"no button " + std::to_wstring(index)};
    return engine.toolbar.buttons[static_cast<size_t>(index)];
}

void DoCaption(Engine& engine, Words& words, CommandSource&) {
    ToolbarButton& button = ReadButton(engine, words);
    button.caption = words.Rest();
}

void DoEnable(Engine& engine, Words& words, CommandSource&) {
    ToolbarButton& button = ReadButton(engine, words);
    const bool enabled = TrueOrFalse(words) == L"true";
    words.End();
    button.enabled = enabled;
}

void DoWait(Engine&, Words& words, CommandSource& source) {
    const unsigned time = words.Milliseconds(1);
    words.End();
    source.Wait(time);
}

// The pattern may hold blanks: the time is the last word when that is a number.
void DoWaitFor(Engine&, Words& words, CommandSource& source) {
    std::wstring pattern = words.Rest();
    uint64_t time = 10000;
    if (const size_t blank = pattern.find_last_of(L" \t"); blank != std::wstring::npos) {
        const std::optional<long> number = ParseNumber(pattern.substr(blank + 1));
        if (number && *number >= 0) {
            time = static_cast<uint64_t>(*number);
            pattern.erase(blank);
        }
    }
    if (pattern.empty()) throw BadCommand{L"a pattern must follow"};
    try {
        source.WaitFor(pattern, time);
    } catch (const std::regex_error&) {
        throw BadCommand{L"not a regular expression: " + pattern};
    }
}

void DoClients(Engine& engine, Words& words, CommandSource&) {
    words.End();
    if (engine.clients.IsEmpty()) engine.monitor.Event(L"no clients");
    for (const long handle : engine.clients.Handles()) {
        std::wstring line = L"client " + std::to_wstring(handle);
        if (!engine.clients.Connected(Side::Controller, handle).empty()) line += L" controller";
        if (!engine.clients.Connected(Side::Engine, handle).empty()) line += L" engine";
        engine.monitor.Event(line);
    }
}

void DoAway(Engine& engine, Words& words, CommandSource&) {
    words.End();
    engine.running.Leave();
    engine.monitor.Event(L"away");
}

void DoBack(Engine& engine, Words& words, CommandSource&) {
    words.End();
    com::Check(engine.running.Enter(engine.controller.Get()));
    engine.monitor.Event(L"back");
}

void DoQuit(Engine& engine, Words& words, CommandSource&) {
    words.End();
    engine.quit = true;
}

void DoHelp(Engine& engine, Words& words, CommandSource&);

struct Command {
    const wchar_t* name;
    const wchar_t* arguments;
    const wchar_t* meaning;
    void (*run)(Engine&, Words&, CommandSource&);
};

constexpr Command kCommands[] = {
    {L"exit", L"[HANDLE|all]", L"send <EXIT now=\"1\"/>: the client says good-bye, and comes back by itself", DoExit},
    {L"set_autoupdate", L"true|false [HANDLE]", L"switch automatic update", DoSetAutoUpdate},
    {L"button_click", L"N [HANDLE]", L"send <BUTTON_CLICK id=\"N\"/>: the client sends its item again", DoButtonClick},
    {L"control", L"TEXT", L"put a raw control on all clients' controller sinks", DoControl},
    {L"message", L"TEXT", L"put a raw message on all clients' controller sinks", DoMessage},
    {L"engine_control", L"TEXT", L"put a raw control on all clients' engine sinks", DoEngineControl},
    {L"engine_message", L"TEXT", L"put a raw message on all clients' engine sinks", DoEngineMessage},
    {L"disconnect", L"controller|engine [HANDLE|all] [ID]", L"call Disconnect on the sink, then let go of it",
     DoDisconnect},
    {L"second_connect", L"[HANDLE]", L"call Connect on both sinks again, with another peer", DoSecondConnect},
    {L"read_id", L"[HANDLE]", L"read the id of both sinks", DoReadId},
    {L"clients", L"", L"list the clients and what they are connected to", DoClients},
    {L"hang", L"SECONDS", L"answer nothing for that time", DoHang},
    {L"hang_next", L"SECONDS", L"hang inside the next incoming message", DoHangNext},
    {L"die", L"", L"end at once, as a crash does", DoDie},
    {L"die_in_call", L"", L"end inside the next incoming message", DoDieInCall},
    {L"away", L"", L"leave the running object table, keep the clients", DoAway},
    {L"back", L"", L"enter the running object table again", DoBack},
    {L"state", L"N", L"the engine state that the toolbar is told", DoState},
    {L"context_mode", L"N", L"the toolbar's context mode", DoContextMode},
    {L"caption", L"BUTTON TEXT", L"the caption of a button, 0 to 5", DoCaption},
    {L"enable", L"BUTTON true|false", L"whether a button is enabled and visible", DoEnable},
    {L"wait", L"MS", L"hold back the following commands", DoWait},
    {L"wait_for", L"REGEX [MS]", L"hold them back until a raw line matches (default 10000 ms)", DoWaitFor},
    {L"help", L"", L"this list", DoHelp},
    {L"quit", L"", L"leave the table, send all clients EXIT, wait up to 3 s for their good-byes, end", DoQuit},
};

void DoHelp(Engine& engine, Words& words, CommandSource&) {
    words.End();
    for (const Command& command : kCommands) {
        std::wstring line = std::wstring(command.name) + L" " + command.arguments;
        line.append(line.size() < 46 ? 46 - line.size() : 1, L' ');
        engine.monitor.Event(L"help " + line + command.meaning);
    }
}

}  // namespace

void RunCommand(Engine& engine, const std::wstring& line, CommandSource& source) {
    Words words(line);
    const std::wstring name = words.Next();
    try {
        const auto command =
            std::ranges::find_if(kCommands, [&](const Command& candidate) { return name == candidate.name; });
        if (command == std::end(kCommands)) throw BadCommand{L"unknown command; \"help\" lists them"};
        command->run(engine, words, source);
    } catch (const BadCommand& bad) {
        engine.monitor.Error(name + L": " + bad.text);
    } catch (...) {
        engine.monitor.Error(name + L": " + com::CurrentError().description);
    }
}

void SendExitToAll(Engine& engine) {
    for (const auto& channel : engine.clients.Connected(Side::Controller, std::nullopt)) channel->SendControl(kExit);
}

}  // namespace beacon::standin
