#include "listener_fixture.h"

namespace beacon::test {
namespace {

TEST_F(ListenerTest, AnExplorerStartsAtItsFirstActivation) {
    FakeWindow& explorer = Explorer();
    const auto listener = Follow<ExplorerListener>(explorer);
    explorer.Fire(events::kExplorer, events::kSelectionChange);
    explorer.Fire(events::kExplorer, events::kViewSwitch);
    const HWND window = static_cast<HWND>(LongToHandle(explorer.Handle()));
    SetWindowTextW(window, L"opening");
    Activate(explorer);
    EXPECT_THAT(services_.forms, IsEmpty()) << "its window cannot be found yet";
    SetWindowTextW(window, L"Inbox");
    services_.failingForms = 2;
    Activate(explorer);
    EXPECT_TRUE(engine_->KnowsNobody()) << "it has no form";
    Activate(explorer);
    ASSERT_EQ(services_.forms.size(), 1u);
    EXPECT_EQ(com::Object(listener.Get()).GetLong(L"hExplorer"), explorer.Handle());
    EXPECT_TRUE(explorer.IsMarked());
    EXPECT_EQ(Form().sends, 1);
    EXPECT_EQ(Form().Connection().Get(), listener->objBeaconConnection().Get());
    Activate(explorer);
    EXPECT_EQ(services_.forms.size(), 1u) << "it started twice";
    explorer.Fire(events::kExplorer, events::kSelectionChange);
    EXPECT_EQ(Form().sends, 2);
    CloseWindow(explorer);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(listener->objBeaconConnection().Get(), nullptr);
}

TEST_F(ListenerTest, AnExplorerSendsItsFirstSelectedItem) {
    FakeWindow& explorer = Explorer();
    Mail(kBodyText, L"First", L"M1");
    Mail(kBodyText, L"Second", L"M2");
    explorer.items = items_;
    const auto listener = Start<ExplorerListener>(explorer);
    NewLines();
    listener->Send();
    EXPECT_THAT(Received(), Contains(L"send_document high First"));
    EXPECT_EQ(items_.front()->OutsideReferences(), 1u) << "the item sent last is held";

    const struct {
        long selected;
        bool sent;
    } counts[] = {{0, false}, {32767, true}, {32768, false}};  // the count must fit the editor type's 16 bits

    for (const auto& [selected, sent] : counts) {
        explorer.selected = selected;
        listener->objBeaconConnection()->ReSend(true);
        NewLines();
        listener->Send();
        EXPECT_EQ(Received().empty(), !sent) << selected;
    }
    CloseWindow(explorer);
}

// Toolbar commands go to the window that was synchronised last.
TEST_F(ListenerTest, AnActivationMakesTheWindowTheOneThatGetsToolbarCommands) {
    SetOfUser(L"EnableToolbar", L"1");
    FakeWindow& explorer = Explorer();
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    const auto first = Follow<ExplorerListener>(explorer);
    const auto second = Follow<InspectorListener>(inspector);
    for (const char* time : {"first activation", "later activation"}) {
        Activate(explorer);
        EXPECT_EQ(CToolbar::LastSynchronisedWindow(), explorer.Handle()) << time;
        Activate(inspector);
        EXPECT_EQ(CToolbar::LastSynchronisedWindow(), inspector.Handle()) << time;
    }
    EXPECT_TRUE(Form().toolbarTimerRuns);
    second->StopToolbarTimer();
    EXPECT_FALSE(Form().toolbarTimerRuns);
    first->Destroy();
    second->Destroy();
    second->StopToolbarTimer();  // without a form
}

// Outlook raises Activate for the window that it is showing, also inside a call of the listener's own start.
TEST_F(ListenerTest, AnActivationInsideTheStartDoesNotStartASecondTime) {
    FakeWindow& explorer = Explorer();
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    engine_->once[L"engine Connect"] = [&] { Activate(explorer); };
    const auto first = Start<ExplorerListener>(explorer);
    engine_->once[L"engine Connect"] = inspector.once = [&] { Activate(inspector); };
    const auto second = Start<InspectorListener>(inspector);
    EXPECT_EQ(services_.forms.size(), 2u);
    EXPECT_EQ(services_.formsOfInspectors, 1);
    EXPECT_EQ(engine_->controllerSide->id, inspector.Handle());
    second->Destroy();
    first->Destroy();
}

TEST_F(ListenerTest, AnInspectorThatClosesWhileItsItemIsReadReleasesTheItem) {
    FakeItem& mail = Mail(kBodyText);
    FakeWindow& inspector = Inspector(mail);
    const auto listener = Follow<InspectorListener>(inspector);
    inspector.once = [&] { inspector.once = [&] { CloseWindow(inspector); }; };  // in the second reading
    listener->Init(inspector.Handle());
    EXPECT_EQ(mail.OutsideReferences() + mail.Sinks(), 0u);
    EXPECT_THAT(services_.forms, IsEmpty());
}

TEST_F(ListenerTest, AnInspectorFollowsMailsAndContactsOnly) {
    FakeItem& appointment = *items_.emplace_back(std::make_shared<FakeItem>(kAppointment, L"A1"));
    FakeWindow& inspector = Inspector(appointment);
    const auto listener = Start<InspectorListener>(inspector);
    EXPECT_TRUE(log_.Has(L"InspectorListener.Init - Unsupported Item: Class=26"));
    EXPECT_THAT(services_.forms, IsEmpty());
    FakeItem& contact = Contact();
    inspector.items = {items_.back()};
    Activate(inspector);
    ASSERT_EQ(services_.forms.size(), 1u);
    EXPECT_EQ(com::Object(listener.Get()).GetLong(L"hInspector"), inspector.Handle());
    EXPECT_EQ(Form().sends, 1);
    EXPECT_EQ(contact.Sinks(), 1u);
    EXPECT_EQ(appointment.Sinks(), 0u);
    log_.Clear();
    Activate(inspector);
    inspector.Fire(events::kInspector10, events::kDeactivate);
    EXPECT_THAT(log_.Lines(), ElementsAre(L"Inspector Activate called: ?? ?? - Message",
                                          L"Inspector deactivate called: ?? ?? - Message hWnd=" +
                                              std::to_wstring(inspector.Handle())));
    contact.Fire(events::kItem10, events::kItemClose);
    EXPECT_EQ(services_.removed, 1);
    EXPECT_EQ(contact.Sinks(), 0u);
}

TEST_F(ListenerTest, ConnectingAgainLeavesTheNewLinkConnected) {
    FakeWindow& explorer = Explorer();
    const auto listener = Start<ExplorerListener>(explorer);
    listener->Connect();
    EXPECT_EQ(engine_->engineSide->id, explorer.Handle());
    EXPECT_EQ(engine_->controllerSide->id, explorer.Handle());
    engine_->once[L"engine Connect"] = [&] { listener->Connect(); };
    listener->Connect();
    EXPECT_EQ(Form().Connection().Get(), listener->objBeaconConnection().Get()) << "connected inside that call";
    listener->Destroy();
}

TEST_F(ListenerTest, WithoutAWindowItReadsNoSelection) {
    const auto listener = Follow<ExplorerListener>(Explorer());
    for (const long version : {9L, 11L}) {
        globals::gOutlookVersion = version;
        log_.Clear();
        EXPECT_EQ(listener->GetSelected(), L"");
        EXPECT_THAT(log_.Lines(), ElementsAre(L"Explorer GetSelected() called")) << "the desktop is searched";
    }
}

TEST_F(ListenerTest, AnInterruptedSendComesAgainInThirtySeconds) {
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    const auto listener = Start<InspectorListener>(inspector);
    NewLines();
    globals::gUserInterrupt = true;
    listener->Send();
    EXPECT_EQ(Form().threshold, 15) << "ticks of two seconds";
    EXPECT_THAT(Received(), IsEmpty());
    globals::gUserInterrupt = false;
    Form().threshold = -1;
    listener->Send();
    EXPECT_EQ(Received().back(), L"eod");
    inspector.items = {std::make_shared<FakeItem>(kAppointment, L"A1")};
    listener->Send();
    EXPECT_EQ(Form().threshold, -1) << "neither a sent item nor an appointment is sent later";
    listener->Destroy();
    EXPECT_EQ(listener->SetUpdateCountThreshold(3), S_OK) << "its form is gone";
}

TEST_F(ListenerTest, AFailedSendIsLogged) {
    FakeWindow& inspector = Inspector(Mail(kBodyText));
    const auto listener = Start<InspectorListener>(inspector);
    globals::gOutlookVersion = 12;
    inspector.once = [&] { inspector.once = [] { com::Raise(57); }; };  // the item can be read, its editor cannot
    listener->Send();
    EXPECT_TRUE(log_.Has(L"Exception in Inspector.Send: Application-defined or object-defined error 57"));
    EXPECT_TRUE(log_.Has(L"Inspector GetSelectedEx() called")) << "from Outlook 2007 on, by one editor only";
    listener->Destroy();
}

}  // namespace
}  // namespace beacon::test
