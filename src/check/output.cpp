#include <nlohmann/json.hpp>

#include "beacon_version.h"
#include "check/report.h"
#include "com/text.h"
#include "support/numbers.h"

namespace beacon::check {
namespace {

using nlohmann::ordered_json;

constexpr int kJsonFormat = 1;  // increase it when a member changes its meaning or goes away
constexpr size_t kTitleWidth = 13;
constexpr size_t kLineWidth = 100;

const char* StateText(ServerState state) {
    constexpr const char* texts[] = {"not registered", "file missing", "not a library", "other bitness",
                                     "does not load",  "not tried",    "loads"};
    static_assert(std::size(texts) == static_cast<size_t>(ServerState::Loads) + 1);
    return texts[static_cast<size_t>(state)];
}

const char* ControllerText(ControllerState state) {
    constexpr const char* texts[] = {"not running", "hangs", "fails", "answers"};
    static_assert(std::size(texts) == static_cast<size_t>(ControllerState::Answers) + 1);
    return texts[static_cast<size_t>(state)];
}

const char* OriginText(Origin origin) {
    return origin == Origin::User ? "user" : origin == Origin::Machine ? "machine" : "default";
}

std::wstring Wide(const char* ascii) { return com::FromUtf8(ascii); }

/// Appends spaces up to a column, at least one.
std::wstring Padded(std::wstring text, size_t width) {
    text.resize(std::max(text.size() + 1, width), L' ');
    return text;
}

std::wstring Trimmed(std::wstring line) {
    line.resize(line.find_last_not_of(L' ') + 1);
    return line + L"\n";
}

/// Breaks lines at spaces and indents all but the first. A long word stays whole.
std::wstring Wrapped(const std::wstring& text, size_t indent) {
    std::wstring lines;
    std::wstring line;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(L' ', at), text.size());
        if (!line.empty() && indent + line.size() + 1 + end - at > kLineWidth) {
            lines += line + L"\n" + std::wstring(indent, L' ');
            line.clear();
        }
        line += (line.empty() ? L"" : L" ") + text.substr(at, end - at);
        at = end + 1;
    }
    return lines + line + L"\n";
}

std::wstring ServerText(const Server& server) {
    std::wstring text = DecimalText(server.bits) + L"-bit  ";
    if (!server.file.empty()) text += server.file + L", ";
    if (!server.version.empty()) text += L"version " + server.version + L", ";
    if (server.ofUser) text += L"for this user only, ";
    return text + Wide(StateText(server.state));
}

std::wstring LoadText(const AddIn& addIn) {
    std::wstring text;
    if (addIn.ofMachine) text += L", LoadBehavior " + DecimalText(*addIn.ofMachine);
    if (addIn.ofUser) text += L", for this user " + DecimalText(*addIn.ofUser);
    return text;
}

/// Lines beside a title, which precedes the first one.
class Section {
public:
    Section(std::wstring& text, std::wstring title) : text_(text), title_(std::move(title)) {}

    void Line(const std::wstring& line) { text_ += Trimmed(Padded(std::exchange(title_, {}), kTitleWidth) + line); }

private:
    std::wstring& text_;
    std::wstring title_;
};

ordered_json Utf8(const std::wstring& text) { return com::ToUtf8(text); }

ordered_json Number(const std::optional<DWORD>& number) {
    return number ? ordered_json(*number) : ordered_json(nullptr);
}

ordered_json ServerObject(const Server& server) {
    return {{"bits", server.bits},
            {"state", StateText(server.state)},
            {"file", Utf8(server.file)},
            {"version", Utf8(server.version)},
            {"threadingModel", Utf8(server.threadingModel)},
            {"ofUser", server.ofUser}};
}

}  // namespace

std::wstring ReportAsText(const Report& report) {
    std::wstring text = L"beacon-check " BEACON_VERSION L", " + DecimalText(kOwnBits) + L"-bit\n\n";
    Section outlook(text, L"Outlook");
    for (const InstalledOutlook& one : report.outlooks)
        outlook.Line(L"version " + one.version + L", " + DecimalText(one.bits) + L"-bit");
    if (report.outlooks.empty()) outlook.Line(L"none found, so the bitness was not checked");
    Section addIns(text, L"Add-in");
    for (const AddIn& addIn : report.addIns) addIns.Line(ServerText(addIn.server) + LoadText(addIn));
    Section readers(text, L"Reader");
    for (const Server& reader : report.readers) readers.Line(ServerText(reader));
    Section(text, L"Controller").Line(Wide(ControllerText(report.controller)));
    Section settings(text, L"Settings");
    for (const SettingInForce& setting : report.settings)
        settings.Line(Padded(setting.name, 21) + Padded(Wide(OriginText(setting.origin)), 9) + setting.value +
                      (setting.registered.value_or(setting.value) != setting.value
                           ? L" (not \"" + *setting.registered + L"\")"
                           : L""));
    Section logs(text, L"Logs");
    logs.Line((report.logs.on ? L"on, " : L"off, ") + report.logs.folder +
              (report.logs.exists ? L"" : L" (the folder does not exist)"));
    for (const std::wstring& line : report.logs.exceptions) logs.Line(line);

    const size_t count = report.findings.size();
    text += count == 0   ? L"\nNo problems found.\n"
            : count == 1 ? L"\n1 problem found:\n"
                         : L"\n" + DecimalText(static_cast<std::int64_t>(count)) + L" problems found:\n";
    int number = 0;
    for (const Finding& finding : report.findings)
        text += L"\n" + Padded(DecimalText(++number) + L".", 4) + Wrapped(finding.what, 4) + L"    -> " +
                Wrapped(finding.remedy, 7);
    return text;
}

std::wstring ReportAsJson(const Report& report) {
    ordered_json whole{{"format", kJsonFormat}, {"program", {{"version", BEACON_VERSION}, {"bits", kOwnBits}}}};
    auto& outlooks = whole["outlook"] = ordered_json::array();
    for (const InstalledOutlook& one : report.outlooks)
        outlooks.push_back({{"version", Utf8(one.version)}, {"bits", one.bits}});
    auto& addIns = whole["addIn"] = ordered_json::array();
    for (const AddIn& addIn : report.addIns) {
        auto& object = addIns.emplace_back(ServerObject(addIn.server));
        object["loadBehavior"] = {{"machine", Number(addIn.ofMachine)}, {"user", Number(addIn.ofUser)}};
    }
    auto& readers = whole["reader"] = ordered_json::array();
    for (const Server& reader : report.readers) readers.push_back(ServerObject(reader));
    whole["controller"] = ControllerText(report.controller);
    auto& settings = whole["settings"] = ordered_json::array();
    for (const SettingInForce& setting : report.settings)
        settings.push_back({{"name", Utf8(setting.name)},
                            {"value", Utf8(setting.value)},
                            {"from", OriginText(setting.origin)},
                            {"registered", setting.registered ? Utf8(*setting.registered) : ordered_json(nullptr)}});
    auto& logs = whole["logs"] = {{"on", report.logs.on},
                                  {"folder", Utf8(report.logs.folder)},
                                  {"exists", report.logs.exists},
                                  {"exceptionCount", report.logs.exceptionCount}};
    auto& exceptions = logs["exceptions"] = ordered_json::array();
    for (const std::wstring& line : report.logs.exceptions) exceptions.push_back(Utf8(line));
    auto& findings = whole["findings"] = ordered_json::array();
    for (const Finding& finding : report.findings)
        findings.push_back({{"id", finding.id}, {"what", Utf8(finding.what)}, {"remedy", Utf8(finding.remedy)}});
    return com::FromUtf8(whole.dump(2, ' ', false, ordered_json::error_handler_t::replace)) + L"\n";
}

}  // namespace beacon::check
