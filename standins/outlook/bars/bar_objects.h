#pragma once

#include "outlook/bars/record_object.h"

namespace beacon::standin {

/// The collection of a window's bars.
class CommandBarsObject final : public AutomationObject {
public:
    explicit CommandBarsObject(std::shared_ptr<BarSet> set);

private:
    _variant_t Item(const CallArguments& arguments) const;
    _variant_t Add(const CallArguments& arguments) const;

    const std::shared_ptr<BarSet> set_;
};

class CommandBarObject final : public RecordObject<Bar> {
public:
    static std::shared_ptr<AutomationObject> Make(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar);

    CommandBarObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar);
};

class CommandBarControlsObject final : public AutomationObject {
public:
    static std::shared_ptr<AutomationObject> Make(const std::shared_ptr<BarSet>& set, const BarSet::BarPointer& bar);

    CommandBarControlsObject(std::shared_ptr<BarSet> set, BarSet::BarPointer bar);

    _variant_t Item(const CallArguments& arguments) const;

private:
    _variant_t Add(const CallArguments& arguments) const;

    const std::shared_ptr<BarSet> set_;
    const BarSet::BarPointer bar_;
};

}  // namespace beacon::standin
