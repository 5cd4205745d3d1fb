#include "engine/options.h"

#include "common/command_line.h"

namespace beacon::standin {
namespace {

std::vector<Option> KnownOptions(Options& options) {
    return {
        {L"--raw", L"one line for each thing received, exactly as received, instead of the live view",
         Set(options.raw)},
        {L"--log FILE", L"write the raw lines to FILE too (UTF-8)", Set(options.log)},
        {L"--script FILE", L"commands from FILE (UTF-8), then from standard input", Set(options.script)},
        {L"--until-eof", L"quit when the script and standard input have ended", Set(options.untilEof)},
        {L"--toolbar", L"serve BeaconUtil.ToolbarConfig too", Set(options.toolbar)},
        {L"--bitmaps DIR", L"where button0.bmp to button5.bmp are (default: \"bitmaps\" beside the program)",
         Set(options.bitmaps)},
        {L"--context-mode N", L"the toolbar's context mode (default 1: the context box is shown)",
         Set(options.contextMode)},
        {L"--state N", L"the engine state that the toolbar is told (default 3: ready)", Set(options.engineState)},
        {L"--register", L"make all registry entries, those for the toolbar included, and end",
         Set(options.registerOnly)},
        {L"--unregister", L"remove them and end", Set(options.unregister)},
        {L"--help", L"this text", Set(options.help)},
        {L"-h", nullptr, Set(options.help)},
        {L"-Embedding", nullptr, Set(options.embedding)},
        {L"/Embedding", nullptr, Set(options.embedding)},
    };
}

}  // namespace

Options Options::Parse(const std::vector<std::wstring>& arguments) {
    Options options;
    ParseArguments(arguments, KnownOptions(options));
    return options;
}

std::wstring Options::Usage() {
    Options options;
    return L"usage: standin_engine [options]\n"
           L"Stands in for the engine: adapters find it, connect and talk to it, and it shows what they say.\n"
           L"Commands come from standard input, one a line; \"help\" lists them.\n\n" +
           DescribeOptions(KnownOptions(options)) +
           L"Exit codes: 0 after quit, 1 a command of the run failed, 2 wrong options, 3 could not start.";
}

}  // namespace beacon::standin
