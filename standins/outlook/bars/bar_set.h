#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/automation_object.h"
#include "outlook/bars/bar_store.h"

namespace beacon::standin {

/// What a window's bars ask of whatever shows them.
class BarView {
public:
    virtual void BarsChanged() = 0;
    /// Where the bar or control is shown, in pixels of the view; nothing when it is not.
    virtual std::optional<RECT> PlaceOf(const Bar& bar) = 0;
    virtual std::optional<RECT> PlaceOf(const BarControl& control) = 0;
    /// Owner of the clipboard while a face is pasted.
    virtual HWND Window() const = 0;

protected:
    ~BarView() = default;
};

/// The command bars of one top-level window, and every object that was handed out for them. Changes of a permanent bar
/// go to the store.
class BarSet : public std::enable_shared_from_this<BarSet> {
public:
    using BarPointer = std::shared_ptr<Bar>;
    using ControlPointer = std::shared_ptr<BarControl>;

    /// Starts with copies of the store's bars; the store must live until Close.
    BarSet(WindowKind kind, BarStore& store);

    void SetView(BarView* view) { view_ = view; }

    BarView* View() const { return view_; }

    const std::vector<BarPointer>& Bars() const { return bars_; }

    /// Null when there is none.
    BarPointer Find(const std::wstring& name) const;

    /// Without a name the bar is called "Custom 1" and so on. Raises error 5 when there is one of that name.
    BarPointer Add(std::wstring name, long position, bool temporary);
    /// Raises error 5 for a bar of Office's own. All objects of the bar answer with an error from now on.
    void Delete(const BarPointer& bar);
    /// `before` is the 1-based place; 0: at the end.
    ControlPointer AddControl(const BarPointer& bar, long type, long id, size_t before, bool temporary);
    void Delete(const BarPointer& bar, const ControlPointer& control);

    /// To be called after every change of a bar or of one of its controls.
    void Changed(const Bar& bar);
    void Changed(const BarControl& control);

    /// What happens when the user clicks or changes the control: the event, from every object with sinks that stands
    /// for it.
    void RaiseClick(const ControlPointer& control);
    void RaiseChange(const ControlPointer& control);

    /// Hears one line about each of these events once its sinks have been called.
    void SetListener(std::function<void(const std::wstring&)> listener) { listener_ = std::move(listener); }

    std::shared_ptr<AutomationObject> CommandBars();
    /// Notes what an object stands for (a Bar, a BarControl, or this set), so that it ends with it.
    void Register(const std::shared_ptr<AutomationObject>& object, const void* subject);

    /// The window is gone: every object answers with an error from now on.
    void Close();

private:
    struct Published {
        std::weak_ptr<AutomationObject> object;
        const void* subject;
    };

    /// Calls the sinks of every object that stands for the control; gives their number.
    size_t Raise(const BarControl& control, const std::function<void(AutomationObject&)>& fire) const;
    void Say(const std::wstring& line) const;
    void Retire(const void* subject);

    const WindowKind kind_;
    BarStore* store_;
    BarView* view_ = nullptr;
    std::vector<BarPointer> bars_;
    std::vector<Published> published_;
    std::function<void(const std::wstring&)> listener_;
};

/// Error 5, as Office answers to a value it does not take.
[[noreturn]] void InvalidArgument();

}  // namespace beacon::standin
