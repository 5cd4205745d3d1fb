#include "tests/fakes/sender_fixture.h"

namespace beacon::test {
namespace {

class SkipItem : public Sender {
protected:
    /// "send", or "skip" or "bail out" with the reason in the log.
    std::wstring Decide(FakeItem* item) {
        log_.Clear();
        bool bail = true;
        const bool skip = sender_->SkipItem(com::Object(static_cast<IDispatch*>(item)), bail, 0);
        std::wstring decision = !skip ? L"send" : bail ? L"bail out" : L"skip";
        EXPECT_TRUE(skip || !bail);
        const std::wstring reason = L"SkipItem is ";
        for (const std::wstring& line : log_.Lines())
            if (line.starts_with(reason)) decision += L": " + line.substr(reason.size());
        return decision;
    }

    static constexpr wchar_t kSend[] = L"send";
    static constexpr wchar_t kSameMail[] = L"skip: True(3)";
};

constexpr wchar_t kText[] = L"The first half of it, the second half.";

TEST_F(SkipItem, BailsOutOfShortBodiesEvenOfTheFirstItem) {
    EXPECT_EQ(Decide(&Mail(L"  twelve chars ")), L"bail out: True(2): GetMailItemBoby=[  twelve chars ]");
    EXPECT_EQ(Decide(&Mail(L"")), L"bail out: True(2): GetMailItemBoby=[]");
    EXPECT_EQ(Decide(&Mail(L"thirteen char")), kSend);
    EXPECT_EQ(Decide(&Contact()), kSend) << "a contact has no body";
}

TEST_F(SkipItem, SkipsUnchangedItems) {
    FakeItem& mail = Mail(kText);
    FakeItem& contact = Contact();
    EXPECT_EQ(Decide(nullptr), kSend) << "the first item after Connect is always sent";
    EXPECT_EQ(Decide(nullptr), L"skip") << "nothing after nothing";
    EXPECT_EQ(Decide(&mail), kSend) << "something after nothing";

    Send(mail);
    EXPECT_EQ(Decide(&mail), kSameMail);
    EXPECT_EQ(Decide(nullptr), kSend) << "nothing after something";
    EXPECT_EQ(Decide(&Mail(kText, L"Lunch", L"M2")), kSend) << "another item";
    mail.texts[kBody] = L"The first half of it, the second HALF.";
    EXPECT_EQ(Decide(&mail), kSameMail) << "far from the middle";
    mail.texts[kBody] = L"The first half of it, THE second half.";
    EXPECT_EQ(Decide(&mail), kSend) << "changed in the middle, if only in its case";
    mail.texts[kBody] = L"The first half of it, http://a.example/ the second half.";
    Send(mail);
    EXPECT_EQ(Decide(&mail), kSameMail) << "as read, not as cleaned";
    mail.texts[kBody] = kText;
    Send(mail);
    mail.entryIdFails = true;
    EXPECT_EQ(Decide(&mail), kSend) << "after an error the item is sent";
    mail.entryIdFails = false;

    Send(contact);
    contact.texts[0x3A06] = L"Anne";
    EXPECT_EQ(Decide(&contact), L"skip: True(4)");
    EXPECT_EQ(Decide(&mail), kSend) << "only the last item counts";
}

TEST_F(SkipItem, SendsOneUnchangedItemAfterReSendOrUpdate) {
    FakeItem& mail = Mail(kText);
    Send(mail);
    EXPECT_EQ(Decide(&mail), kSameMail);
    sender_->ReSend(false);
    EXPECT_EQ(Decide(&mail), kSameMail);
    sender_->ReSend(true);
    EXPECT_EQ(Decide(&mail), kSend);
    EXPECT_EQ(Decide(&mail), kSameMail);
    // Bailing out does not use up the force.
    sender_->ReSend(true);
    globals::gUserInterrupt = true;
    EXPECT_EQ(Decide(&mail), L"bail out: True(0)");
    globals::gUserInterrupt = false;
    EXPECT_EQ(Decide(&mail), kSend);

    sender_->OnUpdateClicked();
    EXPECT_TRUE(globals::gSendNow);
    EXPECT_TRUE(sender_->objApplication->gButtonClicked);
    EXPECT_TRUE(sender_->strLastBodySignature.empty());
    EXPECT_EQ(listener_.sendLaters, 4);
    EXPECT_EQ(Decide(&mail), kSend);
    EXPECT_EQ(Decide(&mail), kSend) << "the signature is gone until the mail is sent again";
}

}  // namespace
}  // namespace beacon::test
