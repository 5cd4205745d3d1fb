#include "outlook/object_model/collections.h"

#include "common/journal.h"
#include "outlook/object_model/events.h"

namespace beacon::standin {

Selection::Selection(std::vector<std::shared_ptr<Item>> items) : AutomationObject(L"Selection") {
    const auto selected = std::make_shared<const std::vector<std::shared_ptr<Item>>>(std::move(items));
    AddProperty(0x50, L"Count", [selected] { return com::FromLong(static_cast<long>(selected->size())); });
    AddEither(0x51, L"Item", 1, 1, [selected](const CallArguments& arguments) {
        const long index = arguments.Long(0);
        // Outlook says "Array index out of bounds."
        if (index < 1 || static_cast<size_t>(index) > selected->size()) throw CallError{DISP_E_BADINDEX};
        return HandOut((*selected)[static_cast<size_t>(index) - 1]);
    });
}

Windows::Windows(Of of) : AutomationObject(of == Of::Explorers ? L"Explorers" : L"Inspectors"), of_(of) {
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
