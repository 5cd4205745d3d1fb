#include "listener_fixture.h"

namespace beacon::test {
namespace {

// Also when the call itself fails: nothing starts for a window that is gone, and the engine is told of the end.
TEST_F(ListenerTest, AWindowThatEndsInsideTheStartLeavesNothingConnected) {
    FakeItem& mail = Mail(kBodyText);

    const struct {
        const char* name;
        bool isExplorer;
        std::function<void(FakeWindow&, ListenerCore&)> end;
        int removed;  // from the registry
    } endings[] = {
        {"the explorer closes", true, [](FakeWindow& window, ListenerCore&) { CloseWindow(window); }, 1},
        {"the inspector closes", false, [](FakeWindow& window, ListenerCore&) { CloseWindow(window); }, 1},
        {"the item closes", false, [&](FakeWindow&, auto&) { mail.Fire(events::kItem10, events::kItemClose); }, 1},
        {"the explorer's add-in ends", true, [](FakeWindow&, ListenerCore& listener) { listener.Abandon(); }, 0},
    };

    const auto check = [&](const wchar_t* call, bool fails, const auto& ending, FakeWindow& window, auto& listener) {
        SCOPED_TRACE(com::ToAnsi(call) + (fails ? " fails, " : ", ") + ending.name);
        services_.removed = 0;
        services_.forms.clear();
        engine_->once[call] = [&] {
            ending.end(window, listener);
            log_.Clear();
            if (fails) com::Raise(57);
        };
        listener.Init(window.Handle());
        EXPECT_TRUE(engine_->KnowsNobody());
        for (const wchar_t* step : {L"App StartUp", L" Get", L" Connect ", L"<hello", L"SendLater"})
            EXPECT_THAT(log_.Lines(1), Not(Contains(HasSubstr(step)))) << "the start went on";
        EXPECT_EQ(listener.objBeaconConnection().Get(), nullptr);
        EXPECT_FALSE(window.HasAnyMark());
        EXPECT_EQ(window.Sinks(), 0u);
        EXPECT_EQ(services_.removed, ending.removed);
        listener.Init(window.Handle());
        ASSERT_EQ(services_.forms.size(), 1u) << "it started again";
        EXPECT_TRUE(Form().unloaded);
        EXPECT_EQ(Form().sends, 0);
    };
    const wchar_t* const calls[] = {
        L"controller GetMessageInterface", L"controller Connect", L"controller GetEngineInterface",
        L"engine GetMessageInterface",     L"engine Connect",     L"engine PutMessage"};
    for (const wchar_t* call : calls)
        for (const bool fails : {false, true})
            for (const auto& ending : endings) {
                FakeWindow& window = ending.isExplorer ? Explorer() : Inspector(mail);
                if (ending.isExplorer)
                    check(call, fails, ending, window, *Follow<ExplorerListener>(window).Get());
                else
                    check(call, fails, ending, window, *Follow<InspectorListener>(window).Get());
            }
}

TEST_F(ListenerTest, ASupportedItemWithoutAWindowEndsItsListenerAtOnce) {
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    SetWindowTextW(static_cast<HWND>(LongToHandle(inspector.Handle())), L"another title");
    const auto listener = Start<InspectorListener>(inspector);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(inspector.Sinks(), 0u);
    EXPECT_FALSE(inspector.HasAnyMark());
    EXPECT_THAT(services_.forms, IsEmpty());
}

TEST_F(ListenerTest, EndsWithItsItemOrWindowWhateverTheyAnswer) {
    FakeItem& mail = Mail(kBodyText);
    VARIANT_BOOL cancel = VARIANT_FALSE;
    const auto closeItem = [&] { mail.Fire(events::kItem10, events::kItemClose, {standin::ByReference(cancel)}); };
    const auto deleteItem = [&] {
        mail.Fire(events::kItem10, events::kItemBeforeDelete, {com::FromObject(&mail), standin::ByReference(cancel)});
    };

    const struct {
        const wchar_t* firstLine;
        std::function<void(FakeWindow&)> end;
    } endings[] = {
        {L"myMailItem_Close called: ", [&](FakeWindow&) { closeItem(); }},
        {L"myMailItem_BeforeDelete called: Lunch on Friday", [&](FakeWindow&) { deleteItem(); }},
        {L"Inspector Close called:  hWnd=", &CloseWindow},
    };

    for (const auto& [firstLine, end] : endings) {
        FakeWindow& inspector = Inspector(mail);
        const auto listener = Start<InspectorListener>(inspector);
        ASSERT_EQ(mail.Sinks(), 1u);
        services_.removed = 0;
        log_.Clear();
        inspector.fails = true;  // a closing window may have no caption any more
        end(inspector);
        EXPECT_THAT(log_.Lines().front(), StartsWith(firstLine));
        EXPECT_TRUE(log_.Has(L"Inspector Close called:  hWnd=" + std::to_wstring(inspector.Handle())));
        EXPECT_EQ(services_.removed, 1);
        EXPECT_EQ(mail.Sinks(), 0u);
        CloseWindow(inspector);
        closeItem();
        EXPECT_EQ(services_.removed, 1) << "a second close does nothing";
    }
    EXPECT_EQ(cancel, VARIANT_FALSE);
}

TEST_F(ListenerTest, ARefusingSenderIsTriedAgainByTheTimerAndGivenUpByTheEndOfTheAddIn) {
    FakeReader::ends = E_FAIL;
    for (const bool abandoned : {true, false}) {
        FakeItem& mail = Mail(kBodyText);
        FakeWindow& inspector = Inspector(mail);
        const auto listener = Start<InspectorListener>(inspector);
        listener->Send();
        CloseWindow(inspector);
        EXPECT_EQ(Form().retries, 1);
        EXPECT_FALSE(Form().unloaded);
        EXPECT_TRUE(inspector.IsMarked());
        Form().Connection()->objListener()->Close();
        EXPECT_EQ(Form().retries, 2);
        EXPECT_EQ(services_.removed, 0);
        FakeReader::ends = abandoned ? E_FAIL : S_OK;
        abandoned ? listener->Abandon() : static_cast<void>(listener->Close());
        EXPECT_EQ(services_.removed, abandoned ? 0 : 1);
        EXPECT_TRUE(Form().unloaded);
        EXPECT_EQ(listener->objBeaconConnection().Get(), nullptr);
        EXPECT_FALSE(inspector.HasAnyMark());
        EXPECT_EQ(inspector.Sinks() + mail.Sinks(), 0u);
    }
}

TEST_F(ListenerTest, AfterQuitItHoldsNothingOfOutlooksButStaysConnected) {
    SetOfUser(L"EnableToolbar", L"1");
    FakeItem& mail = Mail(kBodyText);
    FakeWindow& explorer = Explorer();
    FakeWindow& inspector = Inspector(mail);
    explorer.items = inspector.items;
    const auto first = Start<ExplorerListener>(explorer);
    const auto second = Start<InspectorListener>(inspector);
    first->Send();
    const com::ComPtr<Application> link = first->objBeaconConnection()->objApplication;
    EXPECT_NE(first->objBeaconConnection()->gToolbar, nullptr);
    // Outlook quits inside a call to the engine: the item that is being sent is not held either.
    engine_->once[L"engine PutMessage"] = [&] {
        first->ReleaseOutlook();
        second->ReleaseOutlook();
    };
    second->Send();
    EXPECT_EQ(explorer.OutsideReferences() + inspector.OutsideReferences() + mail.OutsideReferences(), 0u);
    EXPECT_EQ(explorer.Sinks() + inspector.Sinks() + mail.Sinks(), 0u);
    EXPECT_EQ(first->objBeaconConnection()->gToolbar, nullptr);
    EXPECT_TRUE(link->gAppAdapterStarted);
    log_.Clear();
    second->Send();
    EXPECT_THAT(log_.Lines(), IsEmpty()) << "there is no item to send any more";
    first->Abandon();
    second->Abandon();
    EXPECT_FALSE(link->gAppAdapterStarted);
}

// A call that is still running, or another program, may hold a sender for longer than its listener does.
TEST_F(ListenerTest, ASenderThatOutlivesItsListenerHasForgottenIt) {
    const auto check = [&](const char* how, const auto& listener, const auto& end) {
        listener->Connect();
        const com::ComPtr<BeaconConnection> held = listener->objBeaconConnection();
        ASSERT_NE(held->objListener(), nullptr) << how;
        end(*listener.Get());
        EXPECT_EQ(held->objListener(), nullptr) << how;
        EXPECT_NE(listener->objBeaconConnection().Get(), held.Get()) << how;
        if (held->objApplication != nullptr) held->Disconnect();
    };
    const auto explorer = [&] { return com::MakeObject<ExplorerListener>(services_); };
    const auto inspector = [&] { return com::MakeObject<InspectorListener>(services_); };
    check("explorer ends", explorer(), [](ExplorerListener& listener) { listener.Destroy(); });
    check("inspector ends", inspector(), [](InspectorListener& listener) { listener.Destroy(); });
    check("disconnected", explorer(), [](ExplorerListener& listener) { EXPECT_TRUE(listener.Disconnect()); });
    check("taken away", inspector(), [](InspectorListener& listener) { listener.put_objBeaconConnection(nullptr); });
    check("replaced", explorer(), [](ExplorerListener& listener) { listener.Connect(); });
    check("abandoned", inspector(), [](InspectorListener& listener) { listener.Abandon(); });
}

}  // namespace
}  // namespace beacon::test
