// beacon-check: tells whether the add-in works on this machine, and what to do where it does not.
#include <windows.h>

#include <cstdlib>
#include <string_view>

#include "beacon_version.h"
#include "check/logs.h"
#include "check/report.h"
#include "com/error.h"
#include "com/text.h"

namespace beacon::check {
namespace {

constexpr int kFound = 1;
constexpr int kMisuse = 2;
constexpr int kFailed = 3;

constexpr wchar_t kUsage[] =
    L"usage: beacon-check [options]\n"
    L"Tells whether the Beacon add-in works on this machine and for this user, and what to do where it does not.\n"
    L"Run it as the user who runs Outlook, not as administrator; use the program of Outlook's bitness.\n\n"
    L"  --json              one JSON object in UTF-8 instead of text\n"
    L"  --wait MS           how long the engine has for its answer (default 3000)\n"
    L"  --make-log-folder   make the folder of the logs first; the add-in never makes it\n"
    L"  --version           the program's version\n"
    L"  --help              this text\n\n"
    L"Exit codes: 0 all is well, 1 something was found, 2 wrong options, 3 the check itself failed.\n";

struct Options {
    bool json = false;
    bool makeLogFolder = false;
    bool version = false;
    bool help = false;
    DWORD patience = 3000;  // ms
};

/// The word that makes no sense, or null.
const char* Parse(int count, char** words, Options& options) {
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        if (word == "--json")
            options.json = true;
        else if (word == "--make-log-folder")
            options.makeLogFolder = true;
        else if (word == "--version")
            options.version = true;
        else if (word == "--help" || word == "-h" || word == "/?")
            options.help = true;
        else if (word == "--wait" && i + 1 < count) {
            char* end = nullptr;
            options.patience = std::strtoul(words[++i], &end, 10);
            if (*end != '\0' || options.patience == 0 || options.patience > 600'000) return words[i];
        } else
            return words[i];
    }
    return nullptr;
}

/// To a console as characters, to a file or a pipe in UTF-8.
void Write(DWORD where, const std::wstring& text) {
    const HANDLE stream = GetStdHandle(where);
    DWORD mode = 0;
    DWORD done = 0;
    if (GetConsoleMode(stream, &mode) &&
        WriteConsoleW(stream, text.c_str(), static_cast<DWORD>(text.size()), &done, nullptr))
        return;
    const std::string bytes = com::ToUtf8(text);
    WriteFile(stream, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
}

int Run(int count, char** words) {
    Options options;
    if (const char* const wrong = Parse(count, words, options)) {
        Write(STD_ERROR_HANDLE, L"beacon-check: wrong option: " + com::FromAnsi(wrong) + L"\n\n" + kUsage);
        return kMisuse;
    }
    if (options.help || options.version) {
        Write(STD_OUTPUT_HANDLE, options.help ? kUsage : L"beacon-check " BEACON_VERSION L"\n");
        return 0;
    }
    if (options.makeLogFolder) MakeLogFolder();
    const Report report = Examine(options.patience);
    Write(STD_OUTPUT_HANDLE, options.json ? ReportAsJson(report) : ReportAsText(report));
    return report.findings.empty() ? 0 : kFound;
}

}  // namespace
}  // namespace beacon::check

int main(int count, char** words) {
    using namespace beacon;
    int code = check::kFailed;
    try {
        code = check::Run(count, words);
    } catch (...) {
        check::Write(STD_ERROR_HANDLE, L"beacon-check: " + com::CurrentError().description + L"\n");
    }
    TerminateProcess(GetCurrentProcess(),
                     static_cast<UINT>(code));  // a controller that hangs still has a thread of ours
    return code;
}
