#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/wire.h"

namespace beacon::standin {

/// A document that a client is sending.
struct Document {
    std::wstring type;  // "email", "contact" or empty for a plain document
    std::wstring title;
    std::wstring id;
    std::wstring name;
    std::wstring sender;
    std::wstring recipient;
    bool buttonClicked = false;
    uint64_t began = 0;  // milliseconds of the caller's clock
    size_t texts = 0;
    size_t persons = 0;
};

enum class ObservationKind { Hello, Exit, DocumentBegan, Text, Person, DocumentEnded, Fault, Note };

/// One thing learned from a client's message. The kind decides which members are filled.
struct Observation {
    ObservationKind kind;
    std::wstring text;      // decoded text, person in one line, how a document ended, what is wrong
    std::wstring emphasis;  // Text only
    Document document;      // DocumentBegan, DocumentEnded
    uint64_t took = 0;      // DocumentEnded: milliseconds since the preamble
};

/// Follows the messages of one client window and checks them against the protocol. A violation of the protocol is
/// reported as a Fault, an unusual but valid message as a Note.
class Conversation {
public:
    explicit Conversation(long handle) : handle_(handle) {}

    std::vector<Observation> Message(std::wstring_view text, uint64_t now);
    std::vector<Observation> Control(std::wstring_view text, uint64_t now);
    /// Call when the engine channel ends. `inOrder`: the client called Disconnect.
    std::vector<Observation> Ended(bool inOrder, uint64_t now);

private:
    using Observations = std::vector<Observation>;

    void OnHello(const Element& element, Observations& out);
    void OnExit(const Element& element, std::wstring_view channel, uint64_t now, Observations& out);
    void OnPreamble(const Element& element, uint64_t now, Observations& out);
    void OnText(const Element& element, Observations& out);
    void OnPerson(const Element& element, Observations& out);
    void OnEnd(const Element& element, uint64_t now, Observations& out);

    std::wstring Required(const Element& element, std::wstring_view attribute, Observations& out) const;
    void CheckId(const Element& element, Observations& out) const;
    bool CheckDocument(const Element& element, Observations& out) const;
    void CloseDocument(std::wstring how, uint64_t now, Observations& out);

    const long handle_;
    bool greeted_ = false;
    std::optional<Document> document_;
    std::wstring lastDocumentId_;
};

}  // namespace beacon::standin
