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
         L"<person firstname=\"&quot;\" lastname=\"&apos;\" company=\"&lt;\" position=\"&gt;\" email=\"&amp;\" "
         L"docId=\"&\"",
         false, true},
        {[&](Application& link) { return link.SendText(L"low", text, L"d", L"/", L"n"); },
         L"<send_document emphasis=\"low\" doc=\"t\" docId=\"d\" ", true, true},
    };

    Application& link = StartLink();
    for (const auto& one : cases)
        for (const bool automatic : {false, true})
            for (const bool clicked : {false, true})
                for (const bool userIsBusy : {false, true}) {
                    SCOPED_TRACE(com::ToAnsi(one.start) + (automatic ? " automatic" : "") +
                                 (clicked ? " clicked" : "") + (userIsBusy ? " busy" : ""));
                    link.gAutoUpdate = automatic;
                    link.gButtonClicked = clicked;
                    globals::gUserInterrupt = userIsBusy;
                    const bool sent = (!one.gated || automatic || clicked) && !(one.yieldsToTheUser && userIsBusy);
                    EXPECT_EQ(one.send(link).vt, sent ? VT_I4 : VT_EMPTY);
                    const LogLines received = NewMessages();
                    ASSERT_EQ(received.size(), sent ? 1u : 0u);
                    if (sent) EXPECT_THAT(received[0], StartsWith(one.start));
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
    const std::wstring message =
        L"<send_document emphasis=\"high\" doc=\"a&lt;b\" docId=\"d<\" docPath=\"/\" "
        L"docName=\"n\" />";
    EXPECT_THAT(NewLines(), ElementsAre(L"App SendText begin a<b d<", L"xml encode in a<b", L"xml encode out a&lt;b",
                                        L"appsendtext(1)", L"appsendtext(2)", L"App PutMessage begin " + message,
                                        L"* engine PutMessage " + message + L" nothing #", L"App PutMessage end",
                                        L"App SendText end"));
    globals::gUserInterrupt = true;
    text = L"&";
    link.SendText(L"low", text, L"d", L"/", L"n");
    EXPECT_EQ(text, L"&amp;");
    EXPECT_EQ(NewLines().back(), L"appsendtext(1)");
    link.gAutoUpdate = false;
    link.SendText(L"low", text, L"d", L"/", L"n");
    EXPECT_EQ(text, L"&amp;");
    EXPECT_EQ(NewLines(), LogLines());
}

TEST_F(Composers, LogAFailedDeliveryAndLoseTheMessage) {
    Application& link = StartLink();
    link.SendPerson(L"", L"", L"", L"", L"", L"", L"", L"");
    EXPECT_EQ(NewLines().back(), L"App SendPerson End 7");
    engine_->once[L"engine PutMessage"] = [] { com::Raise(57); };
    EXPECT_EQ(link.SendPerson(L"", L"", L"", L"", L"", L"", L"", L"").vt, VT_EMPTY);
    LogLines lines = NewLines();
    EXPECT_EQ(lines.front(), L"App SendPerson Begin");
    EXPECT_EQ(lines.back(), L"App SendPerson End ");
    EXPECT_THAT(lines, Not(Contains(L"App PutMessage end")));

    EXPECT_EQ(com::ToText(link.PutControl(L"c", nullptr, 1)), L"controlled");
    EXPECT_THAT(NewLines(),
                ElementsAre(L"App PutControl begin c", L"* controller PutControl c nothing 1", L"App PutControl end"));
    link.gEngineInterface->ReturnMessageDispatch.Reset();
    link.gControllerInterface->ReturnMessageDispatch.Reset();
    EXPECT_EQ(link.PutMessage(L"m", nullptr, 1).vt, VT_EMPTY);
    EXPECT_EQ(link.PutControl(L"c", nullptr, 1).vt, VT_EMPTY);
    EXPECT_THAT(NewLines(), ElementsAre(L"App PutMessage begin m", L"App PutMessage. Invalid ReturnMessageDispatch",
                                        L"App PutControl begin c", L"App PutControl. Invalid ReturnMessageDispatch"));
    link.Shutdown();
    NewLines();
    link.PutMessage(L"m", nullptr, 1);
    link.PutControl(L"c", nullptr, 1);
    EXPECT_THAT(NewLines(), ElementsAre(L"App PutMessage begin m", L"App PutControl begin c"));
}

}  // namespace
}  // namespace beacon::test
