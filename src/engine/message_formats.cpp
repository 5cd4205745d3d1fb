#include "engine/message_formats.h"

#include <initializer_list>

#include "support/numbers.h"

namespace beacon {
namespace {

constexpr std::wstring_view kQuote = L"\"";
constexpr std::wstring_view kQuoteBlank = L"\" ";
// At the end of person and text messages. Preambles have other spacing.
constexpr std::wstring_view kDocId = L"\" docId=\"";
constexpr std::wstring_view kDocPath = L"\" docPath=\"";
constexpr std::wstring_view kDocName = L"\" docName=\"";

std::wstring Concat(std::initializer_list<std::wstring_view> pieces) {
    std::size_t size = 0;
    for (const std::wstring_view piece : pieces) size += piece.size();
    std::wstring out;
    out.reserve(size);
    for (const std::wstring_view piece : pieces) out += piece;
    return out;
}

std::wstring_view ButtonFlag(bool clicked) { return clicked ? L"1" : L"0"; }

// The common part of all preambles, from title to span count. Some have spaces in the id attribute.
std::wstring PreambleAttributes(std::wstring_view idAttribute, std::int32_t linkId, const DocumentRef& document) {
    return Concat({L" title=\"", document.name, kQuoteBlank, idAttribute, DecimalText(linkId), kQuoteBlank,
                   L" refresh=\"true\" ", L" docId=\"", document.id, kQuoteBlank, L" docPath=\"", document.path, kQuote,
                   L" docName=\"", document.name, kQuote, L" spanCnt=\"", L"100", kQuoteBlank});
}

std::wstring SpacedPreamble(std::wstring_view type, std::int32_t linkId, bool buttonClicked,
                            const DocumentRef& document) {
    return Concat({L"<pre_send_document", type, PreambleAttributes(L" id = \"", linkId, document), L" buttonClicked=\"",
                   ButtonFlag(buttonClicked), kQuote, L" />"});
}

}  // namespace

std::wstring PreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document) {
    return SpacedPreamble({}, linkId, buttonClicked, document);
}

std::wstring ContactPreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document) {
    return SpacedPreamble(L" type=\"contact\"", linkId, buttonClicked, document);
}

std::wstring EmailPreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document,
                                  std::wstring_view sender, std::wstring_view recipient) {
    return Concat({L"<pre_send_document", PreambleAttributes(L" id=\"", linkId, document), L" type=\"email\" ",
                   L" sender=\"", sender, kQuoteBlank, L" recipient=\"", recipient, kQuoteBlank, L" buttonClicked=\"",
                   ButtonFlag(buttonClicked), kQuote, L" />"});
}

std::wstring EodMessage(std::wstring_view documentId) {
    return Concat({L"<eod docId=\"", documentId, L"\" shouldProcess=\"", L"1", L"\"/>"});
}

std::wstring UnsupportedEodMessage(std::wstring_view documentId) {
    return Concat(
        {L"<eod docId=\"", documentId, L"\" shouldProcess=\"", L"0", L"\" reasonNoProcess=\"", L"3", L"\"/>"});
}

std::wstring PersonMessage(const EncodedPerson& person, const DocumentRef& document) {
    return Concat({L"<person firstname=\"", person.firstName, L"\" lastname=\"", person.lastName, L"\" company=\"",
                   person.company, L"\" position=\"", person.position, L"\" email=\"", person.email, kDocId,
                   document.id, kDocPath, document.path, kDocName, document.name, L"\"/>"});
}

std::wstring SendDocumentMessage(std::wstring_view emphasis, std::wstring_view encodedText,
                                 const DocumentRef& document) {
    return Concat({L"<send_document emphasis=\"", emphasis, L"\" doc=\"", encodedText, kDocId, document.id, kDocPath,
                   document.path, kDocName, document.name, L"\" />"});
}

std::wstring HelloMessage(std::int32_t linkId) { return Concat({L"<hello id=\"", DecimalText(linkId), L"\"/>"}); }

std::wstring ExitMessage(std::int32_t linkId) { return Concat({L"<exit id=\"", DecimalText(linkId), L"\"/>"}); }

}  // namespace beacon
