#pragma once

#include <memory>

#include "toolbar/toolbar_definition.h"

namespace beacon {

/// Access to the toolbar's definition, which is created at first use: the utility server's, or the add-in's own if no
/// server is installed. If a server cannot be created for any other reason, or has died and is not back, it is not
/// requested again before TryAgain: a server that starts and does not answer blocks Outlook each time.
class ConfigClient {
public:
    /// Never null; raises the reason why there is no definition. The reference keeps the definition alive for a call.
    std::shared_ptr<ToolbarDefinition> Get();

    std::shared_ptr<ToolbarDefinition> operator->() { return Get(); }

    bool IsCreated() const { return definition_ != nullptr && !definition_->HasDied(); }

    /// After a failure, the next use requests the server again. For actions of the user, not for timers.
    void TryAgain() { failure_ = S_OK; }

private:
    std::shared_ptr<ToolbarDefinition> definition_;
    HRESULT failure_ = S_OK;
    bool hadServer_ = false;
};

}  // namespace beacon
