#pragma once

#include <windows.h>

#include <string>

#include "common/automation_object.h"
#include "outlook/item.h"

namespace beacon::standin {

class Outlook;

/// One of Outlook's top-level windows: a real window of class "rctrl_renwnd32", ANSI for Outlook 2000 and Unicode after.
/// Its activation comes from the window messages, so that everything that moves the activation (a dialog, another
/// window's end) raises the events.
class Frame : public AutomationObject {
public:
    Frame(std::wstring kind, Outlook& host, int number);
    ~Frame() override;

    int Number() const { return number_; }
    /// 0 before Open and after Destroy.
    HWND Handle() const { return window_; }
    /// "explorer 1 handle=65610"
    std::wstring Name() const;

    /// Makes the window, hidden, with its title and content.
    void Open();
    void Show();
    /// Brings the window to the front; raises Activate unless it is active already.
    void Activate();
    /// Ends the window without any event. The object answers nothing afterwards.
    void Destroy();
    bool IsActive() const { return active_; }
    void RefreshTitle();

    virtual std::wstring Title() const = 0;
    /// Raises one of the window's own events on every interface that has it.
    virtual void Raise(const wchar_t* name, DISPID member) = 0;

protected:
    virtual void BuildContent() {}
    virtual void DestroyContent() {}
    virtual void Layout(const RECT&) {}
    virtual HWND FocusWindow() const { return nullptr; }
    void AddFrameMembers(long objectClass);
    void SayEvent(const wchar_t* name) const;

    Outlook& host_;

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) const;
    void ActivationChanged(bool active);
    void LayOut();

    const int number_;
    const std::wstring lowerKind_;
    HWND window_ = nullptr;
    bool unicode_ = true;
    bool active_ = false;
};

}  // namespace beacon::standin
