#include "tests/fakes/sender_fixture.h"

namespace beacon::test {
namespace {

constexpr wchar_t kThreeLines[] = L"we can meet on the fifth floor\rsee you\rBo";

void ReadAllProperties(IDispatch* object) {
    com::ComPtr<ITypeInfo> type;
    ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), S_OK);
    FUNCDESC* function = nullptr;
    for (UINT i = 0; type->GetFuncDesc(i, &function) == S_OK; ++i) {
        DISPPARAMS none{};
        _variant_t value;
        if (function->invkind == INVOKE_PROPERTYGET)
            EXPECT_EQ(object->Invoke(function->memid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                     &value, nullptr, nullptr),
                      S_OK)
                << function->memid;
        type->ReleaseFuncDesc(function);
    }
}

TEST_F(Sender, LogsTheStepsOfAMail) {
    Send(Mail(kThreeLines, L"RE: Re: Lunch"), L"floor?");
    LogLines marks;
    for (const std::wstring& line : log_.Lines())
        if (line.starts_with(L"S")) marks.push_back(line);
    EXPECT_THAT(marks,
                ElementsAre(L"SendOutlookItem called: ItemClass=43 Selected=[floor?]", L"SendMail(1)",
                            L"SkipItem Called", L"SkipItem Checking for DialogChild", L"SkipItem Checking for MailItem",
                            L"SendMail(2)", L"SendMail(3)", L"SendMail(4)", L"SendBodyText(1)", L"SendBodyText(2)",
                            L"SendBodyText(3)", L"SendBodyText(4)", L"SendBodyText(2)", L"SendBodyText(3)",
                            L"SendBodyText(4)", L"SendBodyText(2)", L"SendBodyText(3)", L"SendBodyText(4)"));
}

TEST_F(Sender, UserInputEndsADocumentEarlyWithItsEndMessage) {
    const LogLines whole{L"pre_send_document", L"send_document high Lunch",
                         L"send_document medium we can meet on the fifth floor"};
    for (const int message : {1, 2, 3}) {
        AtMessage(message, [] { globals::gUserInterrupt = true; });
        EXPECT_FALSE(Send(Mail(kThreeLines, L"Lunch", std::to_wstring(message))));
        LogLines expected(whole.begin(), whole.begin() + message);
        expected.push_back(L"eod");
        EXPECT_EQ(Received(), expected);
        globals::gUserInterrupt = false;
    }
    EXPECT_FALSE(Send(*items_.back()));
    EXPECT_THAT(Received(), IsEmpty()) << "an interrupted document counts as sent";
}

TEST_F(Sender, SurvivesTheEndOfItsWindowDuringASend) {
    FakeItem& mail = Mail(kThreeLines);
    FakeItem& contact = Contact();
    const std::pair<FakeItem&, int> itemsAndMessages[] = {{mail, 1}, {mail, 3}, {mail, 6}, {contact, 2}, {contact, 9}};
    for (const auto& [item, message] : itemsAndMessages) {
        AtMessage(message, [&] { EXPECT_TRUE(sender_->Disconnect()); });
        Send(item);
        EXPECT_EQ(sender_->objApplication, nullptr) << message;
        EXPECT_EQ(Received().back(), L"exit") << "nothing follows the exit message";
        EXPECT_EQ(item.OutsideReferences(), 0u) << message;
        Connect();
    }
    // The controller's order ends the link only; the rest of the document is not sent.
    AtMessage(2, [&] { sender_->objApplication->ShutdownNoEnd(); });
    Send(Mail(kThreeLines));
    EXPECT_EQ(Received().back(), L"exit");
    EXPECT_NE(sender_->objApplication, nullptr);
}

TEST_F(Sender, ConnectsWithAToolbarIfTheUserWantsOne) {
    const struct {
        const wchar_t* value;
        bool toolbar;
        LogLines lines;  // after the line of every connection
    } cases[] = {
        {L"0", false, {L"*** BeaconConnection: Connect: Toolbar not enabled, not showing it"}},
        {L"", false, {}},
        {L"2", false, {}},
        {L"1", true, {L"WC.Connect: Creating gToolbar", L"WC.Connect:  Setting gToolbar.gConnect = Me"}},
        {L"1", true, {}},
    };

    for (const auto& [value, toolbar, lines] : cases) {
        EXPECT_TRUE(sender_->Disconnect());
        log_.Clear();
        SetOfUser(L"EnableToolbar", value);
        sender_->Connect(listener_.handle);
        LogLines expected{L"BeaconConnection.Connect"};
        expected.insert(expected.end(), lines.begin(), lines.end());
        EXPECT_EQ(log_.Lines(), expected);
        EXPECT_EQ(sender_->gToolbar != nullptr, toolbar);
        EXPECT_NE(sender_->objApplication, nullptr);
    }
    EXPECT_EQ(services_.hooks, 1 + static_cast<int>(std::size(cases)));
}

TEST_F(Sender, MakesNoToolbarWhenOutlookQuitsInTheMeantime) {
    SetOfUser(L"EnableToolbar", L"1");
    engine_->once[L"engine Connect"] = [&] { sender_->ReleaseOutlook(); };
    sender_->Connect(listener_.handle);
    EXPECT_NE(sender_->objApplication, nullptr);
    EXPECT_EQ(sender_->gToolbar, nullptr);
}

TEST_F(Sender, DisconnectFailsWhileTheReaderRefusesAndSucceedsLater) {
    FakeItem& mail = Mail(kThreeLines);
    Send(mail);
    EXPECT_EQ(mail.OutsideReferences(), 1u);
    FakeReader::ends = E_FAIL;
    EXPECT_FALSE(sender_->Disconnect());
    EXPECT_EQ(log_.Lines(1).back(), L"BeaconConnection.Disconnect Removing objects");
    ASSERT_NE(sender_->objApplication, nullptr);
    EXPECT_FALSE(sender_->objApplication->gAppAdapterStarted) << "the engine has been told";
    EXPECT_FALSE(sender_->Disconnect());
    FakeReader::ends = S_OK;
    EXPECT_TRUE(sender_->Disconnect());
    EXPECT_EQ(log_.Lines(1).back(), L"BeaconConnection.Disconnect end");
    EXPECT_EQ(mail.OutsideReferences(), 0u);
    EXPECT_EQ(sender_->objApplication, nullptr);
    EXPECT_FALSE(sender_->Disconnect()) << "there is no link left to shut down";
}

TEST_F(Sender, SendsNothingWithoutAListener) {
    sender_->SetListener(nullptr);
    EXPECT_FALSE(Send(Mail(kThreeLines)));
    EXPECT_THAT(Received(), IsEmpty());
    VARIANT_BOOL force = VARIANT_TRUE;
    EXPECT_EQ(sender_->ReSend(&force), S_OK);
    EXPECT_EQ(log_.Lines(1), LogLines{L"Start ReSend(bForce=True)"});
    long handle = 0;
    EXPECT_EQ(sender_->GetHwnd(&handle), static_cast<HRESULT>(0x800A005B));
}

TEST_F(Sender, ALinkForgetsTheSenderThatDropsIt) {
    const auto check = [](const char* how, BeaconConnection& sender, const auto& drop) {
        const com::ComPtr<Application> link = sender.objApplication;
        drop();
        EXPECT_EQ(link->gBeaconConnection, nullptr) << how;
        link->Update();
    };
    check("connected again", *sender_.Get(), [&] { sender_->Connect(listener_.handle); });
    check("taken away", *sender_.Get(), [&] { EXPECT_EQ(sender_->put_objApplication(nullptr), S_OK); });
    auto shortLived = com::MakeObject<BeaconConnection>(services_);
    shortLived->Connect(listener_.handle);
    check("ended", *shortLived.Get(), [&] { shortLived.Reset(); });
}

TEST_F(Sender, AToolbarForgetsTheSenderThatDropsIt) {
    SetOfUser(L"EnableToolbar", L"1");
    sender_->Connect(listener_.handle);
    const com::ComPtr<CToolbar> toolbar = sender_->gToolbar;
    com::ComPtr<IDispatch> owner;
    EXPECT_EQ(toolbar->get_gConnect(&owner), S_OK);
    EXPECT_EQ(owner.Get(), sender_.Get());
    EXPECT_EQ(sender_->put_gToolbar(toolbar.Get()), E_INVALIDARG) << "it would not serve this sender";
    EXPECT_NE(sender_->gToolbar, nullptr);
    EXPECT_EQ(sender_->put_gToolbar(nullptr), S_OK);
    EXPECT_EQ(sender_->gToolbar, nullptr);
    owner.Reset();
    EXPECT_EQ(toolbar->get_gConnect(&owner), S_OK);
    EXPECT_EQ(owner.Get(), nullptr);

    auto shortLived = com::MakeObject<BeaconConnection>(services_);
    shortLived->Connect(listener_.handle);
    const com::ComPtr<CToolbar> left = shortLived->gToolbar;
    shortLived.Reset();
    EXPECT_EQ(left->get_gConnect(&owner), S_OK);
    EXPECT_EQ(owner.Get(), nullptr) << "ended";
}

TEST_F(Sender, ConvertsTheArgumentsOfItsMembers) {
    IDispatch* mail = &Mail(kThreeLines);
    BSTR text = SysAllocString(L"a<b & more");
    VARIANT_BOOL bail = VARIANT_TRUE;
    short editor = 0;
    EXPECT_EQ(sender_->SendOutlookItem(&mail, &text, &bail, &editor), S_OK);
    EXPECT_EQ(bail, VARIANT_FALSE);
    EXPECT_EQ(com::ToText(text), L"a&lt;b &amp; more") << "the engine link leaves the encoded text";
    SysFreeString(text);
    IDispatch* nothing = nullptr;
    EXPECT_EQ(sender_->SendOutlookItem(&nothing, nullptr, &bail, nullptr), S_OK);
    EXPECT_EQ(log_.Lines().back(), L"SendOutlookItem called: ItemClass=0 Selected=[]");
    VARIANT none;
    none.vt = VT_BSTR;  // [out] arguments are not initialised before the call
    _variant_t noItem(L"no item");
    EXPECT_EQ(sender_->SkipItem(&noItem, &bail, &editor, &none), static_cast<HRESULT>(0x800A01A8));
    EXPECT_EQ(none.vt, VT_EMPTY);
    globals::gOutlookVersion = 9;  // there, the editor's window is read if the body is empty
    mail = &Mail({});
    editor = 1;
    EXPECT_EQ(sender_->SendMail(&mail, nullptr, &bail, &editor), S_OK);
    EXPECT_TRUE(log_.Has(L"GetMailItemBody(3)"));
}

TEST_F(Sender, CanBeCalledByNameAsItsLinkAndSinks) {
    const com::Object sender(sender_.Get());
    EXPECT_EQ(sender.GetLong(L"GetHwnd"), Handle());
    const com::Object link = sender.GetObject(L"objApplication");
    EXPECT_EQ(link.GetLong(L"gAppHwnd"), Handle());
    EXPECT_EQ(link.GetObject(L"gControllerInterface").GetLong(L"id"), Handle());
    EXPECT_EQ(link.GetObject(L"gEngineInterface").GetLong(L"id"), Handle());
    _variant_t uninitialised;
    uninitialised.vt = VT_ILLEGAL;
    EXPECT_EQ(sender_->get_gContextString(&uninitialised), S_OK);
    long window = 0;
    EXPECT_EQ(sender_->Connect(&window), S_OK);
    EXPECT_EQ(sender.GetLong(L"hWnd"), 0);
}

TEST_F(Sender, EachPropertyOfItsObjectsCanBeRead) {
    SetOfUser(L"EnableToolbar", L"1");
    sender_->Connect(listener_.handle);
    ReadAllProperties(sender_.Get());
    ReadAllProperties(sender_->gToolbar.Get());
    ReadAllProperties(sender_->objApplication.Get());
    sender_->SetListener(nullptr);
    ReadAllProperties(sender_.Get());
}

}  // namespace
}  // namespace beacon::test
