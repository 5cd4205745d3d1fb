#include "extract/item_readers.h"

#include <mapi_prop.h>

#include "com/class_factory.h"
#include "com/dual.h"
#include "extract/mapi_wrapper.h"
#include "extract/window_search.h"
#include "tests/extract/extract_fixture.h"
#include "tests/fakes/raised_by.h"

namespace beacon::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr long kPlain = 1;
constexpr long kHtml = 2;
constexpr wchar_t kCalled[] = L"InspectorGetMailItemBodySub() called";

/// The external property reader, which a test tells what to find and what to refuse.
class PropertyReader final : public com::Dual<IMAPIPropWrapper, 0> {
public:
    PropertyReader() { ++alive; }

    ~PropertyReader() override { --alive; }

    STDMETHODIMP Initialize() override { return Note(L"Initialize", initialized); }

    STDMETHODIMP Uninitialize() override { return Note(L"Uninitialize", uninitialized); }

    STDMETHODIMP GetStringProperty(VARIANT given, long tag, VARIANT* value) override {
        item = given.pdispVal;
        *value = com::FromText(text).Detach();
        return Note(std::to_wstring(tag), read);
    }

    STDMETHODIMP GetStringPropertyLimited(VARIANT given, long tag, long most, BSTR* value) override {
        item = given.pdispVal;
        *value = com::NewBstr(text);
        return Note(std::to_wstring(tag) + L" up to " + std::to_wstring(most), read);
    }

    static inline long alive = 0;
    static inline LogLines calls;
    static inline HRESULT initialized, uninitialized, read;
    static inline std::wstring text;
    static inline IDispatch* item = nullptr;

private:
    static HRESULT Note(const std::wstring& call, HRESULT answer) {
        calls.push_back(call);
        return answer;
    }
};

/// The reader's class, registered in this process.
class ItemReaders : public Extract {
protected:
    void SetUp() override {
        Extract::SetUp();
        PropertyReader::calls.clear();
        PropertyReader::text.clear();
        PropertyReader::initialized = PropertyReader::uninitialized = PropertyReader::read = S_OK;
        const auto id = __uuidof(MAPIPropWrapper);
        wchar_t name[40];
        StringFromGUID2(id, name, 40);
        SetRegString(HKEY_LOCAL_MACHINE, kKey + std::wstring(L"\\CLSID"), L"", name);
        const auto factory =
            com::MakeClassFactory([] { return com::ComPtr<IUnknown>(com::MakeObject<PropertyReader>().Get()); });
        com::Check(CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_));
    }

    void TearDown() override {
        AbandonMapiWrapper();
        CoRevokeClassObject(registration_);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kKey);
        Extract::TearDown();
    }

    long Window() const { return HandleToLong(top_); }

    static constexpr wchar_t kKey[] = L"Software\\Classes\\Mapiprop.MAPIPropWrapper";

private:
    DWORD registration_ = 0;
};

using PropertyReaders = ItemReaders;

long ReadingFailsWith() {
    const long number = RaisedBy([] { MapiText({}, 1); }).number;
    EXPECT_EQ(RaisedBy([] { MapiTextLimited({}, 1, 1); }).number, number);
    return number;
}

TEST_F(PropertyReaders, IsMadeOnceAndAgainAfterItsEnd) {
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"UseObjectModel", 1);
    for (const int time : {1, 2}) {
        InitMapiWrapper();
        InitMapiWrapper();
        EXPECT_EQ(PropertyReader::alive, 1) << time;
        EXPECT_TRUE(gUseObjectModel);
        UninitMapiWrapper();
        UninitMapiWrapper();
        EXPECT_EQ(PropertyReader::alive, 0) << time;
    }
    EXPECT_THAT(PropertyReader::calls, ElementsAre(L"Initialize", L"Uninitialize", L"Initialize", L"Uninitialize"));
    EXPECT_THAT(NewLines(2), ElementsAre(L"InitMapiWrapper Entered", L"UninitMapiWrapper Entered",
                                         L"InitMapiWrapper Entered", L"UninitMapiWrapper Entered"));
}

TEST_F(PropertyReaders, AReaderThatRefusesToEndIsKept) {
    InitMapiWrapper();
    PropertyReader::uninitialized = E_ACCESSDENIED;
    EXPECT_EQ(RaisedBy(UninitMapiWrapper).number, E_ACCESSDENIED);
    EXPECT_EQ(ReadingFailsWith(), 0);
    PropertyReader::read = E_FAIL;
    EXPECT_EQ(ReadingFailsWith(), E_FAIL);
    AbandonMapiWrapper();
    EXPECT_EQ(PropertyReader::alive, 0) << "whatever it answers";
    EXPECT_EQ(ReadingFailsWith(), com::kNoObject);
}

TEST_F(PropertyReaders, AReaderThatRefusesToBeginOrIsNotThereIsNone) {
    PropertyReader::initialized = E_FAIL;
    InitMapiWrapper();
    EXPECT_EQ(PropertyReader::alive, 0);
    EXPECT_EQ(ReadingFailsWith(), com::kNoObject);
    UninitMapiWrapper();
    EXPECT_THAT(PropertyReader::calls, ElementsAre(L"Initialize"));
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kKey);
    InitMapiWrapper();
    EXPECT_EQ(ReadingFailsWith(), com::kNoObject);
}

class ItemWindows : public ItemReaders, public testing::WithParamInterface<std::tuple<long, Editor>> {};

INSTANTIATE_TEST_SUITE_P(VersionsAndEditors, ItemWindows, kWindowKinds);

TEST_P(ItemWindows, GiveTheirBody) {
    const auto& [version, editor] = GetParam();
    Show(version, editor);
    EXPECT_EQ(InspectorGetMailItemBody(Window(), static_cast<long>(editor)), body_);
    LimitDocuments(5);
    // A control's text loses one place to its terminating character.
    const size_t most = editor == Editor::Html && version < 12 ? 5 : 4;
    EXPECT_EQ(InspectorGetMailItemBody(Window(), static_cast<long>(editor)), body_.substr(0, most));
}

TEST_F(ItemReaders, ABodyIsLookedForAsTheLogSays) {
    const std::wstring dialogStep = L"FindWindowHierarchy(0) FindWindowEx(hWnd, 0, AfxWnd, vbNullString) returned ";
    globals::gOutlookVersion = 9;
    EXPECT_EQ(InspectorGetMailItemBody(Window(), kPlain), L"");
    EXPECT_THAT(log_.Lines(), ElementsAre(dialogStep + L"0", L"InspectorGetMailItemBody() hDialog=0"));

    Show(9, Editor::Rich);
    const HWND outer = FindWindowExA(top_, nullptr, "AfxWnd", nullptr);
    const HWND dialog = FindWindowExA(outer, nullptr, kDialogClass, nullptr);
    const HWND around = FindWindowExA(dialog, nullptr, "AfxWnd", nullptr);
    log_.Clear();
    EXPECT_EQ(InspectorGetMailItemBody(Window(), kPlain), L"");
    EXPECT_THAT(log_.Lines(),
                ElementsAre(dialogStep + HandleText(outer),
                            L"FindWindowHierarchy(1) FindWindowEx(hWnd, 0, #32770, vbNullString) returned " +
                                HandleText(dialog),
                            L"InspectorGetMailItemBody() hDialog=" + HandleText(dialog), kCalled,
                            L"InspectorGetMailItemBodySub(0) FindWindowEx(hWnd, 0, AfxWnd, vbNullString) returned " +
                                HandleText(around),
                            L"InspectorGetMailItemBodySub(1) FindWindowEx(hWnd, 0, AfxWnd, vbNullString) returned 0"));
}

TEST_F(ItemReaders, AnHtmlBodyIsItsDocuments) {
    ItemPane& pane = Show(9, Editor::Html);
    const auto read = [&] {
        log_.Clear();
        InspectorGetMailItemBody(Window(), kHtml);
        return log_.Lines().back();
    };
    LimitDocuments(7);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(8) innerText=[First l]");
    LimitDocuments(-1);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(8) innerText=[]");
    pane.OfferDocument(false);
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub(9) WindowDOM(hWnd) returned nothing");
    pane_.reset();
    pane_ = ItemPane::ForInspector(top_, 9, Editor::Html);  // its page is not loaded yet: the document has no body
    EXPECT_EQ(read(), L"InspectorGetMailItemBodySub: Exception; Object variable or With block variable not set");
}

TEST_F(ItemReaders, AMailsBodyIsReadFromItsWindowInOutlook2000Only) {
    const auto item = std::make_shared<standin::AutomationObject>(L"item");
    const com::Object given(item.get());
    LimitDocuments(20);
    PropertyReader::text = L"stored";
    Show(9, Editor::Plain);
    EXPECT_EQ(GetMailItemBody(given, Window(), kPlain), L"stored");
    EXPECT_EQ(PropertyReader::item, given.Get());
    EXPECT_THAT(PropertyReader::calls, ElementsAre(L"Initialize", std::to_wstring(0x1000001E) + L" up to 20"));
    EXPECT_THAT(log_.Lines(), ElementsAre(L"GetMailItemBody(1)", L"InitMapiWrapper Entered"));

    PropertyReader::text.clear();
    EXPECT_EQ(GetMailItemBody(given, Window(), kPlain), body_.substr(0, 19));
    EXPECT_THAT(log_.Lines(), Contains(L"GetMailItemBody(3)"));
    log_.Clear();
    EXPECT_EQ(GetMailItemBody(given, 0, kPlain), L"");
    EXPECT_THAT(log_.Lines(), ElementsAre(L"GetMailItemBody(1)", L"GetMailItemBody(3)"));
    log_.Clear();
    EXPECT_EQ(GetMailItemBody(given, Window(), 0), L"");
    PropertyReader::read = E_FAIL;
    EXPECT_EQ(GetMailItemBody(given, Window(), kPlain), L"");
    PropertyReader::read = S_OK;
    Show(10, Editor::Plain);
    EXPECT_EQ(GetMailItemBody(given, Window(), kPlain), L"");
    EXPECT_THAT(log_.Lines(), ElementsAre(L"GetMailItemBody(1)", L"GetMailItemBody(1)", L"GetMailItemBody(1)"));
}

TEST_F(ItemReaders, EachFieldHasItsTagAndAMailsFieldsTheirLabel) {
    const struct {
        std::wstring (*read)(const com::Object& item, long window);
        const wchar_t* name;
        long tag;
        const wchar_t* shown;
    } fields[] = {
        {GetMailItemSenderName, L"GetMailItemSenderName", 0x0C1A001E, L"Ann Lee"},
        {GetMailItemReceivedByName, L"GetMailItemReceivedByName", 0x004E001E, L"Bob Kay"},
        {GetMailItemSubject, L"GetMailItemSubject", 0x0037001E, L"Quarter report"},
        {[](auto& item, long) { return GetContactItemFirstName(item); }, L"GetContactItemFirstName", 0x3A06001F, L""},
        {[](auto& item, long) { return GetContactItemLastName(item); }, L"GetContactItemLastName", 0x3A11001F, L""},
        {[](auto& item, long) { return GetContactItemCompanyName(item); }, L"GetContactItemCompanyName", 0x3A16001F,
         L""},
        {[](auto& item, long) { return GetContactItemJobTitle(item); }, L"GetContactItemJobTitle", 0x3A17001F, L""},
        {[](auto& item, long) { return GetContactItemEmail(item); }, L"GetContactItemEmail", 0x3003001F, L""},
    };

    for (const auto& field : fields) {
        SCOPED_TRACE(testing::Message() << std::hex << field.tag);
        Show(9, Editor::Plain);
        UninitMapiWrapper();
        log_.Clear();
        PropertyReader::calls.clear();
        PropertyReader::text = L"stored";
        EXPECT_EQ(field.read({}, Window()), L"stored");
        EXPECT_THAT(PropertyReader::calls, ElementsAre(L"Initialize", std::to_wstring(field.tag)));
        EXPECT_THAT(log_.Lines(), ElementsAre(field.name, L"InitMapiWrapper Entered"));
        PropertyReader::text.clear();
        EXPECT_EQ(field.read({}, Window()), field.shown);
        EXPECT_EQ(field.read({}, 0), L"");
        PropertyReader::read = E_FAIL;
        EXPECT_EQ(field.read({}, Window()), L"");
        PropertyReader::read = S_OK;
        Show(10, Editor::Plain);
        EXPECT_EQ(field.read({}, Window()), L"");
        globals::gOutlookVersion = 9;  // whose path to the dialog this window does not have
        EXPECT_EQ(field.read({}, Window()), L"");
    }
}

}  // namespace
}  // namespace beacon::test
