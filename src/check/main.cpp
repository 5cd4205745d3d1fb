// beacon-check: diagnoses an installation of the add-in, and says how to fix what is wrong.
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
    L"Diagnoses the installation of the Beacon Outlook Adapter: reports what is wrong and how to fix it.\n"
    L"Run it as the user who runs Outlook, without administrator rights. Use the program of Outlook's bitness.\n\n"
    L"  --json              print one JSON object in UTF-8 (docs\\install.md describes it)\n"
    L"  --wait MS           time-out for the engine's answer in milliseconds, 1 to 600000 (default 3000)\n"
    L"  --make-log-folder   first create the folder of the logs, which the add-in does not create\n"
    L"  --version           print the version\n"
    L"  --help              print this text\n\n"
    L"Exit codes: 0 no problems, 1 problems found, 2 wrong option, 3 the check or --make-log-folder failed.\n";

struct Options {
    bool json = false;
    bool makeLogFolder = false;
    bool version = false;
    bool help = false;
    DWORD timeout = 3000;  // ms
};

/// The first wrong argument; null if there is none.
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
            options.timeout = std::strtoul(words[++i], &end, 10);
            if (*end != '\0' || options.timeout == 0 || options.timeout > 600'000) return words[i];
        } else
            return words[i];
    }
    return nullptr;
}

/// UTF-8 to files and pipes; a console gets characters.
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

std::wstring ErrorText() { return std::wstring(com::CurrentError().Description()); }

/// A server that is registered without its folder must not be found in the current one, where anybody may put a file.
void LeaveCurrentFolder() {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || !SetCurrentDirectoryW(folder))
        com::Check(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}

bool MadeLogFolder() {
    try {
        MakeLogFolder();
        return true;
    } catch (...) {
        Write(STD_ERROR_HANDLE, L"beacon-check: cannot create the log folder: " + ErrorText() + L"\n");
        return false;
    }
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
    LeaveCurrentFolder();
    const bool failed = options.makeLogFolder && !MadeLogFolder();
    const Report report = Examine(options.timeout);
    Write(STD_OUTPUT_HANDLE, options.json ? ReportAsJson(report) : ReportAsText(report));
    return failed ? kFailed : report.findings.empty() ? 0 : kFound;
}

}  // namespace
}  // namespace beacon::check

int main(int count, char** words) {
    using namespace beacon;
    int code = check::kFailed;
    try {
        code = check::Run(count, words);
    } catch (...) {
        check::Write(STD_ERROR_HANDLE, L"beacon-check: " + check::ErrorText() + L"\n");
    }
    // Not a return: a controller that hangs still blocks a thread of ours.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    return code;
}
