#include "com/text.h"

#include <new>

namespace beacon::com {
namespace {

std::string Encode(std::wstring_view text, UINT codePage) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

}  // namespace

BSTR NewBstr(std::wstring_view text) {
    BSTR result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

std::wstring FromCodePage(std::string_view text, UINT codePage) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, result.data(), size);
    return result;
}

std::string ToAnsi(std::wstring_view text) { return Encode(text, CP_ACP); }

std::wstring FromAnsi(std::string_view text) { return FromCodePage(text, CP_ACP); }

std::string ToUtf8(std::wstring_view text) { return Encode(text, CP_UTF8); }

std::wstring FromUtf8(std::string_view text) { return FromCodePage(text, CP_UTF8); }

}  // namespace beacon::com
