#include "engine/encoders.h"

#include "support/numbers.h"
#include "support/scan.h"

namespace beacon {
namespace {

using namespace std::string_view_literals;

// What a character becomes; a view without data when it stays as it is.
std::wstring_view Expansion(wchar_t character) {
    switch (character) {
        case L'&': return L"&amp;"sv;
        case L'<': return L"&lt;"sv;
        case L'>': return L"&gt;"sv;
        case L'"': return L"&quot;"sv;
        case L'\'': return L"&apos;"sv;
        default: break;
    }
    const bool dropped = (character >= 0x01 && character <= 0x08) || character == 0x0B || character == 0x0C ||
                         character == 0x0E || character == 0x19 || (character >= 0x1B && character <= 0x1F);
    return dropped ? L""sv : std::wstring_view();
}

// Index of the first character that may have an expansion: three comparisons take all of them, and some others along.
std::size_t FindExpandable(std::wstring_view text, std::size_t from) {
    return FindIf(text, from, [](CodeUnit unit) {
        return (unit < 0x20) | ((unit & ~5U) == L'"') | ((unit | 2U) == L'>');  // "#&' and <>
    });
}

}  // namespace

std::wstring ExpandEntity(wchar_t character) { return XmlEncode(std::wstring(1, character)); }

std::wstring XmlEncode(std::wstring text) {
    std::size_t next = FindExpandable(text, 0);
    while (next < text.size() && Expansion(text[next]).data() == nullptr) next = FindExpandable(text, next + 1);
    if (next == text.size()) return text;
    std::wstring out;
    out.reserve(2 * text.size() + 32);
    for (std::size_t from = 0;; next = FindExpandable(text, from)) {
        out.append(text, from, next - from);
        if (next == text.size()) return out;
        const std::wstring_view expansion = Expansion(text[next]);
        out += expansion.data() == nullptr ? std::wstring_view(&text[next], 1) : expansion;
        from = next + 1;
    }
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
