#include "outlook/program/options.h"

#include <algorithm>
#include <stdexcept>

#include "common/command_line.h"

namespace beacon::standin {
namespace {

// What the releases said of themselves when only the number is asked for.
std::wstring FullVersion(const std::wstring& text) {
    if (text == L"9") return L"9.0.0.2711";
    if (text == L"10") return L"10.0.2627";
    if (text == L"11") return L"11.0.5510";
    if (text == L"12") return L"12.0.0.4518";
    return text;
}

int WindowVersion(const std::wstring& text) {
    const std::wstring major = text.substr(0, text.find(L'.'));
    if (major == L"9") return 9;
    if (major == L"10") return 10;
    if (major == L"11") return 11;
    return 12;  // also for later ones and odd texts: the newest windows that are known
}

std::chrono::milliseconds Seconds(const std::wstring& text) {
    try {
        size_t used = 0;
        const double value = std::stod(text, &used);
        if (used == text.size() && value >= 0 && value < 100000)
            return std::chrono::milliseconds(static_cast<long long>(value * 1000));
    } catch (const std::logic_error&) {
        // told below
    }
    throw UsageError{L"needs a number of seconds, not \"" + text + L"\""};
}

EventGeneration Generation(const std::wstring& text) {
    if (text == L"old") return EventGeneration::Old;
    if (text == L"new") return EventGeneration::New;
    if (text == L"both") return EventGeneration::Both;
    throw UsageError{L"is old, new or both, not \"" + text + L"\""};
}

std::vector<Option> KnownOptions(Options& options) {
    const auto setVersion = [&](const std::wstring& value) {
        options.version = FullVersion(value);
        options.majorVersion = WindowVersion(options.version);
    };
    return {
        {L"--outlook-version V", L"9, 10, 11, 12 or a full text such as 10.0.2627 (default)", setVersion},
        {L"--events WHICH",
         L"old, new or both event interfaces of inspectors and items (default: old for 9, else both)",
         [&](const std::wstring& value) { options.events = Generation(value); }},
        {L"--store FILE", L"items as written by import_mail.py", Set(options.store)},
        {L"--script FILE", L"commands to run, then quit; without it they come from standard input",
         Set(options.script)},
        {L"--interactive", L"after the script go on with standard input", Set(options.interactive)},
        {L"--item-only ENTRY", L"start with the window of this item (number or subject) and without an explorer",
         Set(options.itemOnly)},
        {L"--bars FILE", L"keep permanent command bars there over a restart (default: in %AppData%)",
         Set(options.barsFile)},
        {L"--addin PROGID", L"load this registered add-in only (may be repeated)",
         [&](const std::wstring& value) { options.addins.push_back(value); }},
        {L"--no-addins", L"load none at start; \"connect\" can do so later", Set(options.noAddins)},
        {L"--no-startup-event", L"do not raise the application's Startup", Set(options.noStartupEvent)},
        {L"--strict-exit", L"never disconnect add-ins nor end while they hold an object (exit code 3 in the end)",
         Set(options.strictExit)},
        {L"--strict-timeout S", L"how long --strict-exit waits (default 10)",
         [&](const std::wstring& value) { options.strictTimeout = Seconds(value); }},
        {L"--fast-shutdown", L"skip OnBeginShutdown and OnDisconnection", Set(options.fastShutdown)},
        {L"--help", L"this text", Set(options.help)},
        {L"-h", nullptr, Set(options.help)},
    };
}

}  // namespace

Options Options::Parse(const std::vector<std::wstring>& arguments) {
    Options options;
    ParseArguments(arguments, KnownOptions(options));
    if (options.majorVersion != 9) return options;
    const bool eventsGiven = std::ranges::find(arguments, L"--events") != arguments.end();
    if (eventsGiven && options.events != EventGeneration::Old)
        throw UsageError{L"--outlook-version 9 has the old events only"};
    options.events = EventGeneration::Old;
    return options;
}

std::wstring Options::Usage() {
    Options options;
    return L"usage: standin_outlook [options]\n" + DescribeOptions(KnownOptions(options)) +
           L"Exit codes: 0, 1 cannot start, 2 a command of the script failed, 3 held back by references "
           L"(--strict-exit),\n"
           L"4 the unloaded library of an add-in was called.";
}

}  // namespace beacon::standin
