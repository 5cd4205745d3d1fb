#include "engine/view.h"

#include <cwchar>

namespace beacon::standin {
namespace {

std::wstring Printable(std::wstring_view text) {
    std::wstring result;
    for (const wchar_t c : text) {
        if (c == L'\r') {
            result += L"\\r";
        } else if (c == L'\n') {
            result += L"\\n";
        } else if (c == L'\t') {
            result += L"\\t";
        } else if (c < 0x20 || c == 0x7F) {
            wchar_t code[8];
            std::swprintf(code, std::size(code), L"\\x%02X", static_cast<unsigned>(c));
            result += code;
        } else {
            result += c;
        }
    }
    return result;
}

std::wstring Shortened(std::wstring_view text, size_t width) {
    if (text.size() <= width) return L"\"" + Printable(text) + L"\"";
    // A cut between the halves of a surrogate pair would print rubbish.
    const size_t cut = width > 0 && text[width - 1] >= 0xD800 && text[width - 1] <= 0xDBFF ? width - 1 : width;
    return L"\"" + Printable(text.substr(0, cut)) + L"...\" (" + std::to_wstring(text.size()) + L" characters)";
}

std::wstring Padded(std::wstring text, size_t width) {
    if (text.size() < width) text.append(width - text.size(), L' ');
    return text;
}

std::wstring Counted(size_t count, const wchar_t* what) {
    return std::to_wstring(count) + L" " + what + (count == 1 ? L"" : L"s");
}

const wchar_t* KindOf(const Document& document) {
    if (document.type == L"email") return L"MAIL";
    return document.type == L"contact" ? L"CONTACT" : L"DOCUMENT";
}

std::wstring Began(const Document& document, size_t width) {
    std::wstring line = KindOf(document) + (L" " + Shortened(document.title, width));
    if (document.type == L"email")
        line += L" from " + Shortened(document.sender, width) + L" to " + Shortened(document.recipient, width);
    if (document.buttonClicked) line += L" [button clicked]";
    return line + L" docId " + Shortened(document.id, width);
}

std::wstring Ended(const Observation& observation) {
    const Document& document = observation.document;
    return L"  " + observation.text + L": " + Counted(document.texts, L"text") + L", " +
           Counted(document.persons, L"person") + L", " + std::to_wstring(observation.took) + L" ms";
}

std::wstring Describe(const Observation& observation, size_t width) {
    switch (observation.kind) {
        case ObservationKind::Hello: return L"hello";
        case ObservationKind::Exit: return L"exit, told to the " + observation.text;
        case ObservationKind::DocumentBegan: return Began(observation.document, width);
        case ObservationKind::Text:
            return L"  " + Padded(observation.emphasis, 8) + L" " + Shortened(observation.text, width);
        case ObservationKind::Person: return L"  person   " + Shortened(observation.text, width);
        case ObservationKind::DocumentEnded: return Ended(observation);
        case ObservationKind::Fault: return L"FAULT: " + Printable(observation.text);
        case ObservationKind::Note: return L"note: " + Printable(observation.text);
    }
    return {};
}

}  // namespace

std::wstring DescribeObservation(long handle, const Observation& observation, size_t width) {
    return Padded(std::to_wstring(handle), 8) + L" " + Describe(observation, width);
}

std::wstring EscapeRaw(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (const wchar_t c : text)
        if (c == L'\\')
            result += L"\\\\";
        else if (c == L'\r')
            result += L"\\r";
        else if (c == L'\n')
            result += L"\\n";
        else
            result += c;
    return result;
}

}  // namespace beacon::standin
