#include <windows.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "addin/connect.h"
#include "addin/listener_registry.h"
#include "addin/message_hook.h"
#include "addin/timers.h"
#include "bare_calls.h"
#include "measure.h"
#include "support/globals.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/fake_services.h"
#include "text_bodies.h"

// The adapter against the bare calls that it makes, in a Wine prefix of its own: Outlook's objects are fakes in this
// process, the engine is one in this process or in a second one of this program. Writes one line of JSON for a row.

namespace {

long allocations = 0;
bool countsBytes = false;
long long allocatedBytes = 0;  // and not yet freed, of what was done while they are counted

}  // namespace

[[gnu::noinline]] void* operator new(size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    ++allocations;
    if (countsBytes) allocatedBytes += static_cast<long long>(_msize(block));
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    if (countsBytes && block != nullptr) allocatedBytes -= static_cast<long long>(_msize(block));
    std::free(block);
}

void operator delete(void* block, size_t) noexcept { operator delete(block); }

namespace beacon::bench {
namespace {

using com::ComPtr;
using com::Object;
using namespace beacon::test;

constexpr wchar_t kReady[] = L"beacon adapter_bench engine";
constexpr int kSends = 200;    // a round of sends in this process
constexpr int kFewSends = 10;  // and to another

/// The engine as a second process of this program, until it is killed.
class EngineProcess {
public:
    EngineProcess() {
        const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, kReady);
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        std::wstring command = L"\"" + std::wstring(path) + L"\" engine";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_))
            com::Check(HRESULT_FROM_WIN32(GetLastError()));
        if (WaitForSingleObject(ready, 20000) != WAIT_OBJECT_0) com::Check(RPC_E_TIMEOUT);
        CloseHandle(ready);
    }

    EngineProcess(const EngineProcess&) = delete;
    EngineProcess& operator=(const EngineProcess&) = delete;

    ~EngineProcess() {
        Kill();
        CloseHandle(process_.hProcess);
        CloseHandle(process_.hThread);
    }

    void Kill() const {
        TerminateProcess(process_.hProcess, 0);
        WaitForSingleObject(process_.hProcess, 20000);
    }

    /// The other side of this class.
    static int Run() {
        FakeEngine engine;
        engine.onMessage = [](BSTR) {};
        const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, kReady);
        SetEvent(ready);
        Pump(INFINITE);
        return 0;
    }

private:
    PROCESS_INFORMATION process_{};
};

/// A connected sender, and two items of each kind to send in turns, so that none is passed over as unchanged.
class Adapter {
public:
    Adapter() {
        window_ = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        listener_.handle = HandleToLong(window_);
        sender_ = com::MakeObject<BeaconConnection>(services_);
        sender_->SetListener(&listener_);
        sender_->Connect(listener_.handle);
        sender_->objApplication->gAutoUpdate = true;
        const std::wstring body = kBodyKinds[0].make(1200);
        for (const wchar_t* id : {L"1", L"2"}) {
            mails_.push_back(MakeMail(body, L"RE: Budget for the spring campaign", id));
            contacts_.push_back(MakeContact(id));
        }
    }

    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    ~Adapter() {
        sender_->Disconnect();
        sender_->SetListener(nullptr);
        sender_.Reset();
        DestroyWindow(window_);
    }

    void Send(const std::vector<std::shared_ptr<FakeItem>>& items) {
        std::wstring selected = L"the spring campaign";
        bool bail = false;
        turn_ = 1 - turn_;
        sender_->SendOutlookItem(Object(static_cast<IDispatch*>(items[turn_].get())), selected, bail, 1);
    }

    void SendMail() { Send(mails_); }

    void SendContact() { Send(contacts_); }

    IDispatch* Mail(size_t index) const { return mails_[index].get(); }

    IDispatch* Contact(size_t index) const { return contacts_[index].get(); }

    HWND Window() const { return window_; }

    bool IsConnected() const { return sender_->objApplication->gAppAdapterStarted; }

private:
    HWND window_;
    FakeServices services_;
    FakeListener listener_;
    ComPtr<BeaconConnection> sender_;
    std::vector<std::shared_ptr<FakeItem>> mails_;
    std::vector<std::shared_ptr<FakeItem>> contacts_;
    size_t turn_ = 0;
};

struct Recorded {
    std::vector<std::wstring> mail;
    std::vector<std::wstring> contact;
};

/// A send against its bare calls; and of it the look for a dialog over the window, and what is neither.
template <class Ours, class Bare>
void CompareParts(const std::string& row, Ours&& ours, Bare&& bare) {
    std::vector<double> times[4];
    for (int round = 0; round < 15; ++round) {
        const auto measure = [](const auto& action) {
            return NanosecondsOf([&] {
                       for (int i = 0; i < kSends; ++i) action();
                   }) /
                   kSends;
        };
        times[0].push_back(measure(ours));
        times[1].push_back(measure([] { FindWindowExA(nullptr, nullptr, "#32770", nullptr); }));
        times[2].push_back(measure(bare));
        times[3].push_back(times[0].back() - times[1].back() - times[2].back());
    }
    Report(row.c_str(), times[0], times[2]);
    Report((row + ": search").c_str(), times[1], times[2]);
    Report((row + ": rest").c_str(), times[3], times[2]);
}

/// What each further line of a body costs when nothing in it is expanded. The text that COM is given is not made by
/// this program's allocator, so it is added.
void ReportAllocations(FakeEngine& engine, Adapter& adapter) {
    long messages = 0;
    engine.onMessage = [&](BSTR) { ++messages; };
    const auto measure = [&](int lines, const wchar_t* id) {
        std::wstring body;
        for (int i = 0; i < lines; ++i) body += L"the figures for the spring campaign are final now. We can spend\r\n";
        const std::vector mails(2, MakeMail(body, L"Budget", id));
        messages = 0;
        const long before = allocations;
        adapter.Send(mails);
        return std::pair(static_cast<double>(allocations - before), static_cast<double>(messages));
    };
    const auto few = measure(10, L"3");
    const auto many = measure(40, L"4");
    Report("allocations a message", {1 + (many.first - few.first) / (many.second - few.second)});
}

Recorded SendInProcess() {
    FakeEngine engine;
    Recorded recorded;
    std::vector<std::wstring>* into = &recorded.mail;
    engine.onMessage = [&](BSTR message) { into->push_back(com::ToText(message)); };
    Adapter adapter;
    recorded.mail.clear();  // without the hello
    adapter.SendMail();
    into = &recorded.contact;
    adapter.SendContact();
    ReportAllocations(engine, adapter);
    engine.onMessage = [](BSTR) {};
    const BareSend mail(EnginePeer(), recorded.mail);
    CompareParts(
        "mail, engine in process", [&] { adapter.SendMail(); }, [&] { mail.Mail(adapter.Mail(0), adapter.Mail(1)); });
    const BareSend contact(EnginePeer(), recorded.contact);
    CompareParts(
        "contact, engine in process", [&] { adapter.SendContact(); },
        [&] { contact.Contact(adapter.Contact(0), adapter.Contact(1)); });
    return recorded;
}

void SendToProcess(const Recorded& recorded) {
    const EngineProcess engine;
    Adapter adapter;
    if (!adapter.IsConnected()) com::Check(CO_E_OBJNOTCONNECTED);
    const BareSend mail(EnginePeer(), recorded.mail);
    Compare(
        "mail, engine's process", 15, kFewSends, [&] { adapter.SendMail(); },
        [&] { mail.Mail(adapter.Mail(0), adapter.Mail(1)); });
    const BareSend contact(EnginePeer(), recorded.contact);
    Compare(
        "contact, engine's process", 15, kFewSends, [&] { adapter.SendContact(); },
        [&] { contact.Contact(adapter.Contact(0), adapter.Contact(1)); });
}

/// Each side has an engine of its own to lose: whoever calls the dead one first finds out for all in the process.
void SendToKilledEngine(const Recorded& recorded) {
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < 7; ++round) {
        {
            const EngineProcess engine;
            Adapter adapter;
            engine.Kill();
            ours.push_back(NanosecondsOf([&] { adapter.SendMail(); }));
        }
        const EngineProcess engine;
        const auto first = MakeMail(kBodyKinds[0].make(1200), L"a", L"1");
        const BareSend mail(EnginePeer(), recorded.mail);
        engine.Kill();
        bare.push_back(NanosecondsOf([&] { mail.Mail(first.get(), first.get()); }));
    }
    Report("mail, engine killed", ours, bare);
}

void CompareHooks() {
    MSG message;
    const auto passOne = [&] {
        PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
        PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
    };
    std::vector<double> times[2];
    constexpr int kMessages = 2000;
    const auto measure = [&](std::vector<double>& into) {
        into.push_back(NanosecondsOf([&] {
                           for (int i = 0; i < kMessages; ++i) passOne();
                       }) /
                       kMessages);
    };
    for (int round = 0; round < 15; ++round) {
        SetUpWindowsHook();
        measure(times[0]);
        RemoveWindowsHook();
        const HHOOK bare = SetWindowsHookExA(
            WH_GETMESSAGE, [](int code, WPARAM w, LPARAM l) -> LRESULT { return CallNextHookEx(nullptr, code, w, l); },
            nullptr, GetCurrentThreadId());
        measure(times[1]);
        UnhookWindowsHookEx(bare);
    }
    Report("message hook", times[0], times[1]);
}

void CompareStarts(const char* row) {
    const auto application = std::make_shared<FakeApplication>();
    application->activeExplorer = std::make_shared<FakeWindow>(L"Inbox", std::vector<IID>{events::kExplorer});
    std::vector<double> times[2];
    for (int round = 0; round < 21; ++round) {
        const auto connect = com::MakeObject<Connect>();
        times[0].push_back(NanosecondsOf([&] { connect->OnConnection(application.get(), 0, nullptr, nullptr); }));
        connect->OnDisconnection(0, nullptr);
        std::unique_ptr<BareStart> bare;
        times[1].push_back(NanosecondsOf([&] { bare = std::make_unique<BareStart>(application.get()); }));
    }
    Report(row, times[0], times[1]);
}

std::vector<double> TickTimes() {
    std::vector<HWND> forms;
    HWND form = nullptr;
    while ((form = FindWindowExW(HWND_MESSAGE, form, L"BeaconOLKAdapter frmHidden", nullptr)) != nullptr)
        forms.push_back(form);
    std::vector<double> times;
    constexpr UINT_PTR kReconnectTimer = 2;
    for (int round = 0; round < 15; ++round)
        times.push_back(NanosecondsOf([&] {
                            for (int i = 0; i < 2000; ++i)
                                SendMessageW(forms[static_cast<size_t>(i) % forms.size()], WM_TIMER, kReconnectTimer,
                                             0);
                        }) /
                        2000);
    return times;
}

/// Listeners of so many windows with a link each: their bytes, and a tick of the timer that watches the link.
void MeasureWindows() {
    FakeEngine engine;
    engine.onMessage = [](BSTR) {};
    ListenerRegistry& registry = ListenerRegistry::OfProcess();
    std::vector<std::shared_ptr<FakeWindow>> windows;
    std::vector<double> tickOfOne;
    for (const size_t count : {1, 20, 200}) {
        std::vector<std::shared_ptr<FakeWindow>> fresh;
        while (windows.size() + fresh.size() < count)
            fresh.push_back(std::make_shared<FakeWindow>(L"A window", std::vector<IID>{events::kExplorer}));
        windows.reserve(count);
        allocatedBytes = 0;
        countsBytes = true;
        for (const auto& window : fresh) {
            const auto listener = com::MakeObject<ExplorerListener>(registry);
            listener->Watch(static_cast<IDispatch*>(window.get()));
            registry.gExplorerListeners.Add(listener);
            listener->Init(window->Handle());
        }
        countsBytes = false;
        const std::string tail = ", " + std::to_string(count) + " windows";
        Report(("bytes" + tail).c_str(), {static_cast<double>(allocatedBytes) / static_cast<double>(fresh.size())});
        windows.insert(windows.end(), fresh.begin(), fresh.end());
        const std::vector<double> ticks = TickTimes();
        if (count == 1) tickOfOne = ticks;
        Report(("tick" + tail).c_str(), ticks, tickOfOne);
    }
    registry.AbandonAll();
    engine.LetGo();
}

void MeasureTexts() {
    for (const BodyKind& kind : kBodyKinds)
        for (const size_t size : {1024u, 32767u}) {
            const std::wstring body = kind.make(size);
            const int count = static_cast<int>(500000 / size) + 1;
            std::vector<double> times;
            size_t out = 0;
            for (int round = 0; round < 15; ++round)
                times.push_back(NanosecondsOf([&] {
                                    for (int i = 0; i < count; ++i) out += CleanSplitEncode(body);
                                }) /
                                count / static_cast<double>(size));
            if (out != 1) Report((std::string(kind.name) + "/" + std::to_string(size)).c_str(), times);
        }
}

int Run() {
    const PublishedReader reader;
    globals::gOutlookVersion = 10;

    const Recorded recorded = SendInProcess();
    SendToProcess(recorded);
    SendToKilledEngine(recorded);
    CompareHooks();
    {
        const EngineProcess engine;
        CompareStarts("start, engine's process");
    }
    CompareStarts("start, no engine");
    MeasureWindows();
    MeasureTexts();
    return 0;
}

}  // namespace
}  // namespace beacon::bench

int main(int argc, char**) {
    beacon::com::SetModuleInstance(GetModuleHandleW(nullptr));
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    int status = 1;
    try {
        status = argc > 1 ? beacon::bench::EngineProcess::Run() : beacon::bench::Run();
    } catch (const beacon::com::Error& error) {
        std::fprintf(stderr, "adapter_bench: error %ld %ls\n", error.number, error.Description().data());
    }
    CoUninitialize();
    return status;
}
