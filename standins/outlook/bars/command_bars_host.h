#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "outlook/bars/bar_layout.h"
#include "outlook/bars/bar_paint.h"
#include "outlook/bars/bar_set.h"

namespace beacon::standin {

/// Shows the command bars of one top-level window in a child window at its top, and turns the mouse and the keyboard there into
/// clicks and changes. Belongs to the window's thread; the window may go first.
class CommandBarsHost final : public BarView {
public:
    /// `resized` is called when the bars need another height. Errors of Windows are thrown as com::Error.
    CommandBarsHost(HWND top, WindowKind kind, BarStore& store, std::function<void()> resized);
    ~CommandBarsHost();
    CommandBarsHost(const CommandBarsHost&) = delete;
    CommandBarsHost& operator=(const CommandBarsHost&) = delete;

    /// The collection that add-ins are given; every object of it answers with an error once the host has gone.
    std::shared_ptr<AutomationObject> CommandBars() { return set_->CommandBars(); }
    /// Pixels; 0 when no bar shows.
    int Height() const { return layout_.height; }
    void Resize(int width);

    // For scripts. Captions are without "&". All throw std::invalid_argument when nothing visible has the caption.

    /// Posts the mouse messages of a click on a control.
    void Click(const std::wstring& caption);
    /// Opens the combo box for typing and posts the text and Enter.
    void Type(const std::wstring& caption, const std::wstring& text);
    /// Chooses an entry of the combo box's list, as its menu does.
    void Choose(const std::wstring& caption, const std::wstring& item);
    /// Deletes a bar as the user does in the dialog for adapting them.
    void DeleteBar(const std::wstring& name);
    /// One line a bar and a control: what it is, shows and is tagged with.
    std::vector<std::wstring> Describe() const;

    void BarsChanged() override;
    std::optional<RECT> PlaceOf(const Bar& bar) override;
    std::optional<RECT> PlaceOf(const BarControl& control) override;
    HWND Window() const override { return window_; }

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void LayOutAgain();
    void Paint();
    void Press(POINT point);
    void Release(POINT point);
    void Hover(POINT point);
    const ControlPlace& Visible(const std::wstring& caption);
    void OpenEdit(const BarSet::ControlPointer& combo);
    void CloseEdit(bool take);
    void OpenMenu(const BarSet::ControlPointer& combo);
    void TakeItem(const BarSet::ControlPointer& combo, size_t index);
    void SetComboText(const BarSet::ControlPointer& combo, const std::wstring& text, long listIndex);

    const HWND top_;
    const std::shared_ptr<BarSet> set_;
    const std::function<void()> resized_;
    HWND window_ = nullptr;
    HFONT font_ = nullptr;
    BarLayout layout_;
    BarSet::ControlPointer hot_;
    BarSet::ControlPointer pressed_;
    HWND edit_ = nullptr;
    BarSet::ControlPointer edited_;
    WNDPROC editProcedure_ = nullptr;
    int width_ = 0;
};

}  // namespace beacon::standin
