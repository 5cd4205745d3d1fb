#pragma once

#include <memory>

#include "outlook/object_model/frame.h"

namespace beacon::standin {

/// The window of one item.
class Inspector final : public Frame {
public:
    Inspector(Outlook& host, int number, std::shared_ptr<Item> item);
    ~Inspector() override;

    std::wstring Title() const override;
    void Raise(const wchar_t* name, DISPID member) override;

    const std::shared_ptr<Item>& ShownItem() const { return item_; }

protected:
    void BuildContent() override;
    void DestroyContent() override;

private:
    const std::shared_ptr<Item> item_;
};

}  // namespace beacon::standin
