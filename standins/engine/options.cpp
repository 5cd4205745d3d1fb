#include "options.h"

#include <cerrno>
#include <cwchar>

namespace beacon::standin {

std::optional<long> ParseNumber(const std::wstring& text) {
    wchar_t* end = nullptr;
    errno = 0;
    const long value = std::wcstol(text.c_str(), &end, 10);
    if (text.empty() || *end != L'\0' || errno == ERANGE) return std::nullopt;
    return value;
}

Options ParseOptions(const std::vector<std::wstring>& arguments) {
    struct Switch {
        const wchar_t* name;
        bool Options::*member;
    };

    static constexpr Switch kSwitches[] = {
        {L"--help", &Options::help},
        {L"--register", &Options::registerOnly},
        {L"--unregister", &Options::unregister},
        {L"-Embedding", &Options::embedding},
        {L"/Embedding", &Options::embedding},
        {L"--raw", &Options::raw},
        {L"--trace", &Options::trace},
        {L"--toolbar", &Options::toolbar},
        {L"--until-eof", &Options::untilEof},
    };

    struct Text {
        const wchar_t* name;
        std::wstring Options::*member;
    };

    static constexpr Text kTexts[] = {
        {L"--log", &Options::log}, {L"--script", &Options::script}, {L"--bitmaps", &Options::bitmaps}};

    Options options;
    const auto fail = [&](const std::wstring& error) {
        if (options.error.empty()) options.error = error;
    };
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::wstring& argument = arguments[at];
        bool known = false;
        for (const Switch& candidate : kSwitches) {
            if (argument != candidate.name) continue;
            options.*candidate.member = true;
            known = true;
        }
        if (known) continue;
        const bool isText = argument == L"--log" || argument == L"--script" || argument == L"--bitmaps";
        const bool isNumber = argument == L"--context-mode" || argument == L"--state";
        if (!isText && !isNumber) {
            fail(L"unknown option " + argument);
            continue;
        }
        if (++at == arguments.size()) {
            fail(L"a value must follow " + argument);
            break;
        }
        const std::wstring& value = arguments[at];
        for (const Text& candidate : kTexts)
            if (argument == candidate.name) options.*candidate.member = value;
        if (!isNumber) continue;
        const std::optional<long> number = ParseNumber(value);
        if (!number) fail(L"the value of " + argument + L" must be a number, not " + value);
        if (argument == L"--state")
            options.engineState = number;
        else if (number)
            options.contextMode = *number;
    }
    return options;
}

const wchar_t* UsageText() {
    return L"Usage: standin_engine [options]\n"
           L"Stands in for the engine: adapters find it, connect and talk to it, and it shows what they say.\n"
           L"Commands come from standard input, one a line; \"help\" lists them.\n"
           L"\n"
           L"  --raw             one line for each thing received, exactly as received, instead of the live view\n"
           L"  --log FILE        write the raw lines to FILE too (UTF-8)\n"
           L"  --trace           also show interfaces asked for and identifiers read\n"
           L"  --script FILE     commands from FILE (UTF-8) as well as from standard input\n"
           L"  --until-eof       quit when standard input and the script have ended\n"
           L"  --toolbar         serve BeaconUtil.ToolbarConfig too\n"
           L"  --bitmaps DIR     where button0.bmp to button5.bmp are (default: \"bitmaps\" beside the program)\n"
           L"  --context-mode N  the toolbar's context mode (default 1: the context box is shown)\n"
           L"  --state N         the engine state that the toolbar is told (default 3: ready)\n"
           L"  --register        make all registry entries, those for the toolbar included, and end\n"
           L"  --unregister      remove them and end\n"
           L"  --help            this text\n"
           L"\n"
           L"Exit code: 0 after quit; 1 a command of the run failed; 2 wrong options; 3 could not start.";
}

}  // namespace beacon::standin
