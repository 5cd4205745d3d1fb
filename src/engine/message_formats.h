#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The engine's messages, one function for each. Their irregular spacing is part of the format. Values go between the
/// quotes unencoded.
namespace beacon {

/// Identifies a document in every message about it.
struct DocumentRef {
    std::wstring_view id;
    std::wstring_view path;
    std::wstring_view name;
};

/// The fields of a person, XML-encoded.
struct EncodedPerson {
    std::wstring_view firstName;
    std::wstring_view lastName;
    std::wstring_view company;
    std::wstring_view position;
    std::wstring_view email;
};

/// Preambles. linkId is the handle of the watched window. The title attribute repeats the document's name.
std::wstring PreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document);
std::wstring ContactPreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document);
std::wstring EmailPreambleMessage(std::int32_t linkId, bool buttonClicked, const DocumentRef& document,
                                  std::wstring_view sender, std::wstring_view recipient);

/// End of a document that the engine is to process, or not to process.
std::wstring EodMessage(std::wstring_view documentId);
std::wstring UnsupportedEodMessage(std::wstring_view documentId);

std::wstring PersonMessage(const EncodedPerson& person, const DocumentRef& document);

/// One piece of text. encodedText is XML-encoded.
std::wstring SendDocumentMessage(std::wstring_view emphasis, std::wstring_view encodedText,
                                 const DocumentRef& document);

std::wstring HelloMessage(std::int32_t linkId);
std::wstring ExitMessage(std::int32_t linkId);

}  // namespace beacon
