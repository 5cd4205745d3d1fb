#pragma once

#include <memory>
#include <vector>

#include "outlook/object_model/frame.h"

namespace beacon::standin {

/// A folder window.
class Explorer final : public Frame {
public:
    Explorer(Outlook& host, int number);

    std::wstring Title() const override;
    void Raise(const wchar_t* name, DISPID member) override;

    /// Selects these items and shows the first in the reading pane. One change raises two SelectionChange events, as
    /// Outlook does.
    void Select(std::vector<std::shared_ptr<Item>> items);
    /// An item is gone from the folder; selects what took its place when it was selected.
    void ItemRemoved(const Item& item, size_t place);

protected:
    void BuildContent() override;
    void DestroyContent() override;
    RECT PaneArea(const RECT& client) const override;
    void Layout(const RECT& client) override;
    void Command(WORD control, WORD notification) override;

private:
    void ShowSelected();

    HWND list_ = nullptr;  // the folder's items, for the eye and the mouse
    std::vector<std::shared_ptr<Item>> selected_;
};

}  // namespace beacon::standin
