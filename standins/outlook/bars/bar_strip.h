#pragma once

#include <deque>
#include <functional>

#include "outlook/bars/bar_layout.h"
#include "outlook/bars/drop_list.h"

namespace beacon::standin {

/// The child window at the top of a window that shows its bars and takes the mouse and the keyboard for them.
class BarStrip final : public BarView, public std::enable_shared_from_this<BarStrip> {
public:
    BarStrip(std::shared_ptr<BarSet> set, BarStore& store);
    BarStrip(const BarStrip&) = delete;
    BarStrip& operator=(const BarStrip&) = delete;
    ~BarStrip();

    /// Makes the window. Throws com::Error.
    void Open(HWND top);
    /// Ends the window; the store is not used any more.
    void Close();

    void SetHeightChanged(std::function<void()> changed) { heightChanged_ = std::move(changed); }

    /// In pixels; 0 without visible bars.
    int Height();
    void Resize(int width);
    /// As it is now, with all changes.
    const BarLayout& Layout();

    /// Selects the item in the list that is open when the message for it arrives; closes a list that has no such item.
    void PostSelect(std::wstring item);

    void BarsChanged() override;
    std::optional<RECT> PlaceOf(const Bar& bar) override;
    std::optional<RECT> PlaceOf(const BarControl& control) override;

    HWND Window() const override { return window_; }

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

    void Refresh();
    void Paint();
    void ButtonDown(POINT point);
    void ButtonUp(POINT point);
    void MouseMove(POINT point);
    void SetHot(const BarSet::ControlPointer& control);
    void Key(WPARAM key);

    void OpenEdit(const ControlPlace& combo);
    void OpenList(const ControlPlace& combo);
    /// Ends whichever is open, without an effect.
    void CloseEntry();
    void CommitEdit();
    void SelectItem();
    void Enter(const BarSet::ControlPointer& control, const std::wstring& text);
    void TakeFocus();
    void GiveFocusBack();
    void DropWhatIsGone();

    const std::shared_ptr<BarSet> set_;
    BarStore* store_;
    HWND window_ = nullptr;
    HFONT font_ = nullptr;
    std::function<void()> heightChanged_;
    BarLayout layout_;
    bool stale_ = true;
    bool refreshPosted_ = false;
    int width_ = 0;
    int heightTold_ = 0;
    BarSet::ControlPointer hot_;
    BarSet::ControlPointer pressed_;
    BarSet::ControlPointer entered_;  // whose edit box or list is open
    HWND edit_ = nullptr;
    DropList list_;
    std::deque<std::wstring> toSelect_;
    HWND focusBefore_ = nullptr;  // in the same top-level window
};

}  // namespace beacon::standin
