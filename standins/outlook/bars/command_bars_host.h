#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "outlook/bars/bar_strip.h"

namespace beacon::standin {

/// The command bars of one top-level window: their objects, the child window that shows them, and the user's hand for
/// scripts. Its end is the window's end: every object that was handed out answers with an error then.
///
/// A control is named by its caption, without "&", in any case; "bar/caption" says on which bar. Only visible controls
/// can be used, custom bars are looked through first. Members throw com::Error for a control that is not there. What
/// the user does arrives as posted messages: it has happened when the message loop has handled them.
class CommandBarsHost {
public:
    /// `top` must outlive the host, or take its child windows with it; the store must outlive the host.
    CommandBarsHost(HWND top, WindowKind kind, BarStore& store);
    CommandBarsHost(const CommandBarsHost&) = delete;
    CommandBarsHost& operator=(const CommandBarsHost&) = delete;
    ~CommandBarsHost();

    /// The collection, to be handed out with HandOut. Each call makes an object of its own.
    std::shared_ptr<AutomationObject> CommandBars() { return set_->CommandBars(); }

    /// The child window; it lies along the top of the client area.
    HWND Window() const { return strip_->Window(); }

    /// What the child window takes of the client area, in pixels; 0 without visible bars.
    int Height() const { return strip_->Height(); }

    /// To be called with the client area's width when it changes.
    void Resize(int width) { strip_->Resize(width); }

    /// Called from the message loop when the height has changed, so that the rest of the window makes room.
    void SetHeightChanged(std::function<void()> changed) { strip_->SetHeightChanged(std::move(changed)); }

    /// Hears one line about each of the controls' events after its sinks: `Click "Caption" sinks=1 cancelled`,
    /// `Change "Caption" text="..." sinks=1`.
    void SetListener(std::function<void(const std::wstring&)> listener) { set_->SetListener(std::move(listener)); }

    /// In client pixels of Window(); nothing for a control that does not show or is not there.
    std::optional<RECT> PlaceOf(const std::wstring& caption) const;
    /// The control as it is, also a hidden one.
    const BarControl& Button(const std::wstring& caption) const;
    const BarControl& ComboBox(const std::wstring& caption) const;
    /// One line a bar or control: what it is, what shows, tags.
    std::wstring Describe() const;

    bool Has(const std::wstring& caption) const { return Find(caption, false) != nullptr; }

    void Click(const std::wstring& caption);
    /// The button's event at once.
    void PressNow(const std::wstring& caption);
    /// A combo box's new text and its event at once.
    void EnterNow(const std::wstring& caption, const std::wstring& text);
    /// Clicks into the box, types in place of its text, presses the return key.
    void Type(const std::wstring& caption, const std::wstring& text);
    /// Drops the list down, selects the item and presses the return key. The item is looked for again once the box has
    /// the focus: the list may be another one by then.
    void Choose(const std::wstring& caption, const std::wstring& item);
    /// What the user does in the Customize dialog: at once, not by messages.
    void DeleteBar(const std::wstring& name);

private:
    std::shared_ptr<BarControl> Find(const std::wstring& caption, bool shownOnly) const;
    /// Of any type when that is 0.
    std::shared_ptr<BarControl> Need(const std::wstring& caption, long type, bool shownOnly) const;
    /// Gives the window that it went to.
    HWND PostClick(const BarControl& control) const;

    const std::shared_ptr<BarSet> set_;
    const std::shared_ptr<BarStrip> strip_;
};

}  // namespace beacon::standin
