#include "engine/options.h"

#include "common/command_line.h"

namespace beacon::standin {
namespace {

const ProgramOptions kKnown = {
    "standin_engine",
    "Stands in for the engine: adapters find it and connect, and it shows what they send. It reads commands from\n"
    "standard input, one per line; \"help\" lists them.",
    {
        {"raw", "print each message exactly as received, one per line, instead of the live view"},
        {"log", "also write these lines to a file (UTF-8)", "FILE"},
        {"script", "run the commands of the file (UTF-8), then those of standard input", "FILE"},
        {"until-eof", "quit at the end of the script and of standard input"},
        {"toolbar", "also serve BeaconUtil.ToolbarConfig"},
        {"state", "the engine state that the toolbar reads", "N", "3"},
        {"register", "write all registry entries, including those for the toolbar, and exit"},
        {"unregister", "remove the registry entries and exit"},
        {"h,help", "print this text"},
    },
};

}  // namespace

Options Options::Parse(std::vector<std::wstring> arguments) {
    Options options;
    options.embedding = std::erase(arguments, L"-Embedding") + std::erase(arguments, L"/Embedding") != 0;
    const GivenOptions given(kKnown, arguments);
    options.raw = given.Has("raw");
    options.log = given.Text("log");
    options.script = given.Text("script");
    options.untilEof = given.Has("until-eof");
    options.toolbar = given.Has("toolbar");
    if (given.Has("state") || !options.embedding) options.engineState = given.Value<long>("state");
    options.registerOnly = given.Has("register");
    options.unregister = given.Has("unregister");
    options.help = given.Has("help");
    return options;
}

std::wstring Options::Usage() {
    return kKnown.Help() + L"\nExit codes: 0 success, 1 a command failed, 2 wrong options, 3 cannot start.";
}

}  // namespace beacon::standin
