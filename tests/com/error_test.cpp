#include "com/error.h"

#include <comdef.h>
#include <psapi.h>

#include <stdexcept>

#include "com_test.h"
#include "tests/fakes/failing_memory.h"

namespace beacon::com {
namespace {

constexpr SCODE FromControl(int number) { return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number); }

HRESULT STDAPICALLTYPE FillInLate(EXCEPINFO* record) {
    record->bstrDescription = SysAllocString(L"filled in late");
    return S_OK;
}

TEST(Errors, TakeTheirNumberFromTheCalleesRecord) {
    const struct {
        WORD code;
        SCODE scode;
        const wchar_t* text;
        long number;
        const wchar_t* description;
    } cases[] = {
        {1004, E_ABORT, L"no such sheet", 1004, L"no such sheet"},
        {13, 0, nullptr, 13, L"Type mismatch"},
        {1004, 0, nullptr, 1004, L"Application-defined or object-defined error"},
        {0, E_ABORT, L"Operation aborted", E_ABORT, L"Operation aborted"},
        {0, FromControl(424), nullptr, 424, L"Object required"},
        {0, 0, L"unexplained", E_FAIL, L"unexplained"},
    };

    for (const auto& test : cases) {
        EXCEPINFO record{};
        record.wCode = test.code;
        record.scode = test.scode;
        record.bstrSource = SysAllocString(L"Callee");
        record.bstrDescription = SysAllocString(test.text);
        const Error error = RaisedBy([&] { RaiseException(DISP_E_EXCEPTION, record); });
        EXPECT_EQ(test.number, error.number);
        EXPECT_EQ(L"Callee", error.Source());
        EXPECT_EQ(test.description, error.Description());
    }
    EXCEPINFO late{};
    late.pfnDeferredFillIn = FillInLate;
    EXPECT_EQ(L"filled in late", RaisedBy([&] { RaiseException(DISP_E_EXCEPTION, late); }).Description());
    EXPECT_EQ(RPC_E_CALL_REJECTED, RaisedBy([&] { RaiseException(RPC_E_CALL_REJECTED, late); }).number);
}

/// Vouches for the error information that its members of one interface leave on the thread.
class Reporter final : public Counted<ISupportErrorInfo> {
public:
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == IID_IDispatch ? S_OK : S_FALSE; }
};

TEST(Errors, CrossAComBoundaryWithNumberAndTextOfWhichTheBeginningNeedsNoMemory) {
    const auto callee = MakeObject<Reporter>();
    const std::wstring longText(100, L'x');
    constexpr size_t kKept = 63;
    const std::wstring keptText(kKept, L'y');
    const std::out_of_range outOfRange("position");

    const struct {
        std::function<void()> body;
        long number;
        std::wstring description;
        HRESULT result;
    } cases[] = {
        {[] {}, 0, L"nothing raised", S_OK},
        {[] { Raise(kTypeMismatch); }, 13, L"Type mismatch", static_cast<HRESULT>(0x800A000D)},
        {[] { throw Error(RPC_E_SERVERFAULT, L"it died"); }, RPC_E_SERVERFAULT, L"it died", RPC_E_SERVERFAULT},
        {[&] { throw Error(E_FAIL, longText); }, E_FAIL, longText, E_FAIL},
        {[&] { throw Error(E_FAIL, keptText); }, E_FAIL, keptText, E_FAIL},
        {[] { throw std::bad_alloc(); }, 7, L"Out of memory", E_OUTOFMEMORY},
        {[] { _com_util::CheckError(DISP_E_OVERFLOW); }, 6, L"Overflow", static_cast<HRESULT>(0x800A0006)},
        {[&] { throw std::out_of_range(outOfRange); }, 5, L"position", static_cast<HRESULT>(0x800A0005)},
        {[] { throw 1; }, 5, L"Invalid procedure call or argument", static_cast<HRESULT>(0x800A0005)},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.number);
        const Error whole = RaisedBy([&] { Check(Method(test.body), callee.Get(), IID_IDispatch); });
        EXPECT_EQ(test.number, whole.number);
        EXPECT_EQ(test.description, whole.Description());
        test::outOfMemory = true;
        const Error error = RaisedBy(test.body);
        const Error copy = error;
        const HRESULT result = Method(test.body);
        test::outOfMemory = false;
        EXPECT_EQ(test.number, copy.number);
        EXPECT_EQ(std::wstring_view(test.description).substr(0, kKept), copy.Description());
        EXPECT_EQ(test.result, result);
    }
    EXPECT_EQ(S_FALSE, Check(Method([] { return S_FALSE; }), callee.Get(), IID_IDispatch));
    EXPECT_EQ(E_ABORT, Method([] { return E_ABORT; }));
}

TEST(Errors, AreExplainedOnlyByTheObjectThatFailed) {
    const auto vouching = MakeObject<Reporter>();
    const auto plain = std::make_shared<standin::AutomationObject>(L"Plain");

    const struct {
        const char* name;
        std::function<void()> use;
        bool explained;
    } cases[] = {
        {"vouched for", [&] { Check(E_ACCESSDENIED, vouching.Get(), IID_IDispatch); }, true},
        {"another interface", [&] { Check(E_ACCESSDENIED, vouching.Get(), IID_IUnknown); }, false},
        {"not vouched for", [&] { Check(E_ACCESSDENIED, static_cast<IDispatch*>(plain.get())); }, false},
        {"no object", [] { Check(E_ACCESSDENIED); }, false},
    };

    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        Method([] { throw Error(E_FAIL, L"an earlier failure's", L"another object's"); });  // left on the thread
        const Error error = RaisedBy(test.use);
        EXPECT_EQ(E_ACCESSDENIED, error.number);
        EXPECT_EQ(test.explained, error.Description() == L"an earlier failure's");
        EXPECT_EQ(test.explained, error.Source() == L"another object's");
        EXPECT_GT(error.Description().back(), L' ') << "the system's text, without its line end";
    }
}

TEST(Errors, FreeTheTextsOfTheObjectThatFailed) {
    const auto callee = MakeObject<Reporter>();
    constexpr size_t kMegabyte = 1 << 20;
    const std::wstring text(kMegabyte, L'x');
    const auto used = [] {
        PROCESS_MEMORY_COUNTERS counters{};
        GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
        return counters.PagefileUsage / kMegabyte;
    };
    constexpr size_t kFailures = 20;
    const size_t before = used();
    for (size_t i = 0; i < kFailures; ++i)
        RaisedBy([&] { Check(Method([&] { throw Error(E_FAIL, text, text); }), callee.Get(), IID_IDispatch); });
    EXPECT_LE(used(), before + kFailures) << "megabytes; each failure fills four";
}

}  // namespace
}  // namespace beacon::com
