#include "engine/encoders.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "support/numbers.h"
#include "support/scan.h"

namespace beacon {
namespace {

using namespace std::string_view_literals;

// The replacement of one character. Copying all six characters is faster than copying `size` of them.
struct Expansion {
    wchar_t text[6];
    std::size_t size;
};

constexpr auto kExpansions = [] {
    std::array<Expansion, 64> table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit) {
        const bool dropped = (unit >= 0x01 && unit <= 0x08) || unit == 0x0B || unit == 0x0C || unit == 0x0E ||
                             unit == 0x19 || (unit >= 0x1B && unit <= 0x1F);
        if (!dropped) table[unit] = {{static_cast<wchar_t>(unit)}, 1};
    }
    table[L'&'] = {{L'&', L'a', L'm', L'p', L';'}, 5};
    table[L'<'] = {{L'&', L'l', L't', L';'}, 4};
    table[L'>'] = {{L'&', L'g', L't', L';'}, 4};
    table[L'"'] = {{L'&', L'q', L'u', L'o', L't', L';'}, 6};
    table[L'\''] = {{L'&', L'a', L'p', L'o', L's', L';'}, 6};
    return table;
}();

// Index of the first character that may have an expansion. Three comparisons also match a few others, such as "#".
std::size_t FindExpandable(std::wstring_view text, std::size_t from) {
    return FindIf(text, from, [](CodeUnit unit) {
        return (unit < 0x20) | ((unit & ~5U) == L'"') | ((unit | 2U) == L'>');  // "#&' and <>
    });
}

}  // namespace

std::wstring ExpandEntity(wchar_t character) { return XmlEncode(std::wstring(1, character)); }

std::wstring XmlEncode(std::wstring text) {
    std::size_t next = FindExpandable(text, 0);
    const auto expansionAt = [&](std::size_t i) -> const Expansion& {
        return kExpansions[static_cast<CodeUnit>(text[i])];  // below 64, as FindExpandable tests
    };
    while (next < text.size() && expansionAt(next).size == 1) next = FindExpandable(text, next + 1);
    if (next == text.size()) return text;
    std::wstring out;
    out.reserve(2 * text.size() + 32);
    // Collects short pieces: appending each to `out` costs a call.
    constexpr std::size_t kShort = 16;
    wchar_t gathered[128];
    std::size_t count = 0;
    const auto flush = [&] { out.append(gathered, std::exchange(count, 0)); };
    for (std::size_t from = 0;; from = next + 1, next = FindExpandable(text, from)) {
        if (next - from > kShort) {
            flush();
            out.append(text, from, next - from);
        } else {
            for (; from < next; ++from) gathered[count++] = text[from];
        }
        if (next == text.size()) break;
        const Expansion& expansion = expansionAt(next);
        std::copy(std::begin(expansion.text), std::end(expansion.text), gathered + count);
        count += expansion.size;
        if (count + kShort + std::size(expansion.text) > std::size(gathered)) flush();
    }
    flush();
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
