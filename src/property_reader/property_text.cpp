#include "property_reader/property_text.h"

#include <wrl/client.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "com/error.h"
#include "com/text.h"
#include "support/string_values.h"
#include "support/system_library.h"

namespace beacon {
namespace {

constexpr ULONG kMessageCodePage = PROP_TAG(PT_LONG, 0x3FFD);
constexpr size_t kLongestCharacter = 4;  // bytes, in any code page

using FreeFunction = ULONG WINAPI(void*);

/// The function that frees MAPI's memory; null on a machine without MAPI. Outlook's own is preferred: the system's
/// library can lead to another mail program's.
FreeFunction* MapiFree() {
    for (const wchar_t* library : {L"olmapi32.dll", L"msmapi32.dll"}) {
        const HMODULE loaded = GetModuleHandleW(library);
        const FARPROC function = loaded == nullptr ? nullptr : GetProcAddress(loaded, "MAPIFreeBuffer");
        if (function != nullptr) return reinterpret_cast<FreeFunction*>(reinterpret_cast<void*>(function));
    }
    static FreeFunction* ofSystem = nullptr;
    if (ofSystem == nullptr) ofSystem = SystemFunction<FreeFunction>(L"mapi32.dll", "MAPIFreeBuffer");
    return ofSystem;
}

struct MapiDelete {
    void operator()(void* memory) const noexcept { free(memory); }

    FreeFunction* free = nullptr;
};

using Value = std::unique_ptr<SPropValue, MapiDelete>;

/// The object's value of one property. Without a function that frees it, it counts as too large.
HRESULT GetValue(IMAPIProp& object, ULONG tag, Value& value) {
    FreeFunction* const free = MapiFree();
    if (free == nullptr) return MAPI_E_NOT_ENOUGH_MEMORY;
    SPropTagArray tags{1, {tag}};
    ULONG count = 0;
    SPropValue* given = nullptr;
    const HRESULT result = object.GetProps(&tags, 0, &count, &given);
    if (FAILED(result)) return result;
    value = Value(given, {free});
    if (given == nullptr || count == 0) return MAPI_E_CORRUPT_DATA;
    if (PROP_TYPE(given->ulPropTag) != PT_ERROR) return S_OK;
    return FAILED(given->Value.err) ? given->Value.err : MAPI_E_CORRUPT_DATA;
}

/// The number of readable bytes at this address, at most `wanted`.
size_t ReadableBytes(const void* begin, size_t wanted) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                                PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    const auto* const first = static_cast<const char*>(begin);
    size_t bytes = 0;
    while (bytes < wanted) {
        MEMORY_BASIC_INFORMATION region;
        if (VirtualQuery(first + bytes, &region, sizeof region) == 0) break;
        const bool readable = (region.Protect & kReadable) != 0 && (region.Protect & PAGE_GUARD) == 0;
        if (region.State != MEM_COMMIT || !readable) break;
        bytes = static_cast<size_t>(static_cast<const char*>(region.BaseAddress) + region.RegionSize - first);
    }
    return std::min(bytes, wanted);
}

/// The characters up to the first NUL, which may be missing.
template <class Character>
std::basic_string_view<Character> UpToNul(const void* begin, size_t most) {
    const auto* const text = static_cast<const Character*>(begin);
    const size_t length = ReadableBytes(text, most * sizeof *text) / sizeof *text;
    if (length == 0 && most != 0) com::Check(MAPI_E_CORRUPT_DATA);
    return {text, static_cast<size_t>(std::find(text, text + length, Character{}) - text)};
}

UINT CodePageOf(IMAPIProp& object) {
    Value value;
    if (FAILED(GetValue(object, kMessageCodePage, value)) || value->ulPropTag != kMessageCodePage) return CP_ACP;
    const auto page = static_cast<UINT>(value->Value.l);
    return IsValidCodePage(page) ? page : CP_ACP;
}

/// Converts the text at this address.
std::wstring TextAt(IMAPIProp& object, ULONG type, const void* begin, size_t most) {
    if (type == PT_UNICODE) return std::wstring(UpToNul<wchar_t>(begin, most));
    return com::FromCodePage(UpToNul<char>(begin, most * kLongestCharacter), CodePageOf(object));
}

/// Reads at most this many bytes and adds a NUL of either string type.
std::string ReadStream(IStream& stream, size_t most) {
    std::string bytes;
    char part[4096];
    while (bytes.size() < most) {
        const auto wanted = static_cast<ULONG>(std::min(most - bytes.size(), sizeof part));
        ULONG got = 0;
        com::Check(stream.Read(part, wanted, &got));
        if (got > wanted) com::Check(MAPI_E_CORRUPT_DATA);
        if (got == 0) break;
        bytes.append(part, got);
    }
    return bytes.append(sizeof(wchar_t), '\0');
}

/// Reads the property as the string type of the tag.
HRESULT Read(IMAPIProp& object, ULONG tag, size_t most, std::wstring& text) {
    Value value;
    HRESULT result = GetValue(object, tag, value);
    if (SUCCEEDED(result)) {
        const ULONG type = PROP_TYPE(value->ulPropTag);
        if (type != PT_UNICODE && type != PT_STRING8) return MAPI_E_UNEXPECTED_TYPE;
        text = TextAt(object, type, value->Value.lpszW, most);
    } else if (result == MAPI_E_NOT_ENOUGH_MEMORY) {
        Microsoft::WRL::ComPtr<IStream> stream;
        result =
            object.OpenProperty(tag, &IID_IStream, STGM_READ, 0, reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf()));
        if (FAILED(result)) return result;
        if (stream == nullptr) return MAPI_E_CORRUPT_DATA;
        const size_t width = PROP_TYPE(tag) == PT_UNICODE ? sizeof(wchar_t) : kLongestCharacter;
        text = TextAt(object, PROP_TYPE(tag), ReadStream(*stream.Get(), most * width).data(), most);
    }
    return result;
}

/// The object does not have the property as this string type.
bool IsAbsent(HRESULT result) {
    return result == MAPI_E_NOT_FOUND || result == MAPI_E_INVALID_TYPE || result == MAPI_E_TYPE_NO_SUPPORT ||
           result == MAPI_E_UNEXPECTED_TYPE;
}

/// The object has no property of this string type.
bool IsRefused(HRESULT result) { return result == MAPI_E_NO_SUPPORT || result == MAPI_E_BAD_CHARWIDTH; }

}  // namespace

std::wstring PropertyText(IMAPIProp& object, ULONG id, size_t most) {
    std::wstring text;
    const auto read = [&](ULONG type) {
        return com::Method([&] { return Read(object, PROP_TAG(type, id), most, text); });
    };
    HRESULT result = read(PT_UNICODE);
    if (FAILED(result)) {
        const HRESULT of8Bits = read(PT_STRING8);
        const bool hasNoUnicode = IsAbsent(result) || IsRefused(result);
        if (SUCCEEDED(of8Bits) || (hasNoUnicode && !IsRefused(of8Bits))) result = of8Bits;
    }
    if (IsAbsent(result)) return {};
    com::Check(result);
    Shorten(text, most);
    return text;
}

ULONG NamedProperty(IMAPIProp& object, const GUID& set, LONG number) {
    FreeFunction* const free = MapiFree();
    if (free == nullptr) return 0;
    GUID guid = set;
    MAPINAMEID name{&guid, MNID_ID, {number}};
    MAPINAMEID* names = &name;
    SPropTagArray* given = nullptr;
    const HRESULT result = object.GetIDsFromNames(1, &names, 0, &given);
    const std::unique_ptr<SPropTagArray, MapiDelete> tags(given, {free});
    if (FAILED(result) || tags == nullptr || tags->cValues == 0) return 0;
    return PROP_TYPE(tags->aulPropTag[0]) == PT_ERROR ? 0 : PROP_ID(tags->aulPropTag[0]);
}

}  // namespace beacon
