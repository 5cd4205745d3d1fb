#include <cwchar>

#include "common/call_points.h"
#include "common/journal.h"
#include "outlook/commands/commands.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"

namespace beacon::standin {
namespace {

Addin& TakeAddin(Outlook& outlook, Words& words) {
    AddinLoader& loader = outlook.Addins();
    loader.ReadRegistry();  // finds add-ins registered since the start
    if (words.AtEnd()) {
        if (loader.Addins().size() == 1) return *loader.Addins().front();
        throw ScriptError{L"there are " + std::to_wstring(loader.Addins().size()) + L" add-ins: name one"};
    }
    const std::wstring name = words.Take(L"add-in");
    Addin* addin = loader.Find(name);
    if (addin == nullptr) throw ScriptError{L"there is no add-in \"" + name + L"\""};
    return *addin;
}

void Connect(Outlook& outlook, Words& words) {
    const bool external = words.Accept(L"external");
    Addin& addin = TakeAddin(outlook, words);
    words.End();
    if (addin.IsConnected()) throw ScriptError{addin.ProgId() + L" is connected already"};
    outlook.Addins().Connect(addin, external ? ConnectMode::External : ConnectMode::AfterStartup);
}

void Disconnect(Outlook& outlook, Words& words) {
    Addin& addin = TakeAddin(outlook, words);
    words.End();
    if (!addin.IsConnected()) throw ScriptError{addin.ProgId() + L" is not connected"};
    outlook.Addins().Disconnect(addin, RemoveMode::UserClosed);
}

void References(Outlook&, Words&) {
    Say(L"references: " + OrNone(ExitReport::References()));
    Say(L"sinks: " + OrNone(ExitReport::Sinks()));
}

void Property(Outlook& outlook, Words&) { Say(L"PROP_OLK: " + OrNone(ExitReport::Properties(outlook))); }

void Unload(Outlook& outlook, Words&) {
    for (const auto& addin : outlook.Addins().Addins()) {
        Say(L"DllCanUnloadNow: " + ExitReport::UnloadAnswer(addin->Module()) + L" (" + addin->ProgId() + L")");
        Say(L"windows of " + addin->ProgId() + L": " + OrNone(ExitReport::WindowsOf(*addin)));
    }
}

void Calls(Outlook&, Words& words) {
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

void FailCall(Outlook&, Words& words) {
    CallPlan plan;
    plan.number = static_cast<unsigned>(words.TakeNumber(L"call"));
    plan.result = static_cast<HRESULT>(std::wcstoul(words.Take(L"result").c_str(), nullptr, 16));
    words.End();
    TheCallPoints().Start(std::move(plan));
}

void HangCall(Outlook&, Words& words) {
    CallPlan plan;
    plan.number = static_cast<unsigned>(words.TakeNumber(L"call"));
    plan.hang = static_cast<DWORD>(words.TakeTime(std::chrono::milliseconds(1)).count());
    words.End();
    TheCallPoints().Start(std::move(plan));
}

void Quit(Outlook& outlook, Words& words) {
    const bool now = words.Accept(L"now");
    words.End();
    outlook.RequestQuit(now ? QuitMode::Now : QuitMode::CloseWindows);
}

}  // namespace

const std::vector<Command>& ProgramCommands() {
    static const std::vector<Command> commands = {
        {L"connect [external] [PROGID]", L"connects an add-in (mode 0, external 2)", Connect},
        {L"disconnect [PROGID]", L"disconnects it as the user would (mode 1)", Disconnect},
        {L"references", L"lists outside references and sinks", References},
        {L"prop?", L"lists windows with PROP_OLK", Property},
        {L"resources", L"counts memory, handles, GDI objects and windows of the process",
         [](Outlook&, Words&) { Say(L"resources: " + Resources::Now().Text()); }},
        {L"unload?", L"whether the DLLs of the add-ins can be unloaded", Unload},
        {L"calls [list]", L"number of calls by the add-in since the last \"calls\"; list: prints each call from now on",
         Calls},
        {L"fail N RESULT", L"the Nth call from now fails with this result (0x80004005)", FailCall},
        {L"hangcall N MS", L"the Nth call from now hangs for this time", HangCall},
        {L"quit [now]", L"ends the program; now: raises Quit while windows are open", Quit},
    };
    return commands;
}

}  // namespace beacon::standin
