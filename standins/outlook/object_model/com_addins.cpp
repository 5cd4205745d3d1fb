#include "outlook/object_model/com_addins.h"

#include <cwchar>

#include "outlook/object_model/collections.h"
#include "outlook/program/addin_loader.h"

namespace beacon::standin {

ComAddIn::ComAddIn(AddinLoader& loader, Addin& addin) : AutomationObject(L"COMAddIn") {
    SetLabel(addin.ProgId());
    AddProperty(3, L"ProgId", [&addin] { return com::FromText(addin.ProgId()); });
    AddProperty(0, L"Description", [&addin] { return com::FromText(addin.FriendlyName()); });
    AddProperty(4, L"Guid", [&addin] { return com::FromText(addin.ClassId()); });
    AddProperty(
        6, L"Connect", [&addin] { return com::FromBool(addin.IsConnected()); },
        [&loader, &addin](const CallArguments& arguments) {
            if (arguments.Bool(0) == addin.IsConnected()) return;
            if (addin.IsConnected()) {
                loader.Disconnect(addin, RemoveMode::UserClosed);
            } else {
                loader.Connect(addin, ConnectMode::AfterStartup);
            }
        });
    AddProperty(
        7, L"Object", [this] { return com::FromObject(object_.Get()); },
        [this](const CallArguments& arguments) { object_ = com::Object(arguments.Object(0)); });
}

ComAddIns::ComAddIns(AddinLoader& loader) : AutomationObject(L"COMAddIns") {
    const auto item = [&loader](const CallArguments& arguments) {
        if (arguments.Value(0).vt == VT_BSTR) {
            Addin* addin = loader.Find(arguments.Text(0));
            if (addin == nullptr) throw CallError{DISP_E_BADINDEX};
            return HandOut(addin->Instance());
        }
        return HandOut(At(loader.Addins(), arguments.Long(0))->Instance());
    };
    AddEither(0, L"Item", 1, 1, item);
    AddProperty(1, L"Count", [&loader] { return com::FromLong(static_cast<long>(loader.Addins().size())); });
}

}  // namespace beacon::standin
