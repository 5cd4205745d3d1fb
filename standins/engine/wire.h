#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace beacon::standin {

struct Attribute {
    std::wstring name;
    std::wstring value;  // as it stands in the message, not decoded
};

/// One message as a client sent it. Parsing never fails altogether: what can be read is read, the rest is a problem.
struct Element {
    std::wstring name;  // empty when the text does not begin like an element
    std::vector<Attribute> attributes;
    std::vector<std::wstring> problems;

    /// The value of an attribute, or null when the message has none of that name.
    const std::wstring* Find(std::wstring_view attribute) const;
};

/// Reads a message of one element. Clients do not encode titles, names, senders or document ids, so a value may hold
/// double quotes: a quote ends the value only where the next attribute or the end of the message follows it.
Element ParseElement(std::wstring_view text);

/// Decodes the five entities a client encodes; any other "&" stays as it is.
std::wstring DecodeEntities(std::wstring_view text);

/// Whether a value is encoded as clients encode texts: none of < > " ' and no "&" that begins none of the five
/// entities.
bool IsEncoded(std::wstring_view text);

}  // namespace beacon::standin
