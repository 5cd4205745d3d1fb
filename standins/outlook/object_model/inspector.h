#pragma once

#include <memory>

#include "outlook/object_model/frame.h"

namespace beacon::standin {

/// The window of one item.
class Inspector final : public Frame {
public:
    /// `composing`: the item is being written; the window's text is its body.
    Inspector(Outlook& host, int number, std::shared_ptr<Item> item, bool composing);
    ~Inspector() override;

    std::wstring Title() const override;
    void Raise(const wchar_t* name, DISPID member) override;

    const std::shared_ptr<Item>& ShownItem() const { return item_; }

protected:
    void BuildContent() override;
    void DestroyContent() override;
    HWND FocusWindow() const override;

private:
    const std::shared_ptr<Item> item_;
    const bool composing_;
};

}  // namespace beacon::standin
