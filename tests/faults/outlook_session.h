#pragma once

#include <string>
#include <vector>

#include "outlook/program/servers.h"
#include "tests/faults/fault_events.h"
#include "tests/faults/in_process_engine.h"

namespace beacon::standin {

/// Outlook with the add-in for one run, from its start to its end, beside the engine. Time does not pass in it: what
/// the adapter would do later, it does when its timers' messages are posted.
class OutlookSession {
public:
    /// `toolbar`: the value of "EnableToolbar".
    OutlookSession(InProcessEngine& engine, const wchar_t* toolbar);
    ~OutlookSession();

    Outlook& Program() { return *outlook_; }

    InProcessEngine& Engine() { return engine_; }

    /// Add-in, first window, Startup.
    void Start();

    /// Nothing more happens to the windows: Outlook has quit, or has none.
    bool IsOver() const { return outlook_->IsQuitting() || outlook_->ActiveFrame() == nullptr; }

    /// A message loop of the add-in's has something to dispatch until the next Pump, and is a call in that.
    void AwaitLoop();

    void Select(const wchar_t* item);
    void Open(const wchar_t* item);
    /// Posts a tick to every hidden form, and handles all messages but those of real timers.
    void Tick(FormTimer timer);
    void Pump();
    /// What the engine gets when an item is selected and sent: its messages, without digits, which differ from run to
    /// run. Empty when no whole document came.
    std::wstring DocumentOf(const wchar_t* item);

    /// Quit at once, inside a call of the add-in's.
    void RaiseQuit();
    /// The windows close, Quit, ticks of all timers, OnDisconnection.
    void Quit();
    /// OnDisconnection while the windows are open; the rest of the end if Outlook is quitting.
    void Disconnect();

    /// The references that the add-in has kept after Quit: with one of them Outlook up to 2003 gets no further.
    const std::wstring& HeldAfterQuit() const { return heldAfterQuit_; }

    /// Quit came before the add-in had subscribed to it.
    bool QuitIsUnheard() const { return quitIsUnheard_; }

    /// Ends Outlook itself; whatever still refers to it answers with errors.
    void Destroy();

private:
    void DisconnectAll(RemoveMode mode);

    InProcessEngine& engine_;
    const std::unique_ptr<std::remove_pointer_t<HWND>, decltype(&DestroyWindow)> loopProbe_;
    const std::unique_ptr<std::remove_pointer_t<HHOOK>, decltype(&UnhookWindowsHookEx)> boxHook_;
    std::unique_ptr<Outlook> outlook_;
    std::unique_ptr<Servers> servers_;
    std::wstring heldAfterQuit_;
    bool quitIsUnheard_ = false;
};

/// The lines that the stand-ins have said since the last call.
std::vector<std::wstring> TakeLines();
void CollectLines();

/// The machine: the add-in and the property reader registered, settings.
void PrepareMachine();

}  // namespace beacon::standin
