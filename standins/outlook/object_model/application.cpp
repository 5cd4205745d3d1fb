#include "outlook/object_model/application.h"

#include "common/journal.h"
#include "outlook/object_model/collections.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/explorer.h"
#include "outlook/object_model/inspector.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

Application::Application(Outlook& host) : AutomationObject(L"Application") {
    AddProperty(0x0116, L"Version", [&host] { return com::FromText(host.Settings().version); });
    AddProperty(0x0119, L"Explorers", [&host] { return HandOut(host.ExplorersObject()); });
    AddProperty(0x0118, L"Inspectors", [&host] { return HandOut(host.InspectorsObject()); });
    AddEither(0x0111, L"ActiveExplorer", 0, 0,
              [&host](const CallArguments&) { return HandOut(host.ActiveExplorer()); });
    AddEither(0x0112, L"ActiveInspector", 0, 0,
              [&host](const CallArguments&) { return HandOut(host.ActiveInspector()); });
    AddEvents(events::kApplication, L"ApplicationEvents");
}

void Application::Raise(const wchar_t* name, DISPID member) {
    Say(L"event " + std::wstring(name) + L" sinks=" + std::to_wstring(Sinks()));
    Fire(events::kApplication, member);
}

void Application::RaiseStartup() { Raise(L"Startup", events::kStartup); }

void Application::RaiseQuit() { Raise(L"Quit", events::kQuit); }

}  // namespace beacon::standin
