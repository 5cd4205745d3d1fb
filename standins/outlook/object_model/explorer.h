#pragma once

#include <memory>
#include <vector>

#include "outlook/object_model/frame.h"

namespace beacon::standin {

/// A window that shows the folder.
class Explorer final : public Frame {
public:
    Explorer(Outlook& host, int number);

    std::wstring Title() const override;
    void Raise(const wchar_t* name, DISPID member) override;

    /// Selects these items and shows the first in the reading pane. Raises SelectionChange twice, as Outlook does.
    void Select(std::vector<std::shared_ptr<Item>> items);
    /// Call after an item was removed from this place. If it was selected, its successor is selected.
    void ItemRemoved(const Item& item, size_t place);

protected:
    void BuildContent() override;
    void DestroyContent() override;
    RECT PaneArea(const RECT& client) const override;
    void Layout(const RECT& client) override;
    LRESULT Notify(NMHDR& notification) override;

private:
    void ShowSelected();

    HWND list_ = nullptr;   // the folder's items: sender, subject, date
    bool showing_ = false;  // the list's selection is being set, not changed by the user
    std::vector<std::shared_ptr<Item>> selected_;
};

}  // namespace beacon::standin
