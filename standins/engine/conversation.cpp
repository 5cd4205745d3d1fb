#include "engine/conversation.h"

#include <algorithm>
#include <array>
#include <utility>

namespace beacon::standin {
namespace {

using namespace std::literals;

constexpr std::array kEmphases{L"high"sv, L"medium"sv, L"low"sv, L"selected"sv};

Observation& Add(std::vector<Observation>& out, ObservationKind kind, std::wstring text) {
    return out.emplace_back(Observation{kind, std::move(text), {}, {}, 0});
}

void Fault(std::vector<Observation>& out, std::wstring text) { Add(out, ObservationKind::Fault, std::move(text)); }

void Note(std::vector<Observation>& out, std::wstring text) { Add(out, ObservationKind::Note, std::move(text)); }

std::wstring InQuotes(std::wstring_view text) { return L"\"" + std::wstring(text) + L"\""; }

std::wstring ValueOf(const Element& element, std::wstring_view attribute) {
    const std::wstring* value = element.Find(attribute);
    return value == nullptr ? std::wstring() : *value;
}

std::wstring Decoded(const Element& element, std::wstring_view attribute, std::vector<Observation>& out) {
    const std::wstring value = ValueOf(element, attribute);
    if (!IsEncoded(value)) Fault(out, element.name + L": " + std::wstring(attribute) + L" is not encoded");
    return DecodeEntities(value);
}

bool IsNumber(std::wstring_view text) {
    return !text.empty() && std::ranges::all_of(text, [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

}  // namespace

std::vector<Observation> Conversation::Message(std::wstring_view text, uint64_t now) {
    Observations out;
    const Element element = ParseElement(text);
    for (const std::wstring& problem : element.problems) Fault(out, problem);
    if (element.name.empty()) return out;
    if (!greeted_ && element.name != L"hello") Fault(out, element.name + L" before hello");
    if (element.name == L"hello")
        OnHello(element, out);
    else if (element.name == L"exit")
        OnExit(element, L"engine", now, out);
    else if (element.name == L"pre_send_document")
        OnPreamble(element, now, out);
    else if (element.name == L"send_document")
        OnText(element, out);
    else if (element.name == L"person")
        OnPerson(element, out);
    else if (element.name == L"eod")
        OnEnd(element, now, out);
    else
        Fault(out, L"unknown element " + InQuotes(element.name));
    return out;
}

std::vector<Observation> Conversation::Control(std::wstring_view text, uint64_t now) {
    Observations out;
    const Element element = ParseElement(text);
    for (const std::wstring& problem : element.problems) Fault(out, problem);
    if (element.name == L"exit")
        OnExit(element, L"controller", now, out);
    else if (!element.name.empty())
        Fault(out, L"unknown control " + InQuotes(element.name));
    return out;
}

std::vector<Observation> Conversation::Ended(bool inOrder, uint64_t now) {
    Observations out;
    CloseDocument(inOrder ? L"interrupted: the client disconnected" : L"link lost", now, out);
    if (inOrder && greeted_) Note(out, L"disconnected without exit");
    greeted_ = false;
    return out;
}

void Conversation::OnHello(const Element& element, Observations& out) {
    CheckId(element, out);
    if (greeted_) Fault(out, L"hello again without exit");
    greeted_ = true;
    Add(out, ObservationKind::Hello, {});
}

void Conversation::OnExit(const Element& element, std::wstring_view channel, uint64_t now, Observations& out) {
    CheckId(element, out);
    CloseDocument(L"interrupted by exit", now, out);
    // The controller hears of it first; the engine's copy is the last message of the conversation.
    if (channel == L"engine") greeted_ = false;
    Add(out, ObservationKind::Exit, std::wstring(channel));
}

void Conversation::OnPreamble(const Element& element, uint64_t now, Observations& out) {
    CloseDocument(L"interrupted by the next preamble", now, out);
    CheckId(element, out);
    Document document;
    document.type = ValueOf(element, L"type");
    document.title = Required(element, L"title", out);
    document.id = Required(element, L"docId", out);
    document.name = Required(element, L"docName", out);
    document.began = now;
    Required(element, L"docPath", out);
    const bool mail = document.type == L"email";
    if (!mail && document.type != L"contact" && !document.type.empty())
        Fault(out, L"preamble: unknown type " + InQuotes(document.type));
    if (mail) {
        document.sender = Required(element, L"sender", out);
        document.recipient = Required(element, L"recipient", out);
    }
    if (document.title != document.name) Fault(out, L"preamble: title and docName differ");
    if (Required(element, L"refresh", out) != L"true") Fault(out, L"preamble: refresh is not \"true\"");
    if (!IsNumber(Required(element, L"spanCnt", out))) Fault(out, L"preamble: spanCnt is not a number");
    const std::wstring button = Required(element, L"buttonClicked", out);
    if (button != L"0" && button != L"1") Fault(out, L"preamble: buttonClicked is neither \"0\" nor \"1\"");
    document.buttonClicked = button == L"1";
    Add(out, ObservationKind::DocumentBegan, {}).document = document;
    document_ = std::move(document);
}

void Conversation::OnText(const Element& element, Observations& out) {
    if (CheckDocument(element, out)) ++document_->texts;
    const std::wstring emphasis = Required(element, L"emphasis", out);
    if (std::ranges::find(kEmphases, emphasis) == kEmphases.end())
        Fault(out, L"send_document: unknown emphasis " + InQuotes(emphasis));
    if (element.Find(L"doc") == nullptr) Fault(out, L"send_document: attribute doc is missing");
    std::wstring text = Decoded(element, L"doc", out);
    Add(out, ObservationKind::Text, std::move(text)).emphasis = emphasis;
}

void Conversation::OnPerson(const Element& element, Observations& out) {
    if (!document_) {
        // Persons pass while both gates are closed, so that one may come alone.
        Note(out, L"person outside a document");
    } else if (CheckDocument(element, out)) {
        ++document_->persons;
    }
    std::wstring line;
    for (const std::wstring_view attribute : {L"firstname"sv, L"lastname"sv, L"company"sv, L"position"sv, L"email"sv}) {
        if (element.Find(attribute) == nullptr)
            Fault(out, L"person: attribute " + std::wstring(attribute) + L" is missing");
        const std::wstring value = Decoded(element, attribute, out);
        if (value.empty()) continue;
        if (!line.empty()) line += attribute == L"lastname" ? L" " : L", ";
        line += value;
    }
    Add(out, ObservationKind::Person, std::move(line));
}

void Conversation::OnEnd(const Element& element, uint64_t now, Observations& out) {
    const bool ours = CheckDocument(element, out);
    const std::wstring process = Required(element, L"shouldProcess", out);
    std::wstring how = L"complete";
    if (process == L"0")
        how = L"unsupported, reason " + Required(element, L"reasonNoProcess", out);
    else if (process != L"1")
        Fault(out, L"eod: shouldProcess is neither \"0\" nor \"1\"");
    if (ours) CloseDocument(std::move(how), now, out);
}

std::wstring Conversation::Required(const Element& element, std::wstring_view attribute, Observations& out) const {
    const std::wstring* value = element.Find(attribute);
    if (value != nullptr) return *value;
    Fault(out, element.name + L": attribute " + std::wstring(attribute) + L" is missing");
    return {};
}

void Conversation::CheckId(const Element& element, Observations& out) const {
    const std::wstring id = Required(element, L"id", out);
    if (element.Find(L"id") != nullptr && id != std::to_wstring(handle_))
        Fault(out, element.name + L": id " + InQuotes(id) + L" is not this client's handle");
}

bool Conversation::CheckDocument(const Element& element, Observations& out) const {
    const std::wstring id = Required(element, L"docId", out);
    if (!document_) {
        const bool late = !lastDocumentId_.empty() && id == lastDocumentId_;
        Fault(out, element.name + (late ? L" after eod" : L" before any preamble"));
        return false;
    }
    if (id != document_->id) {
        Fault(out,
              element.name + L": wrong docId " + InQuotes(id) + L", the open document is " + InQuotes(document_->id));
        return false;
    }
    const std::wstring* name = element.Find(L"docName");
    if (name != nullptr && *name != document_->name) Fault(out, element.name + L": docName is not the preamble's");
    return true;
}

void Conversation::CloseDocument(std::wstring how, uint64_t now, Observations& out) {
    if (!document_) return;
    lastDocumentId_ = document_->id;
    Observation& ended = Add(out, ObservationKind::DocumentEnded, std::move(how));
    ended.took = now - document_->began;
    ended.document = std::move(*document_);
    document_.reset();
}

}  // namespace beacon::standin
