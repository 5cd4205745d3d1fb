#include "com/error.h"

#include <comdef.h>
#include <wrl/client.h>

#include <new>

#include "com/text.h"

using Microsoft::WRL::ComPtr;

namespace beacon::com {
namespace {

// What Automation's own results are called; everything else keeps its HRESULT as the number.
struct Mapped {
    HRESULT result;
    long number;
};

constexpr long kOutOfMemory = 7;
constexpr Mapped kMapped[] = {
    {DISP_E_BADINDEX, kSubscriptOutOfRange},
    {DISP_E_TYPEMISMATCH, kTypeMismatch},
    {DISP_E_OVERFLOW, 6},
    {DISP_E_UNKNOWNNAME, kNoSuchMember},
    {DISP_E_MEMBERNOTFOUND, kNoSuchMember},
    {DISP_E_BADPARAMCOUNT, 450},
    {REGDB_E_CLASSNOTREG, kCannotCreateObject},
    {CO_E_CLASSSTRING, kCannotCreateObject},
    {MK_E_UNAVAILABLE, kCannotCreateObject},
    {E_OUTOFMEMORY, kOutOfMemory},
};

const wchar_t* KnownDescription(long number) {
    switch (number) {
        case 6: return L"Overflow";
        case kOutOfMemory: return L"Out of memory";
        case kSubscriptOutOfRange: return L"Subscript out of range";
        case kTypeMismatch: return L"Type mismatch";
        case kNoObject: return L"Object variable or With block variable not set";
        case kObjectRequired: return L"Object required";
        case kCannotCreateObject: return L"ActiveX component can't create object";
        case kNoSuchMember: return L"Object doesn't support this property or method";
        case 450: return L"Wrong number of arguments or invalid property assignment";
        case kInvalidPicture: return L"Invalid picture";
        default: return nullptr;
    }
}

/// The usual description of a number that is not an HRESULT.
const wchar_t* Description(long number) {
    const wchar_t* known = KnownDescription(number);
    return known != nullptr ? known : L"Application-defined or object-defined error";
}

std::wstring SystemMessage(HRESULT result) {
    wchar_t* buffer = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    std::wstring text(buffer == nullptr ? L"" : buffer, length);
    LocalFree(buffer);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' ')) text.pop_back();
    return text.empty() ? L"Automation error" : text;
}

long NumberOf(HRESULT result) {
    for (const Mapped& entry : kMapped)
        if (entry.result == result) return entry.number;
    if (FAILED(result) && HRESULT_FACILITY(result) == FACILITY_CONTROL) return HRESULT_CODE(result);
    return result;
}

Error FromResult(HRESULT result, std::wstring source, std::wstring description) {
    const long number = NumberOf(result);
    if (description.empty()) description = number < 0 ? SystemMessage(result) : Description(number);
    return Error(number, std::move(description), std::move(source));
}

std::wstring TakeBstr(BSTR& value) {
    std::wstring text = ToText(value);
    SysFreeString(value);
    value = nullptr;
    return text;
}

}  // namespace

Error::Error(long errorNumber, std::wstring errorDescription, std::wstring errorSource)
    : number(errorNumber), source(std::move(errorSource)), description(std::move(errorDescription)) {}

void Raise(long number) { throw Error(number, Description(number)); }

HRESULT Check(HRESULT result) {
    if (FAILED(result)) throw FromResult(result, L"", L"");
    return result;
}

HRESULT Check(HRESULT result, IUnknown* object, REFIID id) {
    if (SUCCEEDED(result)) return result;
    // Taken before the object is asked, which may be a call of its own. What is taken is gone from the thread.
    ComPtr<IErrorInfo> info;
    ComPtr<ISupportErrorInfo> voucher;
    std::wstring source;
    std::wstring description;
    if (GetErrorInfo(0, &info) == S_OK && SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(&voucher))) &&
        voucher->InterfaceSupportsErrorInfo(id) == S_OK) {
        BSTR text = nullptr;
        if (SUCCEEDED(info->GetSource(&text))) source = TakeBstr(text);
        if (SUCCEEDED(info->GetDescription(&text))) description = TakeBstr(text);
    }
    throw FromResult(result, std::move(source), std::move(description));
}

bool ServerHasDied(HRESULT result) noexcept {
    return result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) || result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) ||
           result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE) || result == RPC_E_DISCONNECTED ||
           result == RPC_E_SERVER_DIED || result == RPC_E_SERVER_DIED_DNE || result == CO_E_OBJNOTCONNECTED;
}

void RaiseException(HRESULT result, EXCEPINFO& info) {
    if (result != DISP_E_EXCEPTION) throw FromResult(result, L"", L"");
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    std::wstring source = TakeBstr(info.bstrSource);
    std::wstring description = TakeBstr(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
    info.bstrHelpFile = nullptr;
    if (info.wCode != 0) {
        if (description.empty()) description = Description(info.wCode);
        throw Error(info.wCode, std::move(description), std::move(source));
    }
    throw FromResult(info.scode == 0 ? E_FAIL : info.scode, std::move(source), std::move(description));
}

Error CurrentError() noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return Error(kOutOfMemory, Description(kOutOfMemory));
    } catch (const _com_error& error) {  // of the platform's value types
        return FromResult(error.Error(), L"", L"");
    } catch (const std::exception& error) {
        return Error(5, FromAnsi(error.what()));
    } catch (...) {
        return Error(5, L"Invalid procedure call or argument");
    }
}

HRESULT CurrentResult() noexcept {
    const Error error = CurrentError();
    ComPtr<ICreateErrorInfo> create;
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(CreateErrorInfo(&create))) {
        create->SetSource(const_cast<LPOLESTR>(error.source.c_str()));
        create->SetDescription(const_cast<LPOLESTR>(error.description.c_str()));
        if (SUCCEEDED(create.As(&info))) SetErrorInfo(0, info.Get());
    }
    if (error.number < 0) return error.number;
    if (error.number == kOutOfMemory) return E_OUTOFMEMORY;  // COM itself looks for this one
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<WORD>(error.number));
}

}  // namespace beacon::com
