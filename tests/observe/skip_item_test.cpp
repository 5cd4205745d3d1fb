#include "sender_fixture.h"

namespace beacon::test {
namespace {

class SkipItem : public Sender {
protected:
    struct Decision {
        bool skip = false;
        bool bail = false;
        LogLines lines;  // of SkipItem, level 2
        bool operator==(const Decision&) const = default;

        friend void PrintTo(const Decision& decision, std::ostream* out) {
            *out << (decision.skip ? "skip" : "send") << (decision.bail ? ", bail out" : "");
            for (const std::wstring& line : decision.lines) *out << "\n    " << com::ToAnsi(line);
        }
    };

    Decision Decide(FakeItem* item) {
        log_.Clear();
        Decision decision;
        decision.bail = true;
        decision.skip = sender_->SkipItem(com::Object(static_cast<IDispatch*>(item)), decision.bail, 0);
        for (const std::wstring& line : log_.Lines())
            if (line.starts_with(L"SkipItem")) decision.lines.push_back(line);
        return decision;
    }

    /// The first item after Connect is always sent.
    void UseUpTheFirst() { Decide(nullptr); }

    static constexpr wchar_t kCalled[] = L"SkipItem Called";
    const LogLines all_{kCalled, L"SkipItem Checking for DialogChild", L"SkipItem Checking for MailItem"};

    LogLines AllAnd(const wchar_t* line) const { return {all_[0], all_[1], all_[2], line}; }
};

constexpr wchar_t kText[] = L"The first half of it, the second half.";

TEST_F(SkipItem, BailsOutOfShortBodiesEvenOfTheFirstItem) {
    EXPECT_EQ(Decide(&Mail(L"  twelve chars ")),
              (Decision{true, true, AllAnd(L"SkipItem is True(2): GetMailItemBoby=[  twelve chars ]")}));
    EXPECT_EQ(Decide(&Mail(L"")), (Decision{true, true, AllAnd(L"SkipItem is True(2): GetMailItemBoby=[]")}));
    EXPECT_EQ(Decide(&Mail(L"thirteen char")), (Decision{false, false, all_}));
    EXPECT_EQ(Decide(&Contact()), (Decision{false, false, all_})) << "a contact has no body";
}

TEST_F(SkipItem, SkipsUnchangedItems) {
    FakeItem& mail = Mail(kText);
    FakeItem& contact = Contact();
    UseUpTheFirst();
    EXPECT_EQ(Decide(nullptr), (Decision{true, false, all_})) << "nothing after nothing";
    EXPECT_EQ(Decide(&mail), (Decision{false, false, all_})) << "something after nothing";

    Send(mail);
    EXPECT_EQ(Decide(&mail), (Decision{true, false, AllAnd(L"SkipItem is True(3)")}));
    EXPECT_EQ(Decide(nullptr), (Decision{false, false, all_})) << "nothing after something";
    EXPECT_EQ(Decide(&Mail(kText, L"Lunch", L"M2")), (Decision{false, false, all_})) << "another item";
    mail.texts[kBody] = L"The first half of it, the second HALF.";
    EXPECT_EQ(Decide(&mail), (Decision{true, false, AllAnd(L"SkipItem is True(3)")})) << "far from the middle";
    mail.texts[kBody] = L"The first half of it, THE second half.";
    EXPECT_EQ(Decide(&mail), (Decision{false, false, all_})) << "changed in the middle, if only in its case";
    mail.texts[kBody] = L"The first half of it, http://a.example/ the second half.";
    Send(mail);
    EXPECT_EQ(Decide(&mail), (Decision{true, false, AllAnd(L"SkipItem is True(3)")})) << "as read, not as cleaned";
    mail.texts[kBody] = kText;
    Send(mail);
    mail.entryIdFails = true;
    EXPECT_EQ(Decide(&mail), (Decision{false, false, all_})) << "after an error the item is sent";
    mail.entryIdFails = false;

    Send(contact);
    contact.texts[0x3A06] = L"Anne";
    EXPECT_EQ(Decide(&contact), (Decision{true, false, AllAnd(L"SkipItem is True(4)")}));
    EXPECT_EQ(Decide(&mail), (Decision{false, false, all_})) << "only the last item counts";
}

TEST_F(SkipItem, SendsOneUnchangedItemAfterConnectReSendOrUpdate) {
    FakeItem& mail = Mail(kText);
    Send(mail);
    const Decision unchanged{true, false, AllAnd(L"SkipItem is True(3)")};
    const Decision forced{false, false, all_};
    EXPECT_EQ(Decide(&mail), unchanged);
    sender_->ReSend(false);
    EXPECT_EQ(Decide(&mail), unchanged);
    sender_->ReSend(true);
    EXPECT_EQ(Decide(&mail), forced);
    EXPECT_EQ(Decide(&mail), unchanged);
    // Bailing out does not use up the force.
    sender_->ReSend(true);
    globals::gUserInterrupt = true;
    EXPECT_EQ(Decide(&mail), (Decision{true, true, {kCalled, L"SkipItem is True(0)"}}));
    globals::gUserInterrupt = false;
    EXPECT_EQ(Decide(&mail), forced);

    sender_->OnUpdateClicked();
    EXPECT_TRUE(globals::gSendNow);
    EXPECT_TRUE(sender_->objApplication->gButtonClicked);
    EXPECT_TRUE(sender_->strLastBodySignature.empty());
    EXPECT_EQ(listener_.sendLaters, 4);
    EXPECT_EQ(Decide(&mail), forced);
    EXPECT_EQ(Decide(&mail), forced) << "the signature is gone until the mail is sent again";

    EXPECT_TRUE(sender_->Disconnect());
    sender_->Connect(listener_.handle);
    EXPECT_EQ(Decide(&mail), forced);
}

}  // namespace
}  // namespace beacon::test
