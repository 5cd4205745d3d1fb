#include "common/journal.h"
#include "outlook/commands.h"
#include "outlook/exit_report.h"
#include "outlook/resources.h"

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
        Say(L"DllCanUnloadNow: " + ExitReport::UnloadAnswer(*addin) + L" (" + addin->ProgId() + L")");
        Say(L"windows of " + addin->ProgId() + L": " + OrNone(ExitReport::WindowsOf(*addin)));
    }
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
        {L"quit [now]", L"ends the program; now: Quit comes while windows are open", Quit},
    };
    return commands;
}

}  // namespace beacon::standin
