#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/automation_object.h"
#include "outlook/object_model/item.h"

namespace beacon::standin {

class Outlook;

/// What an explorer's Selection gives: the items that were selected when it was asked for.
class Selection final : public AutomationObject {
public:
    explicit Selection(std::vector<std::shared_ptr<Item>> items);
};

/// Only the name of a folder.
class Folder final : public AutomationObject {
public:
    explicit Folder(std::wstring name);
};

/// Application.Explorers and Application.Inspectors: live, in order of opening, with their "new window" event.
class Windows final : public AutomationObject {
public:
    enum class Of { Explorers, Inspectors };

    Windows(Outlook& host, Of of);
    void RaiseNew(const std::shared_ptr<AutomationObject>& window);

private:
    const Of of_;
};

/// The member Item(index) of a collection: 1-based; throws what Outlook answers for an index out of range.
template <class Element>
const Element& At(const std::vector<Element>& elements, long index) {
    // Outlook says "Array index out of bounds."
    if (index < 1 || static_cast<size_t>(index) > elements.size()) throw CallError{DISP_E_BADINDEX};
    return elements[static_cast<size_t>(index) - 1];
}

}  // namespace beacon::standin
