#include "com/dual.h"

#include <beacon_util.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "com/object.h"
#include "tests/fakes/raised_by.h"

namespace beacon::com {
namespace {

using test::RaisedBy;

constexpr int kUtilLibrary = 1;  // com_test.rc

/// One end of a channel that writes down its calls; Library is where it looks for its type information.
template <int Library>
class Channel final : public Dual<IMessageDispatch, Library> {
public:
    std::vector<std::wstring>* calls;
    std::function<void(Channel&)> final;

    explicit Channel(std::vector<std::wstring>* written) : calls(written) {}

    ~Channel() override { calls->push_back(L"gone"); }

    STDMETHODIMP Connect(BSTR type, IMessageDispatch* peer, long id, VARIANT*) override {
        return Method(
            [&] { calls->push_back(L"Connect " + ToText(type) + (peer ? L" peer " : L" - ") + std::to_wstring(id)); });
    }

    STDMETHODIMP Disconnect(long id, VARIANT*) override {
        return Method([&] {
            if (id != 1) Raise(kInvalidPicture);
        });
    }

    STDMETHODIMP get_id(long* value) override { return Give(value, 4711); }

    STDMETHODIMP PutControl(BSTR, IMessageDispatch*, long, VARIANT*) override { return RPC_E_CALL_REJECTED; }

    STDMETHODIMP PutMessage(BSTR message, IMessageDispatch*, long id, VARIANT* result) override {
        return Method([&] { *result = FromText(std::to_wstring(id) + L":" + ToText(message)).Detach(); });
    }

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return E_NOTIMPL; }

private:
    void Final() noexcept override {
        calls->push_back(L"final");
        if (final) final(*this);
    }
};

TEST(Dual, AnswersLateBoundCallsFromTheEmbeddedTypeLibrary) {
    std::vector<std::wstring> calls;
    const auto channel = MakeObject<Channel<kUtilLibrary>>(&calls);
    const Object object(channel.Get());
    EXPECT_EQ(4711, object.GetLong(L"id"));
    EXPECT_EQ(L"-5:<a/>", ToText(object.Call(L"PUTMESSAGE", {FromText(L"<a/>"), FromObject(nullptr), FromLong(-5)})));
    object.Call(L"Connect", {FromText(L"control"), FromObject(channel.Get()), FromText(L"42")});
    EXPECT_EQ((std::vector<std::wstring>{L"Connect control peer 42"}), calls) << "the number came as a text";

    EXPECT_EQ(438, RaisedBy([&] { object.Call(L"Reconnect"); }).number);
    EXPECT_EQ(450, RaisedBy([&] { object.Call(L"Disconnect"); }).number);
    EXPECT_EQ(13, RaisedBy([&] { object.Call(L"Disconnect", {FromText(L"two")}); }).number);
    const auto failed = [&] { object.Call(L"PutControl", {FromText(L""), FromObject(nullptr), FromLong(0)}); };
    EXPECT_EQ(RPC_E_CALL_REJECTED, RaisedBy(failed).number);

    ComPtr<ITypeInfo> info;
    EXPECT_EQ(S_OK, channel->GetTypeInfo(0, 0, &info));
    EXPECT_EQ(DISP_E_BADINDEX, channel->GetTypeInfo(1, 0, &info));
    EXPECT_EQ(nullptr, info);
    UINT count = 0;
    EXPECT_EQ(S_OK, channel->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
}

TEST(Dual, TellsEarlyAndLateBoundCallersWhatItRaised) {
    std::vector<std::wstring> calls;
    const auto channel = MakeObject<Channel<kUtilLibrary>>(&calls);
    IMessageDispatch* const typed = channel.Get();
    _variant_t ignored;
    for (const Error& error : {RaisedBy([&] { Check(typed->Disconnect(2, &ignored), typed); }),
                               RaisedBy([&] { Object(typed).Call(L"Disconnect", {FromLong(2)}); })}) {
        EXPECT_EQ(481, error.number);
        EXPECT_EQ(L"Invalid picture", error.description);
        EXPECT_EQ(L"BeaconOLKAdapter", error.source);
    }
}

TEST(Dual, WithoutItsTypeLibraryFailsLateBoundCallsOnly) {
    std::vector<std::wstring> calls;
    const auto channel = MakeObject<Channel<77>>(&calls);
    long id = 0;
    EXPECT_EQ(S_OK, channel->get_id(&id));
    EXPECT_NE(0, RaisedBy([&] { Object(channel.Get()).Get(L"id"); }).number);
    ComPtr<ITypeInfo> info;
    EXPECT_TRUE(FAILED(channel->GetTypeInfo(0, 0, &info)));
}

TEST(Dual, KeepsOneIdentityAndTheModuleAndMayUseItselfAtTheEnd) {
    const long before = LiveThings();
    std::vector<std::wstring> calls;
    auto channel = MakeObject<Channel<kUtilLibrary>>(&calls);
    ComPtr<IUnknown> unknown;
    ComPtr<IDispatch> dispatch;
    ComPtr<IMessageDispatch> typed;
    ComPtr<ISupportErrorInfo> voucher;
    ASSERT_EQ(S_OK, channel.As(&unknown));
    ASSERT_EQ(S_OK, channel.As(&dispatch));
    ASSERT_EQ(S_OK, channel.As(&voucher));
    ASSERT_EQ(S_OK, voucher.As(&typed));
    EXPECT_EQ(unknown.Get(), typed.Get());
    EXPECT_EQ(S_FALSE, voucher->InterfaceSupportsErrorInfo(IID_IDispatch));
    EXPECT_EQ(5u, channel->References());
    void* other = &other;
    EXPECT_EQ(E_NOINTERFACE, channel->QueryInterface(IID_IMarshal, &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_POINTER, channel->QueryInterface(IID_IUnknown, nullptr));

    channel->final = [&](Channel<kUtilLibrary>& dying) {
        const Object again(&dying);
        { const ComPtr<IMessageDispatch> peer(&dying); }
        again.Call(L"Connect", {FromText(L"last"), FromObject(&dying), FromLong(1)});
    };
    channel.Reset();
    unknown.Reset();
    dispatch.Reset();
    voucher.Reset();
    EXPECT_EQ(before + 1, LiveThings());
    typed.Reset();
    EXPECT_EQ(before, LiveThings());
    EXPECT_EQ((std::vector<std::wstring>{L"final", L"Connect last peer 1", L"gone"}), calls);
}

}  // namespace
}  // namespace beacon::com
