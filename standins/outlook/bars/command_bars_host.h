#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "outlook/bars/bar_strip.h"

namespace beacon::standin {

/// The command bars of one top-level window: their objects, the child window that shows them, and user actions for
/// scripts. After destruction every object fails.
///
/// Controls are named by caption without "&", case-insensitive, or "bar/caption"; custom bars are searched first.
/// Members throw com::Error for a missing control; actions need a visible one. Actions are posted messages.
class CommandBarsHost {
public:
    /// `top` and the store must outlive the host.
    CommandBarsHost(HWND top, WindowKind kind, BarStore& store);
    CommandBarsHost(const CommandBarsHost&) = delete;
    CommandBarsHost& operator=(const CommandBarsHost&) = delete;
    ~CommandBarsHost();

    /// A new collection object, for HandOut.
    std::shared_ptr<AutomationObject> CommandBars() { return set_->CommandBars(); }

    /// The child window at the top of the client area.
    HWND Window() const { return strip_->Window(); }

    /// Height of the child window in pixels; 0 without visible bars.
    int Height() const { return strip_->Height(); }

    /// Call when the width of the client area changes.
    void Resize(int width) { strip_->Resize(width); }

    /// `changed` is called from the message loop when the height has changed.
    void SetHeightChanged(std::function<void()> changed) { strip_->SetHeightChanged(std::move(changed)); }

    /// The listener gets a line for each event after its sinks: `Click "Caption" sinks=1 cancelled`,
    /// `Change "Caption" text="..." sinks=1`.
    void SetListener(std::function<void(const std::wstring&)> listener) { set_->SetListener(std::move(listener)); }

    /// In client coordinates of Window(); nothing for a hidden or missing control.
    std::optional<RECT> PlaceOf(const std::wstring& caption) const;
    // The control, which may be hidden.
    const BarControl& Button(const std::wstring& caption) const;
    const BarControl& ComboBox(const std::wstring& caption) const;
    /// A line for each bar and control.
    std::wstring Describe() const;

    bool Has(const std::wstring& caption) const { return Find(caption, false) != nullptr; }

    void Click(const std::wstring& caption);
    /// Raises Click of the button at once.
    void PressNow(const std::wstring& caption);
    /// Sets the text of the combo box and raises Change at once.
    void EnterNow(const std::wstring& caption, const std::wstring& text);
    /// Clicks into the box, replaces its text and presses the return key.
    void Type(const std::wstring& caption, const std::wstring& text);
    /// Drops the list down, selects the item and presses the return key. The item is searched when the box has the
    /// focus, because add-ins may change the list on activation.
    void Choose(const std::wstring& caption, const std::wstring& item);
    /// Deletes the bar at once, as the Customize dialog does.
    void DeleteBar(const std::wstring& name);

private:
    std::shared_ptr<BarControl> Find(const std::wstring& caption, bool shownOnly) const;
    /// `type` 0: any.
    std::shared_ptr<BarControl> Need(const std::wstring& caption, long type, bool shownOnly) const;
    /// Returns the window that receives the click.
    HWND PostClick(const BarControl& control) const;

    const std::shared_ptr<BarSet> set_;
    const std::shared_ptr<BarStrip> strip_;
};

}  // namespace beacon::standin
