#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "outlook/bars/bar_store.h"
#include "outlook/object_model/application.h"
#include "outlook/object_model/collections.h"
#include "outlook/object_model/explorer.h"
#include "outlook/object_model/inspector.h"
#include "outlook/observation/exit_report.h"
#include "outlook/program/addin_loader.h"
#include "outlook/program/options.h"
#include "outlook/program/store.h"

namespace beacon::standin {

/// CloseWindows: closes all windows, then raises Quit. Now: raises Quit while windows are open.
enum class QuitMode { CloseWindows, Now };

/// The running program: store, windows, add-ins, and the order of start and shutdown.
class Outlook {
public:
    Outlook(Options options, StoreFile file);
    Outlook(const Outlook&) = delete;
    Outlook& operator=(const Outlook&) = delete;

    const Options& Settings() const { return options_; }

    Store& Items() { return store_; }

    BarStore& Bars() { return bars_; }

    AddinLoader& Addins() { return addins_; }

    const AddinLoader& Addins() const { return addins_; }

    const std::shared_ptr<Application>& ApplicationObject() const { return application_; }

    const std::shared_ptr<Windows>& ExplorersObject() const { return explorersObject_; }

    const std::shared_ptr<Windows>& InspectorsObject() const { return inspectorsObject_; }

    const std::vector<std::shared_ptr<Explorer>>& OpenExplorers() const { return explorers_; }

    const std::vector<std::shared_ptr<Inspector>>& OpenInspectors() const { return inspectors_; }

    /// Loads add-ins, opens the first window, raises Startup, calls OnStartupComplete. Throws com::Error.
    void Start();
    /// Continues a requested shutdown. The message loop calls it when its queue is empty.
    void Step();

    bool Ended() const { return phase_ == Phase::Ended; }

    bool IsQuitting() const { return phase_ != Phase::Running || quitAsked_; }

    /// Whether the add-ins have been disconnected; no more events then.
    bool AddinsAreGone() const { return disconnected_; }

    int ExitCode() const { return exitCode_; }

    void RequestQuit(QuitMode mode);
    /// Raises Quit at once, even inside a call. The rest of the shutdown follows as usual.
    void RaiseQuitNow();

    // The most recently used window, of its kind or of all; null if there is none.
    std::shared_ptr<Explorer> ActiveExplorer() const;
    std::shared_ptr<Inspector> ActiveInspector() const;
    std::shared_ptr<Frame> ActiveFrame() const;

    std::shared_ptr<Explorer> OpenExplorer(bool announce);
    /// Activates the window that shows the item if there is one. `announce`: raise NewInspector.
    std::shared_ptr<Inspector> OpenInspector(const std::shared_ptr<Item>& item, bool announce);
    /// Closes a window with its events; false if a sink cancelled it. Closing the last window quits the program.
    bool CloseFrame(Frame& frame);
    /// Deletes an item as the user does: raises BeforeDelete and closes its window. False if cancelled.
    bool Delete(const std::shared_ptr<Item>& item);

    void FrameActivated(Frame& frame);

private:
    enum class Phase { Running, Waiting, Ended };

    void BeginQuit();
    void FinishQuit();
    void Forget(const Frame& frame);
    std::shared_ptr<Frame> FindFrame(const Frame& frame) const;
    /// Inspectors first.
    std::vector<std::shared_ptr<Frame>> Frames() const;
    /// The most recently used window of this kind; may be null.
    template <class Kind>
    std::shared_ptr<Kind> LastUsed() const;

    const Options options_;
    const std::shared_ptr<Application> application_;
    const std::shared_ptr<Windows> explorersObject_;
    const std::shared_ptr<Windows> inspectorsObject_;
    Store store_;
    BarStore bars_;
    AddinLoader addins_;
    ExitReport report_;
    std::vector<std::shared_ptr<Explorer>> explorers_;
    std::vector<std::shared_ptr<Inspector>> inspectors_;
    std::vector<const Frame*> lastUsed_;  // most recent first
    std::vector<const Frame*> closing_;   // windows whose closing events are running
    int explorerNumber_ = 0;
    int inspectorNumber_ = 0;
    Phase phase_ = Phase::Running;
    bool quitAsked_ = false;
    bool quitRaised_ = false;
    bool disconnected_ = false;
    QuitMode quitMode_ = QuitMode::CloseWindows;
    std::chrono::steady_clock::time_point deadline_;
    int exitCode_ = 0;
};

}  // namespace beacon::standin
