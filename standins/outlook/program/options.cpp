#include "outlook/program/options.h"

#include "common/command_line.h"

namespace beacon::standin {
namespace {

// What the first release of a version says of itself.
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
    return 12;  // also for later versions: the newest windows that are known
}

const ProgramOptions kKnown = {
    "standin_outlook",
    "Stands in for Outlook: loads the add-ins registered with Outlook.",
    {
        {"outlook-version", "9, 10, 11, 12 or a full version", "V", "10"},
        {"store", "items as written by import_mail.py", "FILE"},
        {"script", "run the commands of the file, then quit; default: commands from standard input", "FILE"},
        {"interactive", "after the script continue with standard input"},
        {"item-only", "start with the window of this item (number or subject) and no explorer", "ITEM"},
        {"bars", "keep permanent command bars in this file; default: in %AppData%", "FILE"},
        {"no-addins", "load no add-in at start; the command \"connect\" loads one later"},
        {"no-startup-event", "do not raise the application's Startup event"},
        {"strict-exit", "never disconnect add-ins or exit while they hold an object; exit code 3 after a time-out"},
        {"strict-timeout", "seconds that --strict-exit waits", "S", "10"},
        {"fast-shutdown", "skip OnBeginShutdown and OnDisconnection"},
        {"h,help", "print this text"},
    },
};

}  // namespace

Options Options::Parse(const std::vector<std::wstring>& arguments) {
    const GivenOptions given(kKnown, arguments);
    Options options;
    options.version = FullVersion(given.Text("outlook-version"));
    options.majorVersion = WindowVersion(options.version);
    options.store = given.Text("store");
    options.script = given.Text("script");
    options.interactive = given.Has("interactive");
    options.itemOnly = given.Text("item-only");
    options.barsFile = given.Text("bars");
    options.noAddins = given.Has("no-addins");
    options.noStartupEvent = given.Has("no-startup-event");
    options.strictExit = given.Has("strict-exit");
    options.strictTimeout =
        std::chrono::milliseconds(static_cast<long long>(given.Value<double>("strict-timeout") * 1000));
    options.fastShutdown = given.Has("fast-shutdown");
    options.help = given.Has("help");
    return options;
}

std::wstring Options::Usage() {
    return kKnown.Help() +
           L"\nExit codes: 0 success, 1 cannot start, 2 a command of the script failed, 3 references kept Outlook from "
           L"exiting\n(--strict-exit), 4 an unloaded add-in was called.";
}

}  // namespace beacon::standin
