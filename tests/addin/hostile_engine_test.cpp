#include <algorithm>

#include "addin/connect.h"
#include "addin/listener_registry.h"
#include "common/threads.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {
namespace {

constexpr wchar_t kForm[] = L"BeaconOLKAdapter frmHidden";
constexpr WPARAM kReconnectTimer = 2;
constexpr DISPID kPutMessage = 5;
constexpr wchar_t kClick[] = L"<BUTTON_CLICK id=\"1\"/>";

/// The whole add-in with one explorer and one mail, beside an engine that does what it should not.
class HostileEngine : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        SetOfUser(L"DefaultAutoUpdate", L"True");
        SetOfMachine(L"StartAnalysisDelay", L"50");
        Mail(L"A first line that is long enough\r\nand a second one\r\n");
    }

    void Start() {
        FakeWindow& explorer = Explorer();
        explorer.items = {items_.front()};
        outlook_->activeExplorer = windows_.back();
        connect_ = com::MakeObject<Connect>();
        connect_->OnConnection(static_cast<IDispatch*>(outlook_.get()), 0, nullptr, nullptr);
        listener_ = ListenerRegistry::OfProcess().gExplorerListeners.Item(1);
    }

    void End() {
        listener_.Reset();
        connect_->OnDisconnection(0, nullptr);
        connect_.Reset();
        outlook_->activeExplorer.reset();
        windows_.clear();
    }

    long Window() const { return windows_.back()->Handle(); }

    /// What two seconds do by themselves.
    static void TickOfReconnect() {
        SendMessageW(FindWindowExW(HWND_MESSAGE, nullptr, kForm, nullptr), WM_TIMER, kReconnectTimer, 0);
    }

    static void Put(IMessageDispatch* sink, const std::wstring& text) {
        _variant_t ignored;
        EXPECT_EQ(sink->PutControl(_bstr_t(text.c_str()), nullptr, -1, &ignored), S_OK);
        EXPECT_EQ(sink->PutMessage(_bstr_t(text.c_str()), nullptr, -1, &ignored), S_OK);
    }

    /// To both sinks, as far as there are any.
    static void ToSinks(const std::function<void(IMessageDispatch*)>& deed) {
        const auto sender = ListenerRegistry::OfProcess().gExplorerListeners.Item(1)->objBeaconConnection();
        if (sender == nullptr || sender->objApplication == nullptr) return;
        const com::ComPtr<ControllerInterface> controllers = sender->objApplication->gControllerInterface;
        const com::ComPtr<EngineInterface> engines = sender->objApplication->gEngineInterface;
        if (controllers != nullptr) deed(controllers->MDispatch());
        if (engines != nullptr) deed(engines->MDispatch());
    }

    com::ComPtr<Connect> connect_;
    com::ComPtr<ExplorerListener> listener_;
};

TEST_F(HostileEngine, DoesItsWorstInsideAnyCallAndIsServedAgainAtTheNextTick) {
    const std::wstring megabyte(1 << 20, L'x');
    const auto disconnect = [](IMessageDispatch* sink) {
        _variant_t ignored;
        EXPECT_EQ(sink->Disconnect(12345, &ignored), S_OK);
    };

    const struct {
        const char* name;
        std::function<void(IMessageDispatch*)> deed;
    } deeds[] = {
        {"disconnects", disconnect},
        {"disconnects and lets go",
         [&](IMessageDispatch* sink) {
             disconnect(sink);
             engine_->LetGo();
         }},
        {"orders the end", [](IMessageDispatch* sink) { Put(sink, L"<EXIT now=\"1\"/>"); }},
        {"calls on after disconnecting",
         [&](IMessageDispatch* sink) {
             disconnect(sink);
             Put(sink, kClick);
             Put(sink, L"<SET_AUTOUPDATE true>");
             EXPECT_EQ(sink->Connect(nullptr, nullptr, 0, nullptr), S_OK);
         }},
        {"gives nothing and too much",
         [&](IMessageDispatch* sink) {
             EXPECT_EQ(sink->PutControl(nullptr, nullptr, 0, nullptr), S_OK);
             EXPECT_EQ(sink->PutMessage(nullptr, sink, 0, nullptr), S_OK);
             EXPECT_EQ(sink->Connect(_bstr_t(megabyte.c_str()), nullptr, -7, nullptr), S_OK);
             EXPECT_EQ(sink->Status(nullptr, nullptr, 0, nullptr), S_OK);
             Put(sink, L"<" + megabyte + L" true>");
             Put(sink, L"<SET_AUTOUPDATE " + megabyte);
         }},
    };

    for (const auto& [name, deed] : deeds) {
        bool done = true;
        for (int at = 1; done; ++at) {
            SCOPED_TRACE(testing::Message() << name << " in call " << at);
            int calls = 0;
            done = false;
            engine_->always = [&, &deed = deed] {
                if (++calls != at) return;
                done = true;
                ToSinks(deed);
            };
            Start();
            listener_->Send();
            if (!done) listener_->Disconnect();
            engine_->always = nullptr;
            if (calls >= at && listener_->objBeaconConnection() != nullptr) {
                engine_->LetGo();  // an engine that hangs on to old sinks gets no new ones before it lets go
                TickOfReconnect();
                EXPECT_EQ(engine_->engineSide->id, Window());
                EXPECT_TRUE(listener_->objBeaconConnection()->objApplication->gAppAdapterStarted);
            }
            End();
        }
    }
}

/// How often one thing or another took longer than Outlook's user should notice. A busy machine takes the processor
/// away now and then, so that a few are no fault.
class Stretches {
public:
    template <class Deed>
    void Measure(Deed&& deed) {
        constexpr double kTooLong = 0.05;  // s
        LARGE_INTEGER before;
        LARGE_INTEGER after;
        QueryPerformanceCounter(&before);
        deed();
        QueryPerformanceCounter(&after);
        const double seconds = static_cast<double>(after.QuadPart - before.QuadPart) / perSecond_;
        longest_ = std::max(longest_, seconds);
        tooLong_ += seconds > kTooLong;
        ++all_;
    }

    /// Dispatches messages until done, but no longer than half a minute.
    template <class Done>
    void Pump(Done&& done) {
        const ULONGLONG end = GetTickCount64() + 30000;
        while (!done() && GetTickCount64() < end) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) Measure([&] { DispatchMessageW(&message); });
        }
    }

    void Expect(const char* name) const {
        testing::Test::RecordProperty(name, std::to_string(longest_));
        EXPECT_LE(tooLong_, all_ / 100) << name;
    }

private:
    static double Frequency() {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(frequency.QuadPart);
    }

    const double perSecond_ = Frequency();
    double longest_ = 0;  // s
    int tooLong_ = 0;
    int all_ = 0;
};

TEST_F(HostileEngine, ClicksWithoutEndNeverHoldOutlookAndOneSendFollowsTheLast) {
    StartLikeANewProcess();  // off, as it is on a user's machine
    SetOfMachine(L"StartAnalysisDelay", L"500");
    int ends = 0;
    engine_->onMessage = [&](BSTR text) { ends += com::ToText(text).starts_with(L"<eod "); };
    Start();
    Stretches pumped;
    pumped.Pump([&] { return ends == 1; });
    ASSERT_EQ(ends, 1);

    Stretches called;
    const com::ComPtr<IMessageDispatch> sink = engine_->controllerSide->peer;
    const _bstr_t click(kClick);
    for (int i = 0; i < 10000; ++i) {
        _variant_t ignored;
        called.Measure([&] { sink->PutMessage(click, nullptr, 0, &ignored); });
    }
    called.Expect("call");

    // As another process does it: through a proxy, the next one as soon as the last is through.
    constexpr int kClicks = 1000;
    com::ComPtr<IStream> marshalled;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, sink.Get(), &marshalled), S_OK);
    volatile bool finished = false;
    int through = 0;
    const standin::UniqueHandle other = standin::StartThread([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        {
            com::ComPtr<IDispatch> proxy;
            CoGetInterfaceAndReleaseStream(marshalled.Detach(), IID_PPV_ARGS(&proxy));
            const com::Object object(proxy.Get());
            GoOnAfterError([&] {
                for (; through < kClicks; ++through)
                    object.Invoke(kPutMessage, DISPATCH_METHOD,
                                  {com::FromText(kClick), com::FromObject(nullptr), com::FromLong(0)});
            });
        }
        CoUninitialize();
        finished = true;
    });
    pumped.Pump([&] { return finished; });
    EXPECT_EQ(through, kClicks);
    EXPECT_EQ(ends, 1) << "not before the last";
    pumped.Pump([&] { return ends == 2; });
    pumped.Pump([until = GetTickCount64() + 750] { return GetTickCount64() > until; });
    EXPECT_EQ(ends, 2);
    pumped.Expect("message");
    EXPECT_FALSE(std::filesystem::exists(log_.PathOf(1)) || std::filesystem::exists(log_.PathOf(2)));
    engine_->onMessage = nullptr;
    End();
}

}  // namespace
}  // namespace beacon::test
