#include "com/dual.h"

#include <mapi_prop.h>

#include "com_test.h"

namespace beacon::com {
namespace {

constexpr int kMapiLibrary = 3;  // type_libraries.rc

/// Writes down its calls; Library is where it looks for its type information.
template <int Library>
class Reader final : public Dual<IMAPIPropWrapper, Library> {
public:
    std::vector<std::wstring>* calls;
    std::function<void(Reader&)> final;

    explicit Reader(std::vector<std::wstring>* written) : calls(written) {}

    ~Reader() override { calls->push_back(L"gone"); }

    STDMETHODIMP Initialize() override { return RPC_E_CALL_REJECTED; }

    STDMETHODIMP Uninitialize() override {
        return Method([] { Raise(kInvalidPicture); });
    }

    STDMETHODIMP GetStringProperty(VARIANT, long tag, VARIANT*) override {
        return Method([&] { calls->push_back(std::to_wstring(tag)); });
    }

    STDMETHODIMP GetStringPropertyLimited(VARIANT item, long tag, long most, BSTR* value) override {
        return GiveText(value, std::wstring(item.bstrVal) + L":" + std::to_wstring(100 * tag + most));
    }

private:
    void Final() noexcept override {
        calls->push_back(L"final");
        if (final) final(*this);
    }
};

TEST(Dual, AnswersLateBoundCallsByTheEmbeddedTypeLibrary) {
    std::vector<std::wstring> calls;
    const auto reader = MakeObject<Reader<kMapiLibrary>>(&calls);
    const Object object(reader.Get());
    EXPECT_EQ(L"<a/>:-493",
              ToText(object.Call(L"GETSTRINGPROPERTYLIMITED", {FromText(L"<a/>"), FromLong(-5), FromText(L"7")})));
    EXPECT_EQ(kNoSuchMember, RaisedBy([&] { object.Call(L"Reconnect"); }).number);
    EXPECT_EQ(RPC_E_CALL_REJECTED, RaisedBy([&] { object.Call(L"Initialize"); }).number);
    for (const Error& error :
         {RaisedBy([&] { Check(reader->Uninitialize(), static_cast<IMAPIPropWrapper*>(reader.Get())); }),
          RaisedBy([&] { object.Call(L"Uninitialize"); })}) {
        EXPECT_EQ(kInvalidPicture, error.number);
        EXPECT_EQ(L"Invalid picture", error.Description());
        EXPECT_EQ(L"BeaconOLKAdapter", error.Source());
    }

    ComPtr<ITypeInfo> info;
    EXPECT_EQ(DISP_E_BADINDEX, reader->GetTypeInfo(1, 0, &info));
    EXPECT_EQ(nullptr, info);

    const auto without = MakeObject<Reader<77>>(&calls);
    EXPECT_EQ(RPC_E_CALL_REJECTED, without->Initialize());
    EXPECT_NE(0, RaisedBy([&] { Object(without.Get()).Call(L"Initialize"); }).number);
    EXPECT_TRUE(FAILED(without->GetTypeInfo(0, 0, &info)));
}

TEST(Dual, KeepsOneIdentityAndTheModuleAndMayUseItselfAtTheEnd) {
    const long before = LiveThings();
    std::vector<std::wstring> calls;
    auto reader = MakeObject<Reader<kMapiLibrary>>(&calls);
    ComPtr<IUnknown> unknown;
    ComPtr<IMAPIPropWrapper> typed;
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(S_OK, reader.As(&unknown));
    ASSERT_EQ(S_OK, reader.As(&support));
    ASSERT_EQ(S_OK, support.As(&typed));
    EXPECT_EQ(unknown.Get(), typed.Get());
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
    EXPECT_EQ(4u, reader->References());
    void* other = &other;
    EXPECT_EQ(E_NOINTERFACE, reader->QueryInterface(IID_IMarshal, &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_POINTER, reader->QueryInterface(IID_IUnknown, nullptr));

    reader->final = [](Reader<kMapiLibrary>& dying) {
        const Object again(&dying);
        { const ComPtr<IMAPIPropWrapper> peer(&dying); }
        again.Call(L"GetStringProperty", {FromObject(&dying), FromLong(1)});
    };
    reader.Reset();
    unknown.Reset();
    support.Reset();
    EXPECT_EQ(before + 1, LiveThings());
    typed.Reset();
    EXPECT_EQ(before, LiveThings());
    EXPECT_EQ((std::vector<std::wstring>{L"final", L"1", L"gone"}), calls);
}

}  // namespace
}  // namespace beacon::com
