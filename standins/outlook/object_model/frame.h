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
/// after. Its activation comes from the window messages, so that everything that moves the activation (a dialog,
/// another window's end) raises the events.
class Frame : public AutomationObject {
public:
    Frame(const std::wstring& kind, WindowKind windowKind, Outlook& host, int number);
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

    /// The child windows that show an item; null while none is shown.
    ItemPane* Pane() const { return pane_.get(); }

    /// Null before Open and after Destroy.
    CommandBarsHost* Bars() const { return bars_.get(); }

    /// A dialog box over this window, which the message loop runs. Throws com::Error.
    void OpenDialog(const std::wstring& title);
    /// False when none is open.
    bool CloseDialog();

    virtual std::wstring Title() const = 0;
    /// Raises one of the window's own events on every interface that has it.
    virtual void Raise(const wchar_t* name, DISPID member) = 0;

protected:
    /// Shows an item in the pane, or in a new one when the old one has another editor; null shows nothing.
    void ShowInPane(const Item* item, bool reading);

    virtual void BuildContent() {}

    virtual void DestroyContent() {}

    /// Where the pane lies within the client area.
    virtual RECT PaneArea(const RECT& client) const { return client; }

    virtual void Layout(const RECT&) {}

    virtual void Command(WORD, WORD) {}

    virtual HWND FocusWindow() const { return nullptr; }

    void AddFrameMembers(long objectClass);
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
