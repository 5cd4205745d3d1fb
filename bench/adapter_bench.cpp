// Measures the adapter in Wine against a reference in the same process; scripts/bench.py runs it and makes the table.
// Outlook's objects are fakes. The engine is in this process, and then in a second process: `adapter_bench engine`.
#include <windows.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "bare_send.h"
#include "bench_engine.h"
#include "measure.h"
#include "support/globals.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/fake_services.h"
#include "text_bodies.h"

namespace beacon::bench {
namespace {

using namespace beacon::test;

/// A connected sender and two mails that it sends in turn, so that neither is skipped as unchanged.
class Adapter {
public:
    Adapter() {
        window_ = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        listener_.handle = HandleToLong(window_);
        sender_ = com::MakeObject<BeaconConnection>(services_);
        sender_->SetListener(&listener_);
        sender_->Connect(listener_.handle);
        sender_->objApplication->gAutoUpdate = true;
        if (!sender_->objApplication->gAppAdapterStarted) com::Check(CO_E_OBJNOTCONNECTED);
    }

    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    ~Adapter() {
        sender_->Disconnect();
        sender_->SetListener(nullptr);
        sender_.Reset();
        DestroyWindow(window_);
    }

    void Send() {
        std::wstring selected = L"the spring campaign";
        bool bail = false;
        turn_ = 1 - turn_;
        sender_->SendOutlookItem(com::Object(Mail(turn_)), selected, bail, 1);
    }

    IDispatch* Mail(size_t index) const { return mails_[index].get(); }

private:
    const std::wstring body_ = kBodyKinds[0].make(1200);
    const std::shared_ptr<FakeItem> mails_[2] = {MakeMail(body_, L"RE: Budget for the spring campaign", L"1"),
                                                 MakeMail(body_, L"RE: Budget for the spring campaign", L"2")};
    HWND window_;
    FakeServices services_;
    FakeListener listener_;
    com::ComPtr<BeaconConnection> sender_;
    size_t turn_ = 0;
};

void CompareSends(const char* row, int count, const std::vector<std::wstring>& messages) {
    Adapter adapter;
    const BareSend bare(messages);
    Compare(
        row, count, 1, [&] { adapter.Send(); }, [&] { bare.Send(adapter.Mail(0), adapter.Mail(1)); });
}

void CompareTexts() {
    for (const BodyKind& kind : kBodyKinds)
        for (const size_t size : {1024u, 32767u}) {
            const std::wstring body = kind.make(size);
            size_t out = 0;
            Compare(
                std::string(kind.name) + "/" + std::to_string(size), static_cast<int>(500000 / size) + 1,
                static_cast<double>(size), [&] { out += CleanSplitEncode(body); }, [&] { out += ReferencePass(body); });
            if (out == 1) std::printf("\n");
        }
}

int Run() {
    const PublishedReader reader;
    globals::gOutlookVersion = 10;
    CompareTexts();
    std::vector<std::wstring> messages;
    {
        const BenchEngine engine;
        {
            Adapter adapter;
            engine.peer->keeps = true;
            adapter.Send();
            engine.peer->keeps = false;
        }
        messages = std::move(engine.peer->messages);
        CompareSends("mail, engine in process", 200, messages);
    }
    std::printf("engine?\n");
    std::fflush(stdout);
    std::getchar();  // it runs now
    CompareSends("mail, engine's process", 10, messages);
    return 0;
}

int RunEngine() {
    const BenchEngine engine;
    std::printf("ready\n");
    std::fflush(stdout);
    Pump(INFINITE);
    return 0;
}

}  // namespace
}  // namespace beacon::bench

int main(int argc, char**) {
    beacon::com::SetModuleInstance(GetModuleHandleW(nullptr));
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    int status = 1;
    try {
        status = argc > 1 ? beacon::bench::RunEngine() : beacon::bench::Run();
    } catch (const beacon::com::Error& error) {
        std::fprintf(stderr, "adapter_bench: error %ld %ls\n", error.number, error.Description().data());
    }
    CoUninitialize();
    return status;
}
