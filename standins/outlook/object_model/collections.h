#pragma once

#include <memory>
#include <vector>

#include "common/automation_object.h"
#include "outlook/object_model/item.h"

namespace beacon::standin {

/// An explorer's Selection: the items that were selected when it was asked for.
class Selection final : public AutomationObject {
public:
    explicit Selection(std::vector<std::shared_ptr<Item>> items);
};

/// Application.Explorers and Application.Inspectors, as sources of their "new window" events.
class Windows final : public AutomationObject {
public:
    enum class Of { Explorers, Inspectors };

    explicit Windows(Of of);
    void RaiseNew(const std::shared_ptr<AutomationObject>& window);

private:
    const Of of_;
};

}  // namespace beacon::standin
