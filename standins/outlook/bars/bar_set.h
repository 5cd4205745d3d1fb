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

/// The view of a BarSet.
class BarView {
public:
    virtual void BarsChanged() = 0;
    // Position in client coordinates of the view; nothing if it is hidden.
    virtual std::optional<RECT> PlaceOf(const Bar& bar) = 0;
    virtual std::optional<RECT> PlaceOf(const BarControl& control) = 0;
    /// The window that opens the clipboard to paste a face.
    virtual HWND Window() const = 0;

protected:
    ~BarView() = default;
};

/// The command bars of one top-level window and their Automation objects. Changes of permanent bars go to the store.
class BarSet : public std::enable_shared_from_this<BarSet> {
public:
    using BarPointer = std::shared_ptr<Bar>;
    using ControlPointer = std::shared_ptr<BarControl>;

    /// Starts with copies of the store's bars. The store must outlive Close.
    BarSet(WindowKind kind, BarStore& store);

    void SetView(BarView* view) { view_ = view; }

    BarView* View() const { return view_; }

    const std::vector<BarPointer>& Bars() const { return bars_; }

    /// Null if there is none.
    BarPointer Find(const std::wstring& name) const;

    /// An empty name becomes "Custom 1" and so on. Raises error 5 if the name exists.
    BarPointer Add(std::wstring name, long position, bool temporary);
    /// Raises error 5 for a built-in bar. All objects of the bar fail from now on.
    void Delete(const BarPointer& bar);
    /// `before`: 1-based position; 0: at the end.
    ControlPointer AddControl(const BarPointer& bar, long type, long id, size_t before, bool temporary);
    void Delete(const BarPointer& bar, const ControlPointer& control);

    // Call after every change of a bar or control.
    void Changed(const Bar& bar);
    void Changed(const BarControl& control);

    // Raises the event on every object of the control that has sinks.
    void RaiseClick(const ControlPointer& control);
    void RaiseChange(const ControlPointer& control);

    /// The listener gets a line for each of these events after its sinks.
    void SetListener(std::function<void(const std::wstring&)> listener) { listener_ = std::move(listener); }

    std::shared_ptr<AutomationObject> CommandBars();
    /// Ties an object to its subject (a Bar, a BarControl, or this set), so that it fails after the end of the subject.
    void Register(const std::shared_ptr<AutomationObject>& object, const void* subject);

    /// Call when the window is destroyed: every object fails from now on.
    void Close();

private:
    struct Published {
        std::weak_ptr<AutomationObject> object;
        const void* subject;
    };

    /// Calls the sinks of every object of the control; returns their number.
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

/// Throws error 5, as Office does for an invalid value.
[[noreturn]] void InvalidArgument();

}  // namespace beacon::standin
