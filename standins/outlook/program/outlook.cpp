#include "outlook/program/outlook.h"

#include <algorithm>
#include <utility>

#include "common/journal.h"
#include "outlook/object_model/events.h"

namespace beacon::standin {
namespace {

// The file of permanent command bars.
std::wstring BarsFile(const Options& options) {
    if (!options.barsFile.empty()) return options.barsFile;
    wchar_t folder[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"AppData", folder, MAX_PATH);
    return length == 0 || length >= MAX_PATH ? std::wstring()
                                             : std::wstring(folder, length) + L"\\Stand-in Outlook bars.json";
}

}  // namespace

Outlook::Outlook(Options options, StoreFile file)
    : options_(std::move(options)),
      application_(std::make_shared<Application>(*this)),
      explorersObject_(std::make_shared<Windows>(Windows::Of::Explorers)),
      inspectorsObject_(std::make_shared<Windows>(Windows::Of::Inspectors)),
      store_(std::move(file), options_.HasNewEvents()),
      bars_(BarsFile(options_), [](const std::wstring& text) { Say(L"command bars: " + text); }) {
    addins_.SetApplication(application_);
}

void Outlook::Start() {
    Say(L"outlook " + options_.version + L" process " + std::to_wstring(GetCurrentProcessId()) + L" thread " +
        std::to_wstring(GetCurrentThreadId()) + L" items " + std::to_wstring(store_.Count()));
    const std::shared_ptr<Item> alone = options_.itemOnly.empty() ? nullptr : store_.Find(options_.itemOnly);
    addins_.ReadRegistry();
    for (const auto& addin : addins_.Addins())
        if (!options_.noAddins && addin->LoadsAtStartup()) addins_.Connect(*addin, ConnectMode::Startup);
    if (alone)
        OpenInspector(alone, false);
    else
        OpenExplorer(false);
    if (!options_.noStartupEvent) application_->RaiseStartup();
    addins_.StartupComplete();
}

std::vector<std::shared_ptr<Frame>> Outlook::Frames() const {
    std::vector<std::shared_ptr<Frame>> frames(inspectors_.begin(), inspectors_.end());
    frames.insert(frames.end(), explorers_.begin(), explorers_.end());
    return frames;
}

std::shared_ptr<Frame> Outlook::FindFrame(const Frame& frame) const {
    for (const auto& open : Frames())
        if (open.get() == &frame) return open;
    return nullptr;
}

template <class Kind>
std::shared_ptr<Kind> Outlook::LastUsed() const {
    for (const Frame* frame : lastUsed_)
        if (auto found = std::dynamic_pointer_cast<Kind>(FindFrame(*frame))) return found;
    return nullptr;
}

std::shared_ptr<Frame> Outlook::ActiveFrame() const { return LastUsed<Frame>(); }

std::shared_ptr<Explorer> Outlook::ActiveExplorer() const { return LastUsed<Explorer>(); }

std::shared_ptr<Inspector> Outlook::ActiveInspector() const { return LastUsed<Inspector>(); }

void Outlook::FrameActivated(Frame& frame) {
    std::erase(lastUsed_, &frame);
    lastUsed_.insert(lastUsed_.begin(), &frame);
}

std::shared_ptr<Explorer> Outlook::OpenExplorer(bool announce) {
    const auto explorer = std::make_shared<Explorer>(*this, ++explorerNumber_);
    explorers_.push_back(explorer);
    lastUsed_.push_back(explorer.get());
    if (announce) explorersObject_->RaiseNew(explorer);
    explorer->Open();
    Say(L"opened " + explorer->Name() + L" " + Quoted(explorer->Title()));
    explorer->Show();
    return explorer;
}

std::shared_ptr<Inspector> Outlook::OpenInspector(const std::shared_ptr<Item>& item, bool announce) {
    for (const auto& inspector : inspectors_) {
        if (inspector->ShownItem() != item) continue;
        const auto shown = inspector;
        shown->Activate();
        return shown;
    }
    const auto inspector = std::make_shared<Inspector>(*this, ++inspectorNumber_, item);
    inspectors_.push_back(inspector);
    lastUsed_.push_back(inspector.get());
    // As in Outlook, the window does not exist yet when the event is raised.
    if (announce) inspectorsObject_->RaiseNew(inspector);
    inspector->Open();
    Say(L"opened " + inspector->Name() + L" " + Quoted(inspector->Title()));
    inspector->Show();
    return inspector;
}

void Outlook::Forget(const Frame& frame) {
    std::erase(lastUsed_, &frame);
    std::erase_if(explorers_, [&](const auto& explorer) { return explorer.get() == &frame; });
    std::erase_if(inspectors_, [&](const auto& inspector) { return inspector.get() == &frame; });
}

bool Outlook::CloseFrame(Frame& frame) {
    const std::shared_ptr<Frame> kept = FindFrame(frame);
    if (kept == nullptr || std::find(closing_.begin(), closing_.end(), &frame) != closing_.end()) return true;
    closing_.push_back(&frame);
    const auto inspector = std::dynamic_pointer_cast<Inspector>(kept);
    if (inspector != nullptr && inspector->ShownItem()->RaiseClose()) {
        Say(L"close cancelled " + frame.Name());
        std::erase(closing_, &frame);
        return false;
    }
    frame.Raise(L"Close", events::kWindowClose);
    const std::wstring name = frame.Name();
    report_.NoteWindowEnd(frame);
    Forget(frame);
    frame.Destroy();
    std::erase(closing_, &frame);
    Say(L"closed " + name);
    if (lastUsed_.empty()) {
        if (!IsQuitting()) RequestQuit(QuitMode::CloseWindows);
    } else if (const auto next = ActiveFrame(); next != nullptr && !IsQuitting()) {
        next->Activate();
    }
    return true;
}

bool Outlook::Delete(const std::shared_ptr<Item>& item) {
    const auto shown = std::find_if(inspectors_.begin(), inspectors_.end(),
                                    [&](const auto& inspector) { return inspector->ShownItem() == item; });
    if (shown != inspectors_.end()) {
        const std::shared_ptr<Inspector> inspector = *shown;
        if (item->RaiseBeforeDelete()) return false;
        if (!CloseFrame(*inspector)) return false;
    }
    const size_t place = store_.NumberOf(*item);
    store_.Remove(*item);
    const auto explorers = explorers_;
    for (const auto& explorer : explorers) explorer->ItemRemoved(*item, place);
    return true;
}

void Outlook::RequestQuit(QuitMode mode) {
    if (IsQuitting()) return;
    quitAsked_ = true;
    quitMode_ = mode;
}

void Outlook::RaiseQuitNow() {
    RequestQuit(QuitMode::Now);
    if (!std::exchange(quitRaised_, true)) application_->RaiseQuit();
}

void Outlook::Step() {
    if (phase_ == Phase::Running && quitAsked_) BeginQuit();
    if (phase_ != Phase::Waiting) return;
    if (options_.strictExit && !ExitReport::References().empty()) {
        if (std::chrono::steady_clock::now() < deadline_) return;
        Say(L"strict exit: gave up waiting; not disconnected; references: " + ExitReport::References());
        exitCode_ = 3;
        phase_ = Phase::Ended;
        return;
    }
    FinishQuit();
}

void Outlook::BeginQuit() {
    if (quitMode_ == QuitMode::CloseWindows) {
        bool closed = true;
        for (const auto& frame : Frames()) closed = closed && CloseFrame(*frame);
        if (!closed) {
            Say(L"quit cancelled");
            quitAsked_ = false;
            return;
        }
    }
    phase_ = Phase::Waiting;
    RaiseQuitNow();
    if (options_.fastShutdown) {
        Say(L"fast shutdown: neither OnBeginShutdown nor OnDisconnection");
        report_.Print(*this);
        phase_ = Phase::Ended;
        return;
    }
    addins_.BeginShutdown();
    deadline_ = std::chrono::steady_clock::now() + options_.strictTimeout;
    if (options_.strictExit && !ExitReport::References().empty())
        Say(L"strict exit: held back by references: " + ExitReport::References());
}

void Outlook::FinishQuit() {
    for (const auto& addin : addins_.Addins()) addins_.Disconnect(*addin, RemoveMode::HostShutdown);
    report_.Print(*this);
    disconnected_ = true;
    for (const auto& frame : Frames()) frame->Destroy();
    inspectors_.clear();
    explorers_.clear();
    lastUsed_.clear();
    if (!report_.PrintUnload(*this)) exitCode_ = 4;
    phase_ = Phase::Ended;
}

}  // namespace beacon::standin
