#pragma once

#include <memory>

#include "toolbar/toolbar_definition.h"

namespace beacon {

/// The way to the toolbar's definition, which is made at first need: the utility server's, or the add-in's own where no
/// server is installed. A server that cannot be created for any other reason, or that has died and is not back, is
/// asked for once and then not again before TryAgain: one that starts and does not answer holds Outlook each time.
class ConfigClient {
public:
    /// Never null; raises why there is no definition. The definition outlives the call that is made through this.
    std::shared_ptr<ToolbarDefinition> operator->();

    /// The same without a call.
    void Create() { operator->(); }

    bool IsCreated() const { return definition_ != nullptr && !definition_->HasDied(); }

    /// After a failure the next use asks for the server again. For what the user does, not for a timer.
    void TryAgain() { failure_ = S_OK; }

private:
    std::shared_ptr<ToolbarDefinition> definition_;
    HRESULT failure_ = S_OK;
    bool hadServer_ = false;
};

}  // namespace beacon
