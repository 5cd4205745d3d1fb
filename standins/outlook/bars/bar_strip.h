#pragma once

#include <deque>
#include <functional>

#include "outlook/bars/tool_bar.h"

namespace beacon::standin {

/// The child window that shows the visible bars of a window, in rows by RowIndex, whatever their docking position.
class BarStrip final : public BarView, public std::enable_shared_from_this<BarStrip> {
public:
    BarStrip(std::shared_ptr<BarSet> set, BarStore& store);
    BarStrip(const BarStrip&) = delete;
    BarStrip& operator=(const BarStrip&) = delete;
    ~BarStrip();

    /// Creates the window. Throws com::Error.
    void Open(HWND top);
    /// Destroys the window; the store is not used afterwards.
    void Close();

    void SetHeightChanged(std::function<void()> changed) { heightChanged_ = std::move(changed); }

    /// In pixels; 0 without visible bars.
    int Height();
    void Resize(int width);

    /// The window that gets the input of the control: its tool bar or its edit window. Null for a hidden control.
    HWND InputOf(const BarControl& control);
    /// Posts the choice of an item of a combo box. A no-op if the item does not exist when the message arrives.
    void PostChoice(BarSet::ControlPointer control, std::wstring item);

    void BarsChanged() override;
    std::optional<RECT> PlaceOf(const Bar& bar) override;
    std::optional<RECT> PlaceOf(const BarControl& control) override;

    HWND Window() const override { return window_; }

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                          DWORD_PTR data);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

    /// The tool bars for the current bars.
    const std::vector<std::unique_ptr<ToolBar>>& ToolBars();
    ToolBar* ToolBarOf(const BarControl& control);
    std::unique_ptr<ToolBar> TakeOrMake(const BarSet::BarPointer& bar);
    void LayOut();
    void Refresh();
    void Post(std::function<void()> work);
    void Command(int code, int command, HWND sender);
    /// Sets the text that the user has entered or chosen, and raises Change.
    void Enter(const BarSet::ControlPointer& control, const std::wstring& text);
    void Tip(NMTBGETINFOTIPW& tip);
    void Choose(const BarSet::ControlPointer& control, const std::wstring& item);
    void GiveFocusBack();

    const std::shared_ptr<BarSet> set_;
    BarStore* store_;
    HWND window_ = nullptr;
    std::function<void()> heightChanged_;
    std::vector<std::unique_ptr<ToolBar>> toolBars_;
    std::vector<std::unique_ptr<ToolBar>> outdated_;  // may still be handling a message
    bool stale_ = true;
    bool refreshPosted_ = false;
    int height_ = 0;
    std::deque<std::function<void()>> posted_;
    HWND focusBefore_ = nullptr;  // in the same top-level window
};

}  // namespace beacon::standin
