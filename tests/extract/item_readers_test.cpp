#include "extract/item_readers.h"

#include <optional>

#include "extract/mapi_wrapper.h"
#include "tests/extract/extract_fixture.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

constexpr long kPlain = 1;

class ItemReaders : public Extract {
protected:
    void SetUp() override {
        Extract::SetUp();
        reader_.emplace();
        FakeReader::calls = &calls_;
    }

    void TearDown() override {
        AbandonMapiWrapper();
        FakeReader::calls = nullptr;
        reader_.reset();
        Extract::TearDown();
    }

    long Window() const { return HandleToLong(top_); }

    LogLines calls_;

private:
    std::optional<PublishedReader> reader_;
};

long ReadingFailsWith() {
    const long number = RaisedBy([] { MapiText({}, 1); }).number;
    EXPECT_EQ(RaisedBy([] { MapiTextLimited({}, 1, 1); }).number, number);
    return number;
}

TEST_F(ItemReaders, CreateTheirReaderOnceAndAgainAfterItsEnd) {
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"UseObjectModel", 1);
    for (const int time : {1, 2}) {
        for (int twice = 0; twice < 2; ++twice) InitMapiWrapper();
        EXPECT_EQ(FakeReader::alive, 1) << time;
        EXPECT_TRUE(gUseObjectModel);
        for (int twice = 0; twice < 2; ++twice) UninitMapiWrapper();
        EXPECT_EQ(FakeReader::alive, 0) << time;
        EXPECT_THAT(NewLines(2), ElementsAre(L"InitMapiWrapper Entered", L"UninitMapiWrapper Entered"));
    }
    EXPECT_THAT(calls_, ElementsAre(L"Initialize", L"Uninitialize", L"Initialize", L"Uninitialize"));
}

TEST_F(ItemReaders, RaiseTheErrorOfTheirReaderAndKeepIt) {
    InitMapiWrapper();
    FakeReader::ends = E_FAIL;
    EXPECT_EQ(RaisedBy(UninitMapiWrapper).number, E_FAIL);
    EXPECT_EQ(ReadingFailsWith(), 0) << "the reader stays";
    FakeReader::reads = E_ACCESSDENIED;
    EXPECT_EQ(ReadingFailsWith(), E_ACCESSDENIED);
    AbandonMapiWrapper();
    EXPECT_EQ(FakeReader::alive, 0) << "even if it refuses";
}

TEST_F(ItemReaders, DropAReaderThatHasEnded) {
    constexpr HRESULT kDead = HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    constexpr auto kNotInitialized = static_cast<HRESULT>(0x80040605);

    const struct {
        const char* name;
        HRESULT reads;
        HRESULT ends;
        long left;
    } cases[] = {{"its process has died, and it refuses", kDead, E_FAIL, 1},
                 {"its process has died", kDead, kDead, 0},
                 {"an earlier end was carried out, and its answer lost", kNotInitialized, kNotInitialized, 0}};

    for (const auto& one : cases) {
        InitMapiWrapper();
        FakeReader::reads = one.reads;
        FakeReader::ends = one.ends;
        EXPECT_EQ(RaisedBy([] { MapiText({}, 1); }).number, one.reads) << one.name;
        EXPECT_EQ(FakeReader::alive, one.left) << one.name;
    }
}

TEST_F(ItemReaders, FailToReadWithoutAReader) {
    FakeReader::begins = E_FAIL;
    InitMapiWrapper();
    EXPECT_EQ(FakeReader::alive, 0);
    UninitMapiWrapper();
    EXPECT_THAT(calls_, ElementsAre(L"Initialize"));
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, PublishedReader::kKey);
    InitMapiWrapper();
    EXPECT_EQ(ReadingFailsWith(), com::kNoObject);
}

TEST_F(ItemReaders, KeepTheReaderThatWasCreatedInsideTheCreation) {
    FakeReader::onInitialize = [] { InitMapiWrapper(); };
    InitMapiWrapper();
    EXPECT_EQ(FakeReader::alive, 1);
    EXPECT_THAT(calls_, ElementsAre(L"Initialize", L"Initialize", L"Uninitialize"));
    EXPECT_EQ(ReadingFailsWith(), 0);
}

TEST_F(ItemReaders, ReadABodyFromItsDialogInOutlook2000) {
    EXPECT_EQ(InspectorGetMailItemBody(Window(), kPlain), L"") << "without a dialog";
    Show(9, Editor::Rich);
    const HWND dialog = FindWindowHierarchy(top_, ItemDialogClasses(9));
    log_.Clear();
    EXPECT_EQ(InspectorGetMailItemBody(Window(), kPlain), L"") << "in a window of rich text";
    EXPECT_THAT(log_.Lines(),
                ElementsAre(StartsWith(L"FindWindowHierarchy(0)"), StartsWith(L"FindWindowHierarchy(1)"),
                            L"InspectorGetMailItemBody() hDialog=" + HandleText(dialog),
                            L"InspectorGetMailItemBodySub() called", StartsWith(L"InspectorGetMailItemBodySub(0)"),
                            Step(L"InspectorGetMailItemBodySub(1)", L"AfxWnd", nullptr)));
}

TEST_F(ItemReaders, ReadAnHtmlBodyFromItsDocument) {
    ItemPane& pane = Show(9, Editor::Html);
    const auto read = [&] {
        InspectorGetMailItemBody(Window(), static_cast<long>(Editor::Html));
        return log_.Lines().back();
    };
    LimitDocuments(7);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(8) innerText=[First l]");
    LimitDocuments(-1);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(8) innerText=[]");
    pane.OfferDocument(false);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(9) WindowDOM(hWnd) returned nothing");
    pane_.reset();
    pane_ = ItemPane::ForInspector(top_, 9, Editor::Html);  // not loaded yet: the document has no body
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub: Exception; Object variable or With block variable not set");
}

/// Fields of a contact are never read from a window.
template <auto reader>
std::wstring OfContact(const com::Object& item, long /*window*/) {
    return reader(item);
}

std::wstring Body(const com::Object& item, long window) { return GetMailItemBody(item, window, kPlain); }

TEST_F(ItemReaders, ReadTheirPropertyAndInOutlook2000ThenTheWindowOfAMail) {
    const struct {
        std::wstring (*read)(const com::Object& item, long window);
        const wchar_t* line;
        long tag;
        std::wstring shown;
    } fields[] = {
        {Body, L"GetMailItemBody(1)", 0x1000001E, body_.substr(0, 19)},
        {GetMailItemSenderName, L"GetMailItemSenderName", 0x0C1A001E, L"Ann Lee"},
        {GetMailItemReceivedByName, L"GetMailItemReceivedByName", 0x004E001E, L"Bob Kay"},
        {GetMailItemSubject, L"GetMailItemSubject", 0x0037001E, L"Quarter report"},
        {OfContact<GetContactItemFirstName>, L"GetContactItemFirstName", 0x3A06001F, L""},
        {OfContact<GetContactItemLastName>, L"GetContactItemLastName", 0x3A11001F, L""},
        {OfContact<GetContactItemCompanyName>, L"GetContactItemCompanyName", 0x3A16001F, L""},
        {OfContact<GetContactItemJobTitle>, L"GetContactItemJobTitle", 0x3A17001F, L""},
        {OfContact<GetContactItemEmail>, L"GetContactItemEmail", 0x3003001F, L""},
    };

    const auto item = std::make_shared<FakeItem>(43, L"M1");
    const com::Object given(item.get());
    LimitDocuments(20);
    for (const auto& field : fields) {
        SCOPED_TRACE(testing::Message() << std::hex << field.tag);
        Show(9, Editor::Plain);
        UninitMapiWrapper();
        log_.Clear();
        calls_.clear();
        item->texts[field.tag >> 16] = L"stored";
        EXPECT_EQ(field.read(given, Window()), L"stored");
        const std::wstring limit = field.read == Body ? L" up to 20" : L" up to -1";
        EXPECT_THAT(calls_, ElementsAre(L"Initialize", std::to_wstring(field.tag) + limit));
        EXPECT_THAT(log_.Lines(), ElementsAre(field.line, L"InitMapiWrapper Entered"));
        item->texts[field.tag >> 16].assign(4097, L'x');
        EXPECT_EQ(field.read(given, Window()).size(), field.read == Body ? 20u : 4096u);
        item->texts.clear();
        EXPECT_EQ(field.read(given, Window()), field.shown);
        EXPECT_EQ(field.read(given, 0), L"");
        FakeReader::reads = E_FAIL;
        EXPECT_EQ(field.read(given, Window()), L"");
        FakeReader::reads = S_OK;
        Show(10, Editor::Plain);
        EXPECT_EQ(field.read(given, Window()), L"");
    }
}

}  // namespace
}  // namespace beacon::test
