// The built DLL reads items of the stand-in Outlook, and objects of a provider that breaks MAPI's rules.
#include <gtest/gtest.h>
#include <mapi_prop.h>

#include <algorithm>
#include <cstring>

#include "com/object.h"
#include "common/journal.h"
#include "outlook/object_model/item.h"
#include "tests/fakes/built_dll.h"
#include "tests/property_reader/scripted_provider.h"

namespace beacon::test {
namespace {

using com::ComPtr;
using standin::ResultText;

constexpr long kSubject = 0x0037001E;
constexpr long kBody = 0x1000001F;
constexpr long kFullName = 0x3001001F;
constexpr long kEmail = 0x3003001F;
constexpr wchar_t kJapanese[] = L"\u4F1A\u8B70\u306E\u8CC7\u6599";

class Reading : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        const auto get = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(dll_.Export("DllGetClassObject"));
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(get(__uuidof(MAPIPropWrapper), IID_PPV_ARGS(&factory)), S_OK);
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&reader_)), S_OK);
        ASSERT_EQ(reader_->Initialize(), S_OK);
    }

    void TearDown() override {
        EXPECT_EQ(reader_->Uninitialize(), S_OK);
        reader_.Reset();
        EXPECT_EQ(dll_.Call("DllCanUnloadNow"), S_OK);
        EXPECT_TRUE(standin::OutsideReferences().empty()) << "an item is held";
        EXPECT_EQ(provider_->References(), 1u);
        CoUninitialize();
    }

    static std::shared_ptr<standin::Item> Mail(const std::wstring& subject, const std::wstring& body) {
        standin::ItemData data;
        data.subject = subject;
        data.body = body;
        return std::make_shared<standin::Item>(data, true);
    }

    /// The whole property; what is wrong as text.
    std::wstring Read(IDispatch* item, long tag) {
        _variant_t value;
        const HRESULT result = reader_->GetStringProperty(com::FromObject(item), tag, &value);
        return FAILED(result) ? ResultText(result) : com::ToText(value);
    }

    std::wstring Read(IDispatch* item, long tag, long most) {
        _bstr_t value;
        const HRESULT result = reader_->GetStringPropertyLimited(com::FromObject(item), tag, most, value.GetAddress());
        return FAILED(result) ? ResultText(result) : com::ToText(value.GetBSTR());
    }

    /// Reads a text of the provider as that of an item.
    std::wstring ReadScripted(long most = 100, long tag = kSubject) {
        return Read(std::make_shared<ItemOver>(_variant_t(static_cast<IUnknown*>(provider_.Get()))).get(), tag, most);
    }

    /// The provider has texts of this type only, in their values or in streams.
    void Has(ULONG type, const void* text, size_t size, bool asStream = false, HRESULT otherTypes = MAPI_E_NOT_FOUND) {
        provider_->answer = [=](ULONG tag, SPropValue& value) {
            if (PROP_TYPE(tag) != type) return otherTypes;
            char* const place = reinterpret_cast<char*>(&value + 1);
            std::memset(place, 0, ScriptedProvider::kRoom);
            std::memcpy(place, text, size);
            value.Value.lpszA = place;
            return asStream ? MAPI_E_NOT_ENOUGH_MEMORY : S_OK;
        };
        HasStream([=, place = size_t{0}](void* to, ULONG wanted, ULONG& got) mutable {
            got = static_cast<ULONG>(std::min<size_t>({wanted, size - place, 3}));  // never all at once
            std::memcpy(to, static_cast<const char*>(text) + place, got);
            place += got;
            return S_OK;
        });
    }

    void HasStream(const ScriptedStream::Reading& reading) {
        provider_->open = [=](ULONG, LPUNKNOWN& stream) {
            stream = com::MakeObject<ScriptedStream>(reading).Detach();
            return S_OK;
        };
    }

    /// In addition to what it has.
    void HasCodePage(long page) {
        provider_->answer = [page, others = provider_->answer](ULONG tag, SPropValue& value) {
            if (tag != PROP_TAG(PT_LONG, 0x3FFD)) return others(tag, value);
            value.Value.l = page;
            return S_OK;
        };
    }

    const BuiltDll dll_{BuiltDll::Path(L"BeaconMapiProp.dll")};
    ComPtr<IMAPIPropWrapper> reader_;
    const ComPtr<ScriptedProvider> provider_ = com::MakeObject<ScriptedProvider>();
};

TEST_F(Reading, GivesTextsWholeOrCut) {
    std::wstring longText;
    for (int i = 0; longText.size() < 40000; ++i) longText += kJapanese + std::to_wstring(i);
    for (const std::wstring& body : {std::wstring(L"Short."), longText}) {
        const auto mail = Mail(kJapanese, body);
        EXPECT_EQ(Read(mail.get(), kBody), body);
        EXPECT_EQ(Read(mail.get(), kBody - 1, 3072), body.substr(0, 3072)) << "Unicode, whatever the tag says";
        EXPECT_EQ(Read(mail.get(), kBody, 0), L"");
        EXPECT_EQ(Read(mail.get(), kSubject), kJapanese);
        EXPECT_EQ(Read(mail.get(), kFullName), L"") << "no mail has it";
        mail->mapi = false;
        EXPECT_EQ(Read(mail.get(), kBody, 3072), L"");
    }
    const auto smile = Mail(L"a\U0001F600", L"");
    EXPECT_EQ(Read(smile.get(), kSubject, 2), L"a") << "not half a character";
    EXPECT_EQ(Read(smile.get(), kSubject, 3), L"a\U0001F600");
}

TEST_F(Reading, FindsWhereOutlookKeepsRecipientsAndAddresses) {
    standin::ItemData data;
    data.receivedBy = L"Ann Lee";
    const auto mail = std::make_shared<standin::Item>(data, true);
    EXPECT_EQ(Read(mail.get(), 0x004E001E), L"Ann Lee");
    EXPECT_EQ(Read(mail.get(), kEmail), L"");
    data.itemClass = standin::ItemClass::Contact;
    data.email = L"ann.lee@example.org";
    const auto contact = std::make_shared<standin::Item>(data, true);
    EXPECT_EQ(Read(contact.get(), kEmail), data.email);
    EXPECT_EQ(Read(contact.get(), kEmail, 7), L"ann.lee");
    Has(PT_UNICODE, L"any", 6);
    EXPECT_EQ(ReadScripted(100, kEmail), L"any") << "a property of its own goes before what has a name";
    provider_->answer = [](ULONG tag, SPropValue&) { return PROP_ID(tag) == 0x3003 ? MAPI_E_NOT_FOUND : E_FAIL; };
    EXPECT_EQ(ReadScripted(100, kEmail), L"") << "a null pointer for the names";
    provider_->namedTag = PROP_TAG(PT_ERROR, 0x8005);
    EXPECT_EQ(ReadScripted(100, kEmail), L"");
    provider_->namedTag = PROP_TAG(PT_UNSPECIFIED, 0x8005);
    EXPECT_EQ(ReadScripted(100, kEmail), ResultText(E_FAIL));
}

TEST_F(Reading, HasNoTextWhereThereIsNoneOfEitherType) {
    const struct {
        HRESULT ofUnicode;
        HRESULT of8Bits;
        std::wstring text;
    } cases[] = {
        {MAPI_E_NOT_FOUND, MAPI_E_BAD_CHARWIDTH, L""},
        {MAPI_E_NOT_FOUND, MAPI_E_NO_SUPPORT, L""},
        {MAPI_E_BAD_CHARWIDTH, MAPI_E_NOT_FOUND, L""},
        {MAPI_E_INVALID_TYPE, MAPI_E_UNEXPECTED_TYPE, L""},
        {MAPI_E_TYPE_NO_SUPPORT, MAPI_E_NOT_FOUND, L""},
        {MAPI_E_NO_SUPPORT, MAPI_E_BAD_CHARWIDTH, ResultText(MAPI_E_NO_SUPPORT)},
        {MAPI_E_NOT_FOUND, MAPI_E_CORRUPT_STORE, ResultText(MAPI_E_CORRUPT_STORE)},
        {MAPI_E_CORRUPT_STORE, MAPI_E_NOT_FOUND, ResultText(MAPI_E_CORRUPT_STORE)},
    };

    for (const auto& one : cases) {
        provider_->answer = [&](ULONG tag, SPropValue&) {
            return PROP_TYPE(tag) == PT_UNICODE ? one.ofUnicode : one.of8Bits;
        };
        EXPECT_EQ(ReadScripted(), one.text) << std::hex << one.ofUnicode << " " << one.of8Bits;
    }
}

TEST_F(Reading, ConvertsTextsOf8BitsFromTheMessagesCodePage) {
    const std::string japanese = "\x89\xEF\x8B\x63\x82\xCC\x8E\x91\x97\xBF";  // code page 932
    const std::string german = "Gr\xFC\xDF";
    for (const bool asStream : {false, true}) {
        Has(PT_STRING8, german.data(), german.size(), asStream);
        EXPECT_EQ(ReadScripted(), L"Gr\u00FC\u00DF");
        Has(PT_STRING8, japanese.data(), japanese.size(), asStream);
        HasCodePage(932);
        EXPECT_EQ(ReadScripted(), kJapanese);
        EXPECT_EQ(ReadScripted(2), std::wstring(kJapanese, 2));
        Has(PT_STRING8, "abc", 3, asStream, MAPI_E_CALL_FAILED);
        EXPECT_EQ(ReadScripted(), L"abc") << "whatever failed for Unicode";
        HasCodePage(12345);
        EXPECT_EQ(ReadScripted(), L"abc") << "in a code page that this machine does not have";
    }
}

TEST_F(Reading, FreesEveryBlockByOutlooksOwnMapi) {
    const BuiltDll outlooks(BuiltDll::Path(L"olmapi32.dll"));
    const auto freed = reinterpret_cast<LONG(WINAPI*)()>(outlooks.Export("Freed"));
    ASSERT_NE(freed, nullptr);
    Has(PT_UNICODE, L"text", 8);
    EXPECT_EQ(ReadScripted(), L"text");
    EXPECT_EQ(freed(), 1);
    Has(PT_STRING8, "", 0);
    provider_->namedTag = PROP_TAG(PT_UNSPECIFIED, 0x8005);
    EXPECT_EQ(ReadScripted(100, kEmail), L"");
    EXPECT_EQ(freed(), provider_->given);
}

TEST_F(Reading, RaisesTheErrorsOfCallersAndItems) {
    const auto mail = Mail(L"One", L"");
    EXPECT_EQ(Read(mail.get(), 0x00370003), ResultText(E_INVALIDARG)) << "not a string";
    EXPECT_EQ(Read(mail.get(), kSubject, -1), ResultText(E_INVALIDARG));
    EXPECT_EQ(Read(nullptr, kSubject), ResultText(static_cast<HRESULT>(0x800A005B)));
    EXPECT_EQ(reader_->GetStringProperty({}, kSubject, nullptr), E_POINTER);
    const _variant_t objects[] = {_variant_t(), _variant_t(L"text"), _variant_t(static_cast<IUnknown*>(nullptr)),
                                  _variant_t(static_cast<IUnknown*>(static_cast<IDispatch*>(mail.get())))};
    for (const _variant_t& object : objects)
        EXPECT_EQ(Read(std::make_shared<ItemOver>(object).get(), kSubject).substr(0, 5), L"0x800");
    EXPECT_EQ(reader_->Uninitialize(), S_OK);
    EXPECT_EQ(Read(mail.get(), kSubject), ResultText(MAPI_E_NOT_INITIALIZED));
    EXPECT_EQ(reader_->Uninitialize(), MAPI_E_NOT_INITIALIZED);
    EXPECT_EQ(reader_->Initialize(), S_OK);
}

TEST_F(Reading, RejectsMalformedAnswers) {
    const auto answers = [this](ULONG type, SCODE error) {
        provider_->answer = [=](ULONG tag, SPropValue& value) {
            value.ulPropTag = CHANGE_PROP_TYPE(tag, type);
            value.Value.err = error;
            return MAPI_W_ERRORS_RETURNED;
        };
        return ReadScripted();
    };
    EXPECT_EQ(answers(PT_UNICODE, 0), ResultText(MAPI_E_CORRUPT_DATA)) << "a null pointer";
    EXPECT_EQ(answers(PT_LONG, 17), L"") << "no text";
    EXPECT_EQ(answers(PT_ERROR, S_OK), ResultText(MAPI_E_CORRUPT_DATA)) << "an error that is none";
    Has(PT_UNICODE, L"text", 8);
    provider_->count = 0;
    EXPECT_EQ(ReadScripted(), ResultText(MAPI_E_CORRUPT_DATA)) << "no value";
    provider_->count = 1;
    provider_->withoutValues = true;
    EXPECT_EQ(ReadScripted(), ResultText(MAPI_E_CORRUPT_DATA)) << "a null pointer for the values";
}

TEST_F(Reading, EndsATextWithItsReadableMemory) {
    constexpr size_t kPage = 4096;
    auto* const pages = static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_READWRITE));
    VirtualAlloc(pages, kPage, MEM_COMMIT, PAGE_READWRITE);
    const std::wstring text = L"no end";
    char* const place = pages + kPage - text.size() * sizeof(wchar_t);
    std::ranges::copy(text, reinterpret_cast<wchar_t*>(place));
    provider_->answer = [&](ULONG, SPropValue& value) {
        value.Value.lpszA = place;
        return S_OK;
    };
    EXPECT_EQ(ReadScripted(), text);
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST_F(Reading, RejectsMalformedStreamsAndLimitsEndlessOnes) {
    provider_->answer = [](ULONG, SPropValue&) { return MAPI_E_NOT_ENOUGH_MEMORY; };
    EXPECT_EQ(ReadScripted(), ResultText(MAPI_E_NO_SUPPORT)) << "there is none";
    provider_->open = [](ULONG, LPUNKNOWN&) { return S_OK; };
    EXPECT_EQ(ReadScripted(), ResultText(MAPI_E_CORRUPT_DATA)) << "a null pointer";
    HasStream([](void*, ULONG, ULONG&) { return STG_E_REVERTED; });
    EXPECT_EQ(ReadScripted(), ResultText(STG_E_REVERTED));
    HasStream([](void*, ULONG, ULONG& got) {
        got = 0xFFFFFFFF;
        return S_OK;
    });
    EXPECT_EQ(ReadScripted(), ResultText(MAPI_E_CORRUPT_DATA)) << "more than was asked for";
    size_t total = 0;
    HasStream([&](void* place, ULONG wanted, ULONG& got) {
        std::memset(place, 'x', wanted);
        total += got = wanted;
        return S_OK;
    });
    EXPECT_EQ(ReadScripted(3072), std::wstring(3072, L'\x7878'));
    EXPECT_EQ(total, 2 * 3072u);
    EXPECT_EQ(ReadScripted(LONG_MAX).size(), size_t{1} << 20);
}

}  // namespace
}  // namespace beacon::test
