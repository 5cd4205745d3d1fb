#include "outlook/object_model/collections.h"

#include "common/journal.h"
#include "outlook/object_model/events.h"
#include "outlook/object_model/explorer.h"
#include "outlook/object_model/inspector.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

Selection::Selection(std::vector<std::shared_ptr<Item>> items) : AutomationObject(L"Selection") {
    const auto kept = std::make_shared<const std::vector<std::shared_ptr<Item>>>(std::move(items));
    AddProperty(0xF00A, L"Class", [] { return com::FromLong(74); });
    AddProperty(0x50, L"Count", [kept] { return com::FromLong(static_cast<long>(kept->size())); });
    const auto item = [kept](const CallArguments& arguments) { return HandOut(At(*kept, arguments.Long(0))); };
    AddEither(0x51, L"Item", 1, 1, item);
    AddEither(DISPID_VALUE, L"_Default", 1, 1, item);
}

Folder::Folder(std::wstring name) : AutomationObject(L"Folder") {
    AddProperty(0x3001, L"Name", [name = std::move(name)] { return com::FromText(name); });
}

Windows::Windows(Outlook& host, Of of) : AutomationObject(of == Of::Explorers ? L"Explorers" : L"Inspectors"), of_(of) {
    AddProperty(0xF00A, L"Class", [of] { return com::FromLong(of == Of::Explorers ? 60 : 61); });
    AddProperty(0x50, L"Count", [&host, of] {
        const size_t count = of == Of::Explorers ? host.OpenExplorers().size() : host.OpenInspectors().size();
        return com::FromLong(static_cast<long>(count));
    });
    const auto item = [&host, of](const CallArguments& arguments) {
        if (of == Of::Explorers) return HandOut(At(host.OpenExplorers(), arguments.Long(0)));
        return HandOut(At(host.OpenInspectors(), arguments.Long(0)));
    };
    AddEither(0x51, L"Item", 1, 1, item);
    AddEither(DISPID_VALUE, L"_Default", 1, 1, item);
    AddEvents(of == Of::Explorers ? events::kExplorers : events::kInspectors,
              of == Of::Explorers ? L"ExplorersEvents" : L"InspectorsEvents");
}

void Windows::RaiseNew(const std::shared_ptr<AutomationObject>& window) {
    const bool explorers = of_ == Of::Explorers;
    Say((explorers ? L"event NewExplorer " : L"event NewInspector ") + window->Description() + L" sinks=" +
        std::to_wstring(Sinks()));
    Fire(explorers ? events::kExplorers : events::kInspectors, events::kNewWindow, {HandOut(window)});
}

}  // namespace beacon::standin
