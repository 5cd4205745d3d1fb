#pragma once

#include "common/automation_object.h"

namespace beacon::standin {

class AddinLoader;
class Addin;

/// Office's object for one add-in: what OnConnection gets as its instance.
class ComAddIn final : public AutomationObject {
public:
    ComAddIn(AddinLoader& loader, Addin& addin);

    /// Drops what the add-in put there; for the end of its connection.
    void ForgetObject() { object_.Reset(); }

private:
    com::Object object_;  // what the add-in offers to others through its Object property
};

/// Application.COMAddIns: by number or by ProgID.
class ComAddIns final : public AutomationObject {
public:
    explicit ComAddIns(AddinLoader& loader);
};

}  // namespace beacon::standin
