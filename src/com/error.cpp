#include "com/error.h"

#include <comdef.h>
#include <wrl/client.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>

using Microsoft::WRL::ComPtr;

namespace beacon::com {
namespace {

// Automation's results that have a number of their own. Other errors keep the HRESULT.
struct Mapped {
    HRESULT result;
    long number;
};

constexpr long kOutOfMemory = 7;
constexpr Mapped kMapped[] = {
    {DISP_E_BADINDEX, kSubscriptOutOfRange},
    {DISP_E_TYPEMISMATCH, kTypeMismatch},
    {DISP_E_OVERFLOW, kOverflow},
    {DISP_E_UNKNOWNNAME, kNoSuchMember},
    {DISP_E_MEMBERNOTFOUND, kNoSuchMember},
    {DISP_E_BADPARAMCOUNT, kWrongArgumentCount},
    {REGDB_E_CLASSNOTREG, kCannotCreateObject},
    {CO_E_CLASSSTRING, kCannotCreateObject},
    {MK_E_UNAVAILABLE, kCannotCreateObject},
    {E_OUTOFMEMORY, kOutOfMemory},
};

const wchar_t* KnownDescription(long number) {
    switch (number) {
        case kOverflow: return L"Overflow";
        case kOutOfMemory: return L"Out of memory";
        case kSubscriptOutOfRange: return L"Subscript out of range";
        case kTypeMismatch: return L"Type mismatch";
        case kNoObject: return L"Object variable or With block variable not set";
        case kObjectRequired: return L"Object required";
        case kCannotCreateObject: return L"ActiveX component can't create object";
        case kNoSuchMember: return L"Object doesn't support this property or method";
        case kWrongArgumentCount: return L"Wrong number of arguments or invalid property assignment";
        case kInvalidPicture: return L"Invalid picture";
        default: return nullptr;
    }
}

/// The usual description of a number that is not an HRESULT.
const wchar_t* Description(long number) {
    const wchar_t* known = KnownDescription(number);
    return known != nullptr ? known : L"Application-defined or object-defined error";
}

/// The system's text for a result, in this buffer.
template <DWORD kSize>
std::wstring_view SystemMessage(HRESULT result, wchar_t (&buffer)[kSize]) noexcept {
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(result), 0, buffer, kSize, nullptr);
    std::wstring_view text(buffer, length);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' '))
        text.remove_suffix(1);
    return text.empty() ? L"Automation error" : text;
}

long NumberOf(HRESULT result) {
    for (const Mapped& entry : kMapped)
        if (entry.result == result) return entry.number;
    if (FAILED(result) && HRESULT_FACILITY(result) == FACILITY_CONTROL) return HRESULT_CODE(result);
    return result;
}

Error FromResult(HRESULT result, std::wstring_view source = {}, std::wstring_view description = {}) noexcept {
    const long number = NumberOf(result);
    wchar_t message[1024];
    if (description.empty()) description = number < 0 ? SystemMessage(result, message) : Description(number);
    return Error(number, description, source);
}

std::wstring_view View(BSTR text) noexcept { return {text == nullptr ? L"" : text, SysStringLen(text)}; }

void Free(BSTR& text) noexcept {
    SysFreeString(text);
    text = nullptr;
}

}  // namespace

Error::Text::Text(std::wstring_view text) noexcept : length_(text.copy(start_, std::size(start_) - 1)) {
    try {
        if (length_ < text.size()) whole_ = std::make_shared<const std::wstring>(text);
    } catch (const std::bad_alloc&) {
        // The beginning of the text is there.
    }
}

void Raise(long number) { throw Error(number, Description(number)); }

HRESULT Check(HRESULT result) {
    if (FAILED(result)) throw FromResult(result);
    return result;
}

HRESULT Check(HRESULT result, IUnknown* object, REFIID id) {
    if (SUCCEEDED(result)) return result;
    // GetErrorInfo first: it takes the information from the thread, and the object's answer may come from another
    // process.
    ComPtr<IErrorInfo> info;
    ComPtr<ISupportErrorInfo> support;
    BSTR source = nullptr;
    BSTR description = nullptr;
    if (GetErrorInfo(0, &info) == S_OK && SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(&support))) &&
        support->InterfaceSupportsErrorInfo(id) == S_OK) {
        info->GetSource(&source);
        info->GetDescription(&description);
    }
    const Error error = FromResult(result, View(source), View(description));
    Free(source);
    Free(description);
    throw Error(error);
}

bool ServerHasDied(HRESULT result) noexcept {
    return result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) || result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) ||
           result == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE) || result == RPC_E_DISCONNECTED ||
           result == RPC_E_SERVER_DIED || result == RPC_E_SERVER_DIED_DNE || result == CO_E_OBJNOTCONNECTED;
}

void RaiseException(HRESULT result, EXCEPINFO& info) {
    if (result != DISP_E_EXCEPTION) throw FromResult(result);
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    const HRESULT code = info.scode == 0 ? E_FAIL : info.scode;
    std::wstring_view description = View(info.bstrDescription);
    if (info.wCode != 0 && description.empty()) description = Description(info.wCode);
    const Error error = info.wCode != 0 ? Error(info.wCode, description, View(info.bstrSource))
                                        : FromResult(code, View(info.bstrSource), description);
    Free(info.bstrSource);
    Free(info.bstrDescription);
    Free(info.bstrHelpFile);
    throw Error(error);
}

Error CurrentError() noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return Error(kOutOfMemory, Description(kOutOfMemory));
    } catch (const _com_error& error) {  // thrown by the platform's value types
        return FromResult(error.Error());
    } catch (const std::exception& error) {
        wchar_t text[256];
        const int length = static_cast<int>(std::min(std::strlen(error.what()), std::size(text)));
        return Error(kInvalidCall, {text, static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, error.what(), length, text,
                                                                                  static_cast<int>(std::size(text))))});
    } catch (...) {
        return Error(kInvalidCall, L"Invalid procedure call or argument");
    }
}

HRESULT CurrentResult() noexcept {
    const Error error = CurrentError();
    ComPtr<ICreateErrorInfo> create;
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(CreateErrorInfo(&create))) {
        create->SetSource(const_cast<LPOLESTR>(error.Source().data()));
        create->SetDescription(const_cast<LPOLESTR>(error.Description().data()));
        if (SUCCEEDED(create.As(&info))) SetErrorInfo(0, info.Get());
    }
    if (error.number < 0) return error.number;
    if (error.number == kOutOfMemory) return E_OUTOFMEMORY;  // COM itself looks for this one
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<WORD>(error.number));
}

}  // namespace beacon::com
