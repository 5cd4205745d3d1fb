#include "engine/wire.h"

#include <algorithm>
#include <array>
#include <cwctype>

namespace beacon::standin {
namespace {

constexpr std::array<std::pair<std::wstring_view, wchar_t>, 5> kEntities{
    {{L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&quot;", L'"'}, {L"&apos;", L'\''}}};

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }

bool IsNameCharacter(wchar_t c) { return std::iswalnum(static_cast<wint_t>(c)) != 0 || c == L'_' || c == L'-'; }

size_t SkipBlanks(std::wstring_view text, size_t at) {
    while (at < text.size() && IsBlank(text[at])) ++at;
    return at;
}

size_t SkipName(std::wstring_view text, size_t at) {
    while (at < text.size() && IsNameCharacter(text[at])) ++at;
    return at;
}

bool IsEnd(std::wstring_view rest) { return rest == L"/>" || rest == L">"; }

// Past ` = "`, or npos when that does not stand here.
size_t SkipAssignment(std::wstring_view text, size_t at) {
    at = SkipBlanks(text, at);
    if (at >= text.size() || text[at] != L'=') return std::wstring_view::npos;
    at = SkipBlanks(text, at + 1);
    return at < text.size() && text[at] == L'"' ? at + 1 : std::wstring_view::npos;
}

bool EndsValue(std::wstring_view text, size_t quote) {
    const size_t next = SkipBlanks(text, quote + 1);
    if (IsEnd(text.substr(next))) return true;
    if (next == quote + 1) return false;
    const size_t name = SkipName(text, next);
    return name > next && SkipAssignment(text, name) != std::wstring_view::npos;
}

// The quote that ends the value which begins here, or npos.
size_t FindValueEnd(std::wstring_view text, size_t at) {
    for (size_t quote = text.find(L'"', at); quote != std::wstring_view::npos; quote = text.find(L'"', quote + 1))
        if (EndsValue(text, quote)) return quote;
    return std::wstring_view::npos;
}

}  // namespace

const std::wstring* Element::Find(std::wstring_view attribute) const {
    const auto found = std::ranges::find(attributes, attribute, &Attribute::name);
    return found == attributes.end() ? nullptr : &found->value;
}

Element ParseElement(std::wstring_view text) {
    Element element;
    if (text.empty() || text.front() != L'<') {
        element.problems.emplace_back(L"the text does not begin with \"<\"");
        return element;
    }
    size_t at = SkipName(text, 1);
    element.name = text.substr(1, at - 1);
    if (element.name.empty()) element.problems.emplace_back(L"no name follows \"<\"");
    for (;;) {
        at = SkipBlanks(text, at);
        if (IsEnd(text.substr(at))) return element;
        if (at == text.size()) {
            element.problems.emplace_back(L"the closing \"/>\" is missing");
            return element;
        }
        const size_t nameEnd = SkipName(text, at);
        const std::wstring name(text.substr(at, nameEnd - at));
        const size_t value = SkipAssignment(text, nameEnd);
        if (name.empty() || value == std::wstring_view::npos) {
            element.problems.emplace_back(L"malformed attributes from \"" + std::wstring(text.substr(at, 30)) +
                                          L"\" on");
            return element;
        }
        const size_t end = FindValueEnd(text, value);
        if (element.Find(name) != nullptr) element.problems.emplace_back(L"attribute " + name + L" comes twice");
        element.attributes.push_back({name, std::wstring(text.substr(value, end - value))});
        if (end == std::wstring_view::npos) {
            element.problems.emplace_back(L"malformed attributes: " + name + L" has no closing quote");
            return element;
        }
        at = end + 1;
    }
}

std::wstring DecodeEntities(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto entity = std::ranges::find_if(
            kEntities, [&](const auto& candidate) { return text.substr(at).starts_with(candidate.first); });
        if (entity == kEntities.end()) {
            result += text[at++];
        } else {
            result += entity->second;
            at += entity->first.size();
        }
    }
    return result;
}

bool IsEncoded(std::wstring_view text) {
    for (size_t at = text.find_first_of(L"&<>\"'"); at != std::wstring_view::npos;
         at = text.find_first_of(L"&<>\"'", at + 1)) {
        const bool entity = std::ranges::any_of(
            kEntities, [&](const auto& candidate) { return text.substr(at).starts_with(candidate.first); });
        if (!entity) return false;
    }
    return true;
}

}  // namespace beacon::standin
