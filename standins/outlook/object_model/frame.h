#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "common/automation_object.h"
#include "outlook/bars/command_bars_host.h"
#include "outlook/object_model/item.h"
#include "outlook/panes/item_pane.h"
#include "outlook/panes/modal_dialog.h"

namespace beacon::standin {

class Outlook;

/// One of Outlook's top-level windows: a real window of class "rctrl_renwnd32", ANSI for Outlook 2000 and Unicode
/// later. Window messages drive its activation, so anything that moves the activation (such as a dialog) raises the
/// events.
class Frame : public AutomationObject {
public:
    Frame(const std::wstring& kind, WindowKind windowKind, Outlook& host, int number);
    ~Frame() override;

    int Number() const { return number_; }

    /// 0 before Open and after Destroy.
    HWND Handle() const { return window_; }

    /// "explorer 1 handle=65610"
    std::wstring Name() const;

    /// Creates the window, hidden, with title and content. Throws com::Error.
    void Open();
    void Show();
    /// Brings the window to the front; raises Activate if it was not active.
    void Activate();
    /// Destroys the window without events. Calls to the object fail afterwards.
    void Destroy();

    bool IsActive() const { return active_; }

    void RefreshTitle();

    /// The child windows that show an item; may be null.
    ItemPane* Pane() const { return pane_.get(); }

    /// Null before Open and after Destroy.
    CommandBarsHost* Bars() const { return bars_.get(); }

    /// Opens a modal dialog over this window, which the message loop runs. Throws com::Error.
    void OpenDialog(const std::wstring& title);
    /// False if none is open.
    bool CloseDialog();

    virtual std::wstring Title() const = 0;
    /// Raises an event of the window on every interface that has it.
    virtual void Raise(const wchar_t* name, DISPID member) = 0;

protected:
    /// Shows an item in the pane, which is recreated if the editor differs; null: shows nothing.
    void ShowInPane(const Item* item, bool reading);

    virtual void BuildContent() {}

    virtual void DestroyContent() {}

    /// The area of the pane within the client area.
    virtual RECT PaneArea(const RECT& client) const { return client; }

    virtual void Layout(const RECT&) {}

    /// Handles WM_NOTIFY from a control of the content.
    virtual LRESULT Notify(NMHDR&) { return 0; }

    void AddFrameMembers();
    void SayEvent(const wchar_t* name) const;

    Outlook& host_;

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT Default(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void ActivationChanged(bool active);
    void LayOut();

    const int number_;
    const std::wstring lowerKind_;
    HWND window_ = nullptr;
    bool unicode_ = true;
    bool active_ = false;
    const WindowKind windowKind_;
    std::unique_ptr<CommandBarsHost> bars_;
    std::unique_ptr<ItemPane> pane_;
    Editor paneEditor_ = Editor::None;
    std::unique_ptr<ModalDialog> dialog_;
};

}  // namespace beacon::standin
