#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "common/automation_object.h"

namespace beacon::standin {

/// The classes that this process serves to the add-ins inside it, until destruction: the property reader, which is the
/// installed one behind a count of its calls, and Outlook's own application class, whose creation inside Outlook yields
/// the running application. Registry entries that lead from Outlook's ProgID to the class are written where there are
/// none.
class Servers {
public:
    explicit Servers(std::shared_ptr<AutomationObject> application);
    Servers(const Servers&) = delete;
    Servers& operator=(const Servers&) = delete;
    ~Servers();

private:
    std::vector<DWORD> cookies_;
};

}  // namespace beacon::standin
