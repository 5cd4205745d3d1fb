#include "engine/encoders.h"

#include "support/numbers.h"

namespace beacon {
namespace {

bool IsDroppedControl(wchar_t character) {
    return (character >= 0x01 && character <= 0x08) || character == 0x0B || character == 0x0C || character == 0x0E ||
           character == 0x19 || (character >= 0x1B && character <= 0x1F);
}

// The entity of a character that needs one, else an empty text.
std::wstring_view EntityOf(wchar_t character) {
    switch (character) {
        case L'&': return L"&amp;";
        case L'<': return L"&lt;";
        case L'>': return L"&gt;";
        case L'"': return L"&quot;";
        case L'\'': return L"&apos;";
        default: return {};
    }
}

void AppendExpanded(std::wstring& out, wchar_t character) {
    if (IsDroppedControl(character)) return;
    const std::wstring_view entity = EntityOf(character);
    if (entity.empty())
        out += character;
    else
        out += entity;
}

}  // namespace

std::wstring ExpandEntity(wchar_t character) {
    std::wstring out;
    AppendExpanded(out, character);
    return out;
}

std::wstring XmlEncode(std::wstring_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (const wchar_t character : text) AppendExpanded(out, character);
    return out;
}

std::wstring UrlEncode(std::wstring_view text) {
    constexpr std::wstring_view kReserved = L";/?:@=&";
    constexpr std::wstring_view kUnsafe = L" \"<>#%{}|\\^~[]`";
    std::wstring out;
    out.reserve(text.size());
    for (const wchar_t character : text) {
        if (kReserved.find(character) != std::wstring_view::npos ||
            kUnsafe.find(character) != std::wstring_view::npos) {
            out += L'%';
            out += HexText(static_cast<std::uint32_t>(character));
        } else {
            out += character;
        }
    }
    return out;
}

std::wstring UrlDecode(std::wstring_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'%' && text.size() - i > 2) {
            out += static_cast<wchar_t>(16 * cHex(text[i + 1]) + cHex(text[i + 2]));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

int cHex(wchar_t digit) {
    if (digit >= L'0' && digit <= L'9') return digit - L'0';
    if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
    if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
    return 0;
}

}  // namespace beacon
