#include "link_fixture.h"

namespace beacon::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class Composers : public LinkTest {
protected:
    /// The messages that reached the engine since the last call.
    LogLines Received() {
        LogLines received;
        for (const std::wstring& line : NewLines()) {
            const std::wstring prefix = L"* engine PutMessage ";
            if (line.starts_with(prefix)) received.push_back(line.substr(prefix.size()));
        }
        return received;
    }
};

TEST_F(Composers, AreGatedByTheFlags) {
    std::wstring text = L"t";

    struct Case {
        const char* name;
        std::function<_variant_t(Application&)> send;
        bool gated;
        bool yieldsToTheUser;
    };

    const Case cases[] = {
        {"preamble", [](Application& link) { return link.SendPreamble(L"t", L"d", L"/", L"n"); }, true, false},
        {"contact", [](Application& link) { return link.SendContactPreamble(L"t", L"d", L"/", L"n"); }, true, false},
        {"mail", [](Application& link) { return link.SendEmailPreamble(L"t", L"d", L"/", L"n", L"s", L"r"); }, true,
         false},
        {"eod", [](Application& link) { return link.SendEOD(L"d"); }, true, false},
        {"unsupported", [](Application& link) { return link.SendEODUsupportedOutlookItem(L"d"); }, true, false},
        {"person", [](Application& link) { return link.SendPerson(L"f", L"l", L"c", L"p", L"e", L"d", L"/", L"n"); },
         false, true},
        {"text", [&](Application& link) { return link.SendText(L"low", text, L"d", L"/", L"n"); }, true, true},
    };
    Application& link = StartLink();
    for (const Case& one : cases) {
        for (int flags = 0; flags < 8; ++flags) {
            link.gAutoUpdate = (flags & 1) != 0;
            link.gButtonClicked = (flags & 2) != 0;
            globals::gUserInterrupt = (flags & 4) != 0;
            const bool expected = (!one.gated || (flags & 3) != 0) && (!one.yieldsToTheUser || (flags & 4) == 0);
            const _variant_t result = one.send(link);
            EXPECT_EQ(Received().size(), expected ? 1u : 0u) << one.name << " with flags " << flags;
            EXPECT_EQ(result.vt, expected ? VT_I4 : VT_EMPTY) << one.name;
        }
    }
}

TEST_F(Composers, ReportOneClickUntilTheEndOfTheDocument) {
    Application& link = StartLink();
    link.gButtonClicked = true;
    link.SendPreamble(L"another title", L"d", L"/", L"n");
    link.SendEODUsupportedOutlookItem(L"d");
    EXPECT_TRUE(link.gButtonClicked);
    link.SendEOD(L"d");
    EXPECT_FALSE(link.gButtonClicked);
    const LogLines level2 = log_.Lines(2);
    link.gAutoUpdate = true;
    link.SendPreamble(L"", L"d", L"/", L"n");
    EXPECT_THAT(Received(),
                ElementsAre(L"<pre_send_document title=\"n\"  id = \"#\"  refresh=\"true\"  docId=\"d\"  docPath=\"/\" "
                            L"docName=\"n\" spanCnt=\"100\"  buttonClicked=\"1\" /> nothing #",
                            L"<eod docId=\"d\" shouldProcess=\"0\" reasonNoProcess=\"3\"/> nothing #",
                            L"<eod docId=\"d\" shouldProcess=\"1\"/> nothing #",
                            L"<pre_send_document title=\"n\"  id = \"#\"  refresh=\"true\"  docId=\"d\"  docPath=\"/\" "
                            L"docName=\"n\" spanCnt=\"100\"  buttonClicked=\"0\" /> nothing #"));
    EXPECT_EQ(level2, LogLines{L"SendEODUnsupportedOutlookItem called"});
}

TEST_F(Composers, AClickInsideTheEndOfADocumentIsTheNextOnes) {
    Application& link = StartLink();
    for (const bool automatic : {true, false}) {
        link.gAutoUpdate = automatic;
        link.gButtonClicked = !automatic;
        engine_->once[L"engine PutMessage"] = [&] { link.gButtonClicked = true; };
        link.SendEOD(L"d");
        EXPECT_TRUE(link.gButtonClicked) << automatic;
    }
}

TEST_F(Composers, TextIsEncodedInPlaceAlsoWhenItIsHeldBack) {
    Application& link = StartLink();
    link.gAutoUpdate = true;
    std::wstring text = L"a<b";
    link.SendText(L"high", text, L"d<", L"/", L"n");
    EXPECT_EQ(text, L"a&lt;b");
    EXPECT_THAT(NewLines(),
                ElementsAre(L"App SendText begin a<b d<", L"xml encode in a<b", L"xml encode out a&lt;b",
                            L"appsendtext(1)", L"appsendtext(2)",
                            L"App PutMessage begin <send_document emphasis=\"high\" doc=\"a&lt;b\" docId=\"d<\" "
                            L"docPath=\"/\" docName=\"n\" />",
                            L"* engine PutMessage <send_document emphasis=\"high\" doc=\"a&lt;b\" docId=\"d<\" "
                            L"docPath=\"/\" docName=\"n\" /> nothing #",
                            L"App PutMessage end", L"App SendText end"));
    globals::gUserInterrupt = true;
    text = L"&";
    link.SendText(L"low", text, L"d", L"/", L"n");
    EXPECT_EQ(text, L"&amp;");
    EXPECT_EQ(NewLines().back(), L"appsendtext(1)");
    link.gAutoUpdate = false;
    text = L"&";
    link.SendText(L"low", text, L"d", L"/", L"n");
    EXPECT_EQ(text, L"&");
    EXPECT_EQ(NewLines(), LogLines());
}

TEST_F(Composers, PersonsLogTheirResult) {
    Application& link = StartLink();
    link.SendPerson(L"A\"", L"", L"", L"", L"", L"d", L"/", L"n");
    const LogLines lines = NewLines();
    EXPECT_EQ(lines.front(), L"App SendPerson Begin");
    EXPECT_EQ(lines.back(), L"App SendPerson End 7");
    engine_->once[L"engine PutMessage"] = [] { com::Raise(57); };
    EXPECT_EQ(link.SendPerson(L"", L"", L"", L"", L"", L"", L"", L"").vt, VT_EMPTY);
    EXPECT_EQ(NewLines().back(), L"App SendPerson End ");
}

TEST_F(Composers, WithoutAPeerMessagesAreDroppedAndLogged) {
    Application& link = StartLink();
    EXPECT_EQ(link.PutMessage(L"m", nullptr, 1), _variant_t(7L));
    EXPECT_EQ(com::ToText(link.PutControl(L"c", nullptr, 1)), L"controlled");
    NewLines();
    link.gEngineInterface->ReturnMessageDispatch.Reset();
    link.gControllerInterface->ReturnMessageDispatch.Reset();
    EXPECT_EQ(link.PutMessage(L"m", nullptr, 1).vt, VT_EMPTY);
    EXPECT_EQ(link.PutControl(L"c", nullptr, 1).vt, VT_EMPTY);
    EXPECT_THAT(NewLines(), ElementsAre(L"App PutMessage begin m", L"App PutMessage. Invalid ReturnMessageDispatch",
                                        L"App PutControl begin c", L"App PutControl. Invalid ReturnMessageDispatch"));
    link.Shutdown();
    NewLines();
    EXPECT_EQ(link.PutMessage(L"m", nullptr, 1).vt, VT_EMPTY);
    EXPECT_EQ(link.PutControl(L"c", nullptr, 1).vt, VT_EMPTY);
    EXPECT_THAT(NewLines(), ElementsAre(L"App PutMessage begin m", L"App PutControl begin c"));
}

TEST_F(Composers, UpdateReSendsByForce) {
    Application& link = MakeLink();
    link.Update();
    link.ForceUpdate();
    link.gBeaconConnection = nullptr;
    link.Update();
    EXPECT_THAT(NewLines(), ElementsAre(L"* host re-sends 1"));
}

}  // namespace
}  // namespace beacon::test
