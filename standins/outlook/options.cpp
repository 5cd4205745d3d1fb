#include "outlook/options.h"

#include <functional>

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

std::chrono::milliseconds Seconds(const std::wstring& option, const std::wstring& text) {
    try {
        size_t used = 0;
        const double value = std::stod(text, &used);
        if (used == text.size() && value >= 0 && value < 100000)
            return std::chrono::milliseconds(static_cast<long long>(value * 1000));
    } catch (const std::logic_error&) {
        // told below
    }
    throw UsageError(option + L" needs a number of seconds, not \"" + text + L"\"");
}

EventGeneration Generation(const std::wstring& text) {
    if (text == L"old") return EventGeneration::Old;
    if (text == L"new") return EventGeneration::New;
    if (text == L"both") return EventGeneration::Both;
    throw UsageError(L"--events is old, new or both, not \"" + text + L"\"");
}

}  // namespace

Options Options::Parse(const std::vector<std::wstring>& arguments) {
    Options options;
    bool eventsGiven = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& name = arguments[i];
        const auto value = [&]() -> const std::wstring& {
            if (i + 1 == arguments.size()) throw UsageError(name + L" needs a value");
            return arguments[++i];
        };
        if (name == L"--outlook-version") {
            options.version = FullVersion(value());
            options.majorVersion = WindowVersion(options.version);
        } else if (name == L"--events") {
            options.events = Generation(value());
            eventsGiven = true;
        } else if (name == L"--store") {
            options.store = value();
        } else if (name == L"--script") {
            options.script = value();
        } else if (name == L"--item-only") {
            options.itemOnly = value();
        } else if (name == L"--bars") {
            options.barsFile = value();
        } else if (name == L"--addin") {
            options.addins.push_back(value());
        } else if (name == L"--strict-timeout") {
            options.strictTimeout = Seconds(name, value());
        } else if (name == L"--interactive") {
            options.interactive = true;
        } else if (name == L"--no-addins") {
            options.noAddins = true;
        } else if (name == L"--no-startup-event") {
            options.noStartupEvent = true;
        } else if (name == L"--no-mapi-reader") {
            options.noMapiReader = true;
        } else if (name == L"--strict-exit") {
            options.strictExit = true;
        } else if (name == L"--fast-shutdown") {
            options.fastShutdown = true;
        } else if (name == L"--help" || name == L"-h") {
            options.help = true;
        } else {
            throw UsageError(L"unknown argument \"" + name + L"\"");
        }
    }
    if (options.majorVersion == 9) {
        if (eventsGiven && options.events != EventGeneration::Old)
            throw UsageError(L"--outlook-version 9 has the old events only");
        options.events = EventGeneration::Old;
    }
    return options;
}

std::wstring Options::Usage() {
    return L"usage: standin_outlook [options]\n"
           L"  --outlook-version V   9, 10, 11, 12 or a full text such as 10.0.2627 (default)\n"
           L"  --events WHICH        old, new or both event interfaces of inspectors and items (default: old for 9, "
           L"else both)\n"
           L"  --store FILE          items as written by import_mail.py\n"
           L"  --script FILE         commands to run, then quit; without it they come from standard input\n"
           L"  --interactive         after the script go on with standard input\n"
           L"  --item-only ENTRY     start with the window of this item (number or subject) and without an explorer\n"
           L"  --bars FILE           keep permanent command bars there over a restart (default: in %AppData%)\n"
           L"  --addin PROGID        load this registered add-in only (may be repeated)\n"
           L"  --no-addins           load none at start; \"connect\" can do so later\n"
           L"  --no-startup-event    do not raise the application's Startup\n"
           L"  --no-mapi-reader      do not serve Mapiprop.MAPIPropWrapper\n"
           L"  --strict-exit         never disconnect add-ins nor end while they hold an object (exit code 3 in the "
           L"end)\n"
           L"  --strict-timeout S    how long --strict-exit waits (default 10)\n"
           L"  --fast-shutdown       skip OnBeginShutdown and OnDisconnection\n"
           L"Exit codes: 0, 1 cannot start, 2 a command of the script failed, 3 held back by references "
           L"(--strict-exit),\n"
           L"4 the unloaded library of an add-in was called.";
}

}  // namespace beacon::standin
