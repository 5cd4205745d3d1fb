#pragma once

#include "common/automation_object.h"

namespace beacon::standin {

class Outlook;

/// Outlook's application object.
class Application final : public AutomationObject {
public:
    explicit Application(Outlook& host);

    void RaiseStartup();
    void RaiseQuit();

private:
    void Raise(const wchar_t* name, DISPID member);
};

}  // namespace beacon::standin
