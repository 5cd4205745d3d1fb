#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "tests/fakes/outlook_fixture.h"

namespace beacon::test {
namespace {

class ListenerTest : public OutlookTest {
protected:
    void SetUp() override {
        OutlookTest::SetUp();
        SetOfUser(L"DefaultAutoUpdate", L"True");
    }

    void TearDown() override {
        for (const auto& form : services_.forms) EXPECT_TRUE(form->unloaded);
        OutlookTest::TearDown();
    }

    com::ComPtr<ExplorerListener> Follow(FakeWindow& explorer) {
        auto listener = com::MakeObject<ExplorerListener>(services_);
        listener->Watch(static_cast<IDispatch*>(&explorer));
        return listener;
    }

    com::ComPtr<InspectorListener> FollowItem(FakeWindow& inspector) {
        auto listener = com::MakeObject<InspectorListener>(services_);
        listener->Watch(static_cast<IDispatch*>(&inspector));
        return listener;
    }

    FakeForm& Form() { return *services_.forms.back(); }
};

constexpr wchar_t kBodyText[] = L"A body that is long enough to be sent";

TEST_F(ListenerTest, AnExplorerStartsWhenItIsActivatedAndSendsItsFirstSelectedItem) {
    FakeWindow& explorer = Explorer();
    Contact();
    explorer.items = {items_.back()};
    const auto listener = Follow(explorer);
    explorer.Fire(events::kExplorer, events::kSelectionChange);
    explorer.Fire(events::kExplorer, events::kViewSwitch);
    EXPECT_THAT(services_.forms, IsEmpty()) << "not yet active";
    explorer.Fire(events::kExplorer, events::kActivate);
    ASSERT_EQ(services_.forms.size(), 1u);
    EXPECT_EQ(listener->GetHwnd(), explorer.Handle());
    EXPECT_TRUE(explorer.IsMarked());
    EXPECT_EQ(Form().sends, 1);
    EXPECT_EQ(Form().Connection().Get(), listener->objBeaconConnection().Get());
    explorer.Fire(events::kExplorer, events::kActivate);
    EXPECT_EQ(services_.forms.size(), 1u) << "an active one is not started again";
    explorer.Fire(events::kExplorer, events::kSelectionChange);
    EXPECT_EQ(Form().sends, 2);

    NewLines();
    listener->objBeaconConnection()->OnUpdateClicked();
    listener->Send();
    EXPECT_TRUE(log_.Has(L"SendContact: Resetting gButtonClicked"));
    EXPECT_FALSE(listener->objBeaconConnection()->objApplication->gButtonClicked);
    const LogLines received = Received();
    EXPECT_THAT(received, Contains(L"person"));
    EXPECT_EQ(received.size(), 9u);
    AtMessage(9, [&] { listener->objBeaconConnection()->OnUpdateClicked(); });
    listener->objBeaconConnection()->ReSend(true);
    listener->Send();
    EXPECT_TRUE(listener->objBeaconConnection()->objApplication->gButtonClicked) << "that click is the next one's";
    EXPECT_EQ(explorer.items.front()->OutsideReferences(), 1u) << "the last item sent is kept";

    explorer.selected = 0;
    listener->objBeaconConnection()->ReSend(true);
    NewLines();
    listener->Send();
    explorer.selected = 32768;  // does not fit the place of the editor type
    listener->Send();
    EXPECT_THAT(Received(), IsEmpty());
    explorer.selected = 32767;
    listener->Send();
    EXPECT_THAT(Received(), Not(IsEmpty()));
    explorer.items = {std::make_shared<FakeItem>(26, L"A1")};
    listener->Send();
    EXPECT_THAT(Received(), IsEmpty()) << "an appointment";
    explorer.Fire(events::kExplorer, events::kWindowClose);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(listener->objBeaconConnection().Get(), nullptr);
}

// Outlook raises Activate for the window that it is just showing, also inside a call of the listener's own start.
TEST_F(ListenerTest, AnActivationInsideTheStartDoesNotStartASecondTime) {
    FakeItem& mail = Mail(kBodyText);
    for (const wchar_t* call : {L"controller GetMessageInterface", L"engine Connect", L"engine PutMessage"}) {
        FakeWindow& explorer = Explorer();
        FakeWindow& inspector = Inspector(mail);
        const auto first = Follow(explorer);
        engine_->once[call] = [&] { explorer.Fire(events::kExplorer, events::kActivate); };
        first->Init(explorer.Handle());
        const auto second = FollowItem(inspector);
        inspector.once = [&] { inspector.Fire(events::kInspector10, events::kActivate); };
        engine_->once[call] = [&] { inspector.Fire(events::kInspector10, events::kActivate); };
        inspector.Fire(events::kInspector10, events::kActivate);
        EXPECT_EQ(services_.forms.size(), 2u) << com::ToAnsi(call);
        EXPECT_EQ(engine_->controllerSide->id, inspector.Handle());
        second->Destroy();
        first->Destroy();
        services_.forms.clear();
    }
}

// A window can close, Outlook quit or the add-in be disconnected inside any call of the start-up: nothing may come up
// for a window that is gone, and whoever was told of it is told of its end.
TEST_F(ListenerTest, AWindowThatEndsInsideTheStartLeavesNothingConnected) {
    FakeItem& mail = Mail(kBodyText);
    mail.Events();
    for (const wchar_t* call :
         {L"controller GetMessageInterface", L"controller Connect", L"controller GetEngineInterface",
          L"engine GetMessageInterface", L"engine Connect", L"engine PutMessage"})
        for (const int way : {0, 1, 2, 3, 4, 5, 6, 7}) {
            SCOPED_TRACE(com::ToAnsi(call) + " way " + std::to_string(way));
            services_.removed = 0;
            services_.forms.clear();
            FakeWindow& window = way % 4 < 2 ? Explorer() : Inspector(mail);
            com::ComPtr<ExplorerListener> explorer;
            com::ComPtr<InspectorListener> inspector;
            if (way % 4 < 2)
                explorer = Follow(window);
            else
                inspector = FollowItem(window);
            ListenerCore& listener = way % 4 < 2 ? static_cast<ListenerCore&>(*explorer.Get()) : *inspector.Get();
            engine_->once[call] = [&] {
                switch (way % 4) {
                    case 0: window.Fire(events::kExplorer, events::kWindowClose); break;
                    case 1: listener.Abandon(); break;
                    case 2: window.Fire(events::kInspector10, events::kWindowClose); break;
                    default: mail.Fire(events::kItem10, events::kItemClose); break;
                }
                log_.Clear();
                if (way >= 4) com::Raise(57);
            };
            listener.Init(window.Handle());
            EXPECT_TRUE(engine_->KnowsNobody());
            const LogLines lines = NewLines();
            for (const wchar_t* step : {L"App StartUp", L" Get", L" Connect ", L"<hello", L"SendLater"})
                EXPECT_THAT(lines, Not(Contains(HasSubstr(step)))) << "the start-up went on";
            EXPECT_EQ(listener.objBeaconConnection().Get(), nullptr);
            EXPECT_FALSE(window.HasAnyMark());
            EXPECT_EQ(window.Sinks(), 0u);
            ASSERT_EQ(services_.forms.size(), 1u);
            EXPECT_TRUE(Form().unloaded);
            EXPECT_EQ(Form().sends, 0);
            EXPECT_EQ(services_.removed, way % 4 == 1 ? 0 : 1);
            listener.Init(window.Handle());
            EXPECT_EQ(services_.forms.size(), 1u) << "it has ended for good";
        }
}

TEST_F(ListenerTest, AnInspectorFollowsMailsAndContactsOnly) {
    FakeItem& appointment = Item(26, L"A1");
    FakeWindow& inspector = Inspector(appointment);
    const auto listener = FollowItem(inspector);
    inspector.Fire(events::kInspector10, events::kActivate);
    EXPECT_TRUE(log_.Has(L"InspectorListener.Init - Unsupported Item: Class=26"));
    EXPECT_THAT(services_.forms, IsEmpty());
    FakeItem& contact = Contact();
    inspector.items = {items_.back()};
    contact.Events();
    inspector.Fire(events::kInspector10, events::kActivate);
    ASSERT_EQ(services_.forms.size(), 1u);
    EXPECT_EQ(Form().sends, 1);
    EXPECT_EQ(contact.Sinks(), 1u);
    EXPECT_EQ(appointment.Sinks(), 0u);
    log_.Clear();
    inspector.Fire(events::kInspector10, events::kActivate);
    inspector.Fire(events::kInspector10, events::kDeactivate);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"Inspector Activate called: ?? ?? - Message",
                                          L"Inspector deactivate called: ?? ?? - Message hWnd=" +
                                              std::to_wstring(inspector.Handle())));
    contact.Fire(events::kItem10, events::kItemClose);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(contact.Sinks(), 0u);
}

TEST_F(ListenerTest, ASupportedItemWithoutAWindowEndsItsListenerAtOnce) {
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    SetWindowTextW(static_cast<HWND>(LongToHandle(inspector.Handle())), L"another title");
    const auto listener = FollowItem(inspector);
    inspector.Fire(events::kInspector10, events::kActivate);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(inspector.Sinks(), 0u);
    EXPECT_FALSE(inspector.HasAnyMark());
    EXPECT_THAT(services_.forms, IsEmpty());
}

TEST_F(ListenerTest, WithoutASenderItCountsAsDisconnectedOnce) {
    const LogLines line{L"InspectorListner.Disconnect - resetting the objBeaconConnection"};
    Item(26, L"A1");
    FakeWindow& inspector = Inspector(*items_.back());
    auto listener = FollowItem(inspector);
    listener->Init(inspector.Handle());
    EXPECT_TRUE(inspector.IsMarked());
    log_.Clear();
    EXPECT_TRUE(listener->Disconnect());
    listener.Reset();
    EXPECT_EQ(log_.Lines(), line);
    EXPECT_FALSE(inspector.HasAnyMark());
}

TEST_F(ListenerTest, ConnectingAgainLeavesTheNewLinkConnected) {
    FakeWindow& explorer = Explorer();
    const auto listener = Follow(explorer);
    explorer.Fire(events::kExplorer, events::kActivate);
    listener->Connect();
    EXPECT_EQ(engine_->engineSide->id, explorer.Handle());
    EXPECT_EQ(engine_->controllerSide->id, explorer.Handle());
    listener->Destroy();
}

TEST_F(ListenerTest, WithoutAWindowItReadsNoSelection) {
    const auto listener = Follow(Explorer());
    for (const long version : {9L, 11L}) {
        globals::gOutlookVersion = version;
        log_.Clear();
        EXPECT_EQ(listener->GetSelected(), L"");
        EXPECT_THAT(log_.Lines(), ElementsAre(L"Explorer GetSelected() called")) << "the desktop is searched";
    }
}

TEST_F(ListenerTest, EndsWithItsItemOrWindowWhateverTheyAnswer) {
    FakeItem& mail = Mail(kBodyText);
    mail.Events();
    VARIANT_BOOL cancel = VARIANT_FALSE;
    const auto end = [&](DISPID member, const wchar_t* line) {
        FakeWindow& inspector = Inspector(mail);
        const auto listener = FollowItem(inspector);
        inspector.Fire(events::kInspector10, events::kActivate);
        ASSERT_EQ(mail.Sinks(), 1u);
        services_.removed = 0;
        log_.Clear();
        inspector.fails = true;  // a window on its way out may not have a caption any more
        const _variant_t item = com::FromObject(&mail);
        if (member == events::kWindowClose)
            inspector.Fire(events::kInspector10, events::kWindowClose);
        else if (member == events::kItemBeforeDelete)
            mail.Fire(events::kItem10, member, {item, standin::ByReference(cancel)});
        else
            mail.Fire(events::kItem10, member, {standin::ByReference(cancel)});
        if (line != nullptr) EXPECT_EQ(log_.Lines().front(), line);
        EXPECT_TRUE(log_.Has(L"Inspector Close called:  hWnd=" + std::to_wstring(inspector.Handle())));
        EXPECT_EQ(services_.removed, 1);
        EXPECT_EQ(mail.Sinks(), 0u);
        inspector.Fire(events::kInspector10, events::kWindowClose);
        mail.Fire(events::kItem10, events::kItemClose, {standin::ByReference(cancel)});
        EXPECT_EQ(services_.removed, 1) << "a second close does nothing";
    };
    end(events::kItemClose, L"myMailItem_Close called: ");
    end(events::kItemBeforeDelete, L"myMailItem_BeforeDelete called: Lunch on Friday");
    end(events::kWindowClose, nullptr);
    EXPECT_EQ(cancel, VARIANT_FALSE);
}

TEST_F(ListenerTest, TheTimerTriesAgainWhileTheSenderRefuses) {
    FakeItem& mail = Mail(kBodyText);
    FakeWindow& inspector = Inspector(mail);
    const auto listener = FollowItem(inspector);
    inspector.Fire(events::kInspector10, events::kActivate);
    listener->Send();
    FakeReader::refuses = true;
    inspector.Fire(events::kInspector10, events::kWindowClose);
    EXPECT_EQ(Form().retries, 1);
    EXPECT_EQ(services_.removed, 0);
    EXPECT_FALSE(Form().unloaded);
    EXPECT_TRUE(inspector.IsMarked());
    Form().Connection()->objListener()->Close();
    EXPECT_EQ(Form().retries, 2);
    FakeReader::refuses = false;
    Form().Connection()->objListener()->Close();
    EXPECT_EQ(services_.removed, 1);
    EXPECT_TRUE(Form().unloaded);
    EXPECT_FALSE(inspector.HasAnyMark());
}

TEST_F(ListenerTest, AnInterruptedSendComesAgainInThirtySeconds) {
    FakeItem& mail = Mail(kBodyText);
    FakeWindow& inspector = Inspector(mail);
    const auto listener = FollowItem(inspector);
    inspector.Fire(events::kInspector10, events::kActivate);
    NewLines();
    globals::gUserInterrupt = true;
    listener->Send();
    EXPECT_EQ(Form().threshold, 15);
    EXPECT_THAT(Received(), IsEmpty());
    globals::gUserInterrupt = false;
    Form().threshold = -1;
    listener->Send();
    EXPECT_EQ(Form().threshold, -1);
    EXPECT_EQ(Received().back(), L"eod");
    inspector.items = {std::make_shared<FakeItem>(26, L"A1")};
    listener->Send();
    EXPECT_EQ(Form().threshold, -1) << "an item that is not sent is not put off";
    inspector.fails = true;
    listener->Send();
    EXPECT_TRUE(log_.Has(L"Exception in Inspector.Send: Application-defined or object-defined error 57"));
    inspector.fails = false;
    listener->Destroy();
    EXPECT_EQ(listener->SetUpdateCountThreshold(3), S_OK) << "its form is gone";
}

TEST_F(ListenerTest, WhenOutlookHasQuitNothingOfItsIsHeldButTheEngineIsKept) {
    SetOfUser(L"EnableToolbar", L"1");
    FakeItem& mail = Mail(kBodyText);
    mail.Events();
    FakeWindow& explorer = Explorer();
    FakeWindow& inspector = Inspector(mail);
    explorer.items = inspector.items;
    const auto first = Follow(explorer);
    const auto second = FollowItem(inspector);
    explorer.Fire(events::kExplorer, events::kActivate);
    inspector.Fire(events::kInspector10, events::kActivate);
    first->Send();
    const com::ComPtr<Application> link = first->objBeaconConnection()->objApplication;
    EXPECT_NE(first->objBeaconConnection()->gToolbar, nullptr);
    // Quitting inside a call to the engine: what is sent just now is not kept either.
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

// A call that is still on its way, or another program, may hold a sender for longer than its listener does.
TEST_F(ListenerTest, ASenderThatOutlivesItsPlaceHasForgottenItsListener) {
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
