#include "link_fixture.h"

namespace beacon::test {
namespace {

class Composers : public LinkTest {};

TEST_F(Composers, SendOnlyWhenTheFlagsAllowIt) {
    std::wstring text = L"t";

    const struct {
        std::function<_variant_t(Application&)> send;
        const wchar_t* start;
        bool gated;
        bool yieldsToTheUser;
    } cases[] = {
        {[](Application& link) { return link.SendPreamble(L"t", L"d", L"/", L"n"); },
         L"<pre_send_document title=\"n\"  id = ", true, false},
        {[](Application& link) { return link.SendContactPreamble(L"t", L"d", L"/", L"n"); },
         L"<pre_send_document type=\"contact\" title=\"n\"", true, false},
        {[](Application& link) { return link.SendEmailPreamble(L"t", L"d", L"/", L"n", L"s", L"r"); },
         L"<pre_send_document title=\"n\"  id=\"#\"", true, false},
        {[](Application& link) { return link.SendEOD(L"d"); }, L"<eod docId=\"d\" shouldProcess=\"1\"/> nothing #",
         true, false},
        {[](Application& link) { return link.SendEODUsupportedOutlookItem(L"d"); },
         L"<eod docId=\"d\" shouldProcess=\"0\" ", true, false},
        {[](Application& link) { return link.SendPerson(L"\"", L"'", L"<", L">", L"&", L"&", L"/", L"n"); },
         L"<person firstname=\"&quot;\" lastname=\"&apos;\" company=\"&lt;\" position=\"&gt;\" email=\"&amp;\" ", false,
         true},
        {[&](Application& link) { return link.SendText(L"low", text, L"d", L"/", L"n"); },
         L"<send_document emphasis=\"low\" doc=\"t\" docId=\"d\" ", true, true},
    };

    Application& link = StartLink();
    for (const auto& one : cases)
        for (unsigned flags = 0; flags < 8; ++flags) {
            const bool automatic = (flags & 1) != 0, clicked = (flags & 2) != 0, userIsBusy = (flags & 4) != 0;
            SCOPED_TRACE(com::ToAnsi(one.start) + (automatic ? " automatic" : "") + (clicked ? " clicked" : "") +
                         (userIsBusy ? " busy" : ""));
            link.gAutoUpdate = automatic;
            link.gButtonClicked = clicked;
            globals::gUserInterrupt = userIsBusy;
            const bool sent = (!one.gated || automatic || clicked) && !(one.yieldsToTheUser && userIsBusy);
            EXPECT_EQ(one.send(link).vt, sent ? VT_I4 : VT_EMPTY);
            if (sent)
                EXPECT_THAT(NewMessages(), ElementsAre(StartsWith(one.start)));
            else
                EXPECT_THAT(NewMessages(), IsEmpty());
        }
}

TEST_F(Composers, ReportAClickOnceInADocument) {
    Application& link = StartLink();
    link.gButtonClicked = true;
    link.SendPreamble(L"t", L"d", L"/", L"n");
    link.SendEODUsupportedOutlookItem(L"d");
    EXPECT_THAT(NewMessages(), ElementsAre(HasSubstr(L"buttonClicked=\"1\""), HasSubstr(L"<eod ")));
    EXPECT_TRUE(link.gButtonClicked);
    link.SendEOD(L"d");
    EXPECT_FALSE(link.gButtonClicked);
}

TEST_F(Composers, AClickDuringTheEndMessageIsForTheNextDocument) {
    Application& link = StartLink();
    for (const bool automatic : {true, false}) {
        link.gAutoUpdate = automatic;
        link.gButtonClicked = !automatic;
        engine_->once[L"engine PutMessage"] = [&] { link.gButtonClicked = true; };
        link.SendEOD(L"d");
        EXPECT_TRUE(link.gButtonClicked) << automatic;
    }
}

TEST_F(Composers, EncodeTextInPlaceEvenIfItIsNotSent) {
    Application& link = StartLink();
    link.gAutoUpdate = true;
    std::wstring text = L"a<b";
    link.SendText(L"high", text, L"d<", L"/", L"n");
    EXPECT_EQ(text, L"a&lt;b");
    const auto message = StartsWith(L"App PutMessage begin <send_document ");
    EXPECT_THAT(NewLines(),
                ElementsAre(L"App SendText begin a<b d<", L"xml encode in a<b", L"xml encode out a&lt;b",
                            L"appsendtext(1)", L"appsendtext(2)", message,
                            HasSubstr(L" doc=\"a&lt;b\" docId=\"d<\" docPath=\"/\" docName=\"n\" /> nothing #"),
                            L"App PutMessage end", L"App SendText end"));
    globals::gUserInterrupt = true;
    text = L"&";
    for (const bool automatic : {true, false}) {
        link.gAutoUpdate = automatic;
        link.SendText(L"low", text, L"d", L"/", L"n");
        EXPECT_EQ(text, L"&amp;") << "encoded once: only a text that may be sent";
    }
    EXPECT_EQ(NewLines().back(), L"appsendtext(1)");
}

TEST_F(Composers, LogAFailedDeliveryAndLoseTheMessage) {
    Application& link = StartLink();
    const auto sendPerson = [&] { return link.SendPerson(L"", L"", L"", L"", L"", L"", L"", L""); };
    sendPerson();
    EXPECT_EQ(NewLines().back(), L"App SendPerson End 7");
    engine_->once[L"engine PutMessage"] = &Fail;
    EXPECT_EQ(sendPerson().vt, VT_EMPTY);
    const LogLines lines = NewLines();
    EXPECT_EQ(lines.back(), L"App SendPerson End ");
    EXPECT_THAT(lines, Not(Contains(L"App PutMessage end")));
    link.gEngineInterface->ReturnMessageDispatch.Reset();
    EXPECT_EQ(link.PutMessage(L"m", nullptr, 1).vt, VT_EMPTY);
    EXPECT_EQ(com::ToText(link.PutControl(L"c", nullptr, 1)), L"controlled");
    link.DropEngineInterface();
    link.PutMessage(L"m", nullptr, 1);
    EXPECT_THAT(NewLines(), ElementsAre(L"App PutMessage begin m", L"App PutMessage. Invalid ReturnMessageDispatch",
                                        L"App PutControl begin c", L"* controller PutControl c nothing 1",
                                        L"App PutControl end", L"App PutMessage begin m"));
}

}  // namespace
}  // namespace beacon::test
