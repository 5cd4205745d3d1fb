#include <cwchar>

#include "common/call_points.h"
#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"

namespace beacon::standin {
namespace {

Addin& TakeAddin(Session& session, Words& words) {
    AddinLoader& loader = session.outlook.Addins();
    loader.ReadRegistry({});  // one may have been registered since the start
    if (words.AtEnd()) {
        if (loader.Addins().size() == 1) return *loader.Addins().front();
        throw ScriptError{L"there are " + std::to_wstring(loader.Addins().size()) + L" add-ins: name one"};
    }
    const std::wstring name = words.Take(L"add-in");
    Addin* addin = loader.Find(name);
    if (addin == nullptr) throw ScriptError{L"there is no add-in \"" + name + L"\""};
    return *addin;
}

void Connect(Session& session, Words& words) {
    const bool external = words.Accept(L"external");
    Addin& addin = TakeAddin(session, words);
    words.End();
    if (addin.IsConnected()) throw ScriptError{addin.ProgId() + L" is connected already"};
    session.outlook.Addins().Connect(addin, external ? ConnectMode::External : ConnectMode::AfterStartup);
}

void Disconnect(Session& session, Words& words) {
    Addin& addin = TakeAddin(session, words);
    words.End();
    if (!addin.IsConnected()) throw ScriptError{addin.ProgId() + L" is not connected"};
    session.outlook.Addins().Disconnect(addin, RemoveMode::UserClosed);
}

std::wstring OrNone(const std::wstring& text) { return text.empty() ? L"none" : text; }

void References(Session&, Words&) {
    Say(L"references: " + OrNone(ExitReport::References()));
    Say(L"sinks: " + OrNone(ExitReport::Sinks()));
}

void Property(Session& session, Words&) { Say(L"PROP_OLK: " + OrNone(ExitReport::Properties(session.outlook))); }

void Unload(Session& session, Words&) {
    for (const auto& addin : session.outlook.Addins().Addins()) {
        Say(L"DllCanUnloadNow: " + ExitReport::UnloadAnswer(addin->Module()) + L" (" + addin->ProgId() + L")");
        Say(L"windows of " + addin->ProgId() + L": " + OrNone(ExitReport::WindowsOf(*addin)));
    }
}

void Calls(Session&, Words& words) {
    const bool list = words.Accept(L"list");
    words.End();
    Say(L"calls " + std::to_wstring(TheCallPoints().Count()));
    TheCallPoints().Start({});
    const auto say = [](unsigned number, const std::wstring& name) {
        Say(L"call " + std::to_wstring(number) + L" " + name);
    };
    if (list)
        TheCallPoints().SetListener(say);
    else
        TheCallPoints().SetListener({});
}

void FailCall(Session&, Words& words) {
    CallPlan plan;
    plan.number = static_cast<unsigned>(words.TakeNumber(L"call"));
    plan.result = static_cast<HRESULT>(std::wcstoul(words.Take(L"result").c_str(), nullptr, 16));
    words.End();
    TheCallPoints().Start(std::move(plan));
}

void HangCall(Session&, Words& words) {
    CallPlan plan;
    plan.number = static_cast<unsigned>(words.TakeNumber(L"call"));
    plan.hang = static_cast<DWORD>(words.TakeTime(std::chrono::milliseconds(1)).count());
    words.End();
    TheCallPoints().Start(std::move(plan));
}

void Quit(Session& session, Words& words) {
    const bool now = words.Accept(L"now");
    words.End();
    session.outlook.RequestQuit(now ? QuitMode::Now : QuitMode::CloseWindows);
}

}  // namespace

const std::vector<Command>& ProgramCommands() {
    static const std::vector<Command> commands = {
        {L"connect [external] [PROGID]", L"connects an add-in (mode 0, external 2)", Connect},
        {L"disconnect [PROGID]", L"disconnects it as the user would (mode 1)", Disconnect},
        {L"references", L"what is held from outside, and who listens", References},
        {L"prop?", L"windows with PROP_OLK", Property},
        {L"resources", L"what the process holds of the system's: memory, handles, GDI objects, windows",
         [](Session&, Words&) { Say(L"resources: " + Resources::Now().Text()); }},
        {L"unload?", L"whether the add-ins' libraries could be unloaded", Unload},
        {L"calls [list]", L"how many calls the add-in has made since the last; list: shows each from now on", Calls},
        {L"fail N RESULT", L"the Nth call from now fails with this result (0x80004005)", FailCall},
        {L"hangcall N MS", L"the Nth call from now takes so long", HangCall},
        {L"quit [now]", L"ends the program; now: Quit comes while windows are open", Quit},
    };
    return commands;
}

}  // namespace beacon::standin
