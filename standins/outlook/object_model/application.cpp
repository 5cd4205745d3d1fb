#include "outlook/object_model/application.h"

#include "common/journal.h"
#include "outlook/object_model/collections.h"
#include "outlook/object_model/com_addins.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/explorer.h"
#include "outlook/object_model/inspector.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

Application::Application(Outlook& host) : AutomationObject(L"Application") {
    AddProperty(DISPID_VALUE, L"_Default", [] { return com::FromText(L"Outlook"); });
    AddProperty(0xF000, L"Application", [this] { return HandOut(shared_from_this()); });
    AddProperty(0xF001, L"Parent", [] { return com::FromObject(nullptr); });
    AddProperty(0xF00A, L"Class", [] { return com::FromLong(0); });
    AddProperty(0x3001, L"Name", [] { return com::FromText(L"Outlook"); });
    AddProperty(0x0116, L"Version", [&host] { return com::FromText(host.Settings().version); });
    AddProperty(0x0119, L"Explorers", [&host] { return HandOut(host.ExplorersObject()); });
    AddProperty(0x0118, L"Inspectors", [&host] { return HandOut(host.InspectorsObject()); });
    AddProperty(0x0115, L"COMAddIns", [&host] { return HandOut(std::make_shared<ComAddIns>(host.Addins())); });
    AddEither(0x0111, L"ActiveExplorer", 0, 0,
              [&host](const CallArguments&) { return HandOut(host.ActiveExplorer()); });
    AddEither(0x0112, L"ActiveInspector", 0, 0,
              [&host](const CallArguments&) { return HandOut(host.ActiveInspector()); });
    AddEither(0x011F, L"ActiveWindow", 0, 0, [&host](const CallArguments&) { return HandOut(host.ActiveFrame()); });
    AddAction(0x0114, L"Quit", 0, [&host] { host.RequestQuit(QuitMode::CloseWindows); });
    AddEvents(events::kApplication, L"ApplicationEvents");
}

void Application::Raise(const wchar_t* name, DISPID member) {
    Say(L"event " + std::wstring(name) + L" sinks=" + std::to_wstring(Sinks()));
    Fire(events::kApplication, member);
}

void Application::RaiseStartup() { Raise(L"Startup", events::kStartup); }

void Application::RaiseQuit() { Raise(L"Quit", events::kQuit); }

}  // namespace beacon::standin
