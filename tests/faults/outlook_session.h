#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "outlook/observation/counted_reader.h"
#include "outlook/program/outlook.h"
#include "tests/faults/in_process_engine.h"

namespace beacon::standin {

/// The timers of the adapter's hidden forms, by their numbers.
enum class FormTimer : WPARAM { Analysis = 1, Reconnect, Disconnect, Toolbar };

/// Outlook with the add-in for one run, from its start to its end. Time does not pass: the adapter's timers tick when
/// their messages are posted. Its mails are "One" to "Four", its contact is "Ann Lee".
class OutlookSession {
public:
    /// `toolbar`: the value of "EnableToolbar".
    OutlookSession(InProcessEngine& engine, const wchar_t* toolbar, bool logging);
    ~OutlookSession();

    Outlook& Program() { return *outlook_; }

    InProcessEngine& Engine() { return engine_; }

    /// Add-in, first window, Startup.
    void Start() { outlook_->Start(); }

    /// Outlook is quitting or has no window: nothing more happens to windows.
    bool IsOver() const { return outlook_->IsQuitting() || outlook_->ActiveFrame() == nullptr; }

    /// Until the next Pump, a message loop of the add-in has a message to dispatch; the dispatch counts as a call.
    void AwaitLoop();

    // The user's actions. They do nothing without their item, window or button.
    void Select(const wchar_t* item);
    void Open(const wchar_t* item);
    void CloseActive();
    void Press(const wchar_t* caption);

    /// The active window's if it has this control, else null.
    CommandBarsHost* BarsWith(const wchar_t* caption) const;

    /// Posts a tick to every hidden form, then handles all messages except real timers.
    void Tick(FormTimer timer);
    void Pump();
    /// The message-only windows that the add-in has made on this thread.
    std::vector<HWND> HiddenForms() const;
    /// Selects and sends an item; returns the messages that the engine gets, without digits, which differ from run to
    /// run. Empty when the document is not complete.
    std::wstring DocumentOf(const wchar_t* item);

    /// Disconnects the add-in and connects it again, in this Outlook.
    void ConnectAgain();
    void DisconnectAll(RemoveMode mode);
    /// Raises Quit at once, inside a call of the add-in.
    void RaiseQuit();
    /// Ends of the add-in: the windows close, Quit, ticks of all timers, OnDisconnection.
    void Quit();
    /// Quit while the windows are open.
    void QuitWithWindows();
    /// OnDisconnection while the windows are open; the rest of the end if Outlook is quitting.
    void Disconnect();

    /// The references that the add-in still holds after Quit: with one of them, Outlook up to 2003 does not end.
    const std::wstring& HeldAfterQuit() const { return heldAfterQuit_; }

    /// The add-in could not hear Quit: it was not subscribed yet, or was connected after it.
    bool QuitIsUnheard() const { return quitIsUnheard_; }

    /// Ends Outlook itself; its objects answer with errors.
    void Destroy();

private:
    std::shared_ptr<Item> Find(const std::wstring& name) const;
    void CloseWindows();

    InProcessEngine& engine_;
    const std::unique_ptr<std::remove_pointer_t<HWND>, decltype(&DestroyWindow)> loopProbe_;
    const std::unique_ptr<std::remove_pointer_t<HHOOK>, decltype(&UnhookWindowsHookEx)> boxHook_;
    std::unique_ptr<Outlook> outlook_;
    std::unique_ptr<ReaderServer> readerServer_;
    std::wstring heldAfterQuit_;
    bool quitIsUnheard_ = false;
};

/// The lines that the stand-ins have printed since the last call.
std::vector<std::wstring> TakeLines();

/// Registers the add-in and the property reader, writes the settings, and collects the lines of the stand-ins.
void PrepareMachine();

}  // namespace beacon::standin
