#include "output.h"

namespace beacon::standin {
namespace {

void Write(HANDLE file, std::wstring_view line) {
    const std::string bytes = ToUtf8(line) + "\n";
    for (size_t done = 0; done < bytes.size();) {
        DWORD written = 0;
        const auto rest = static_cast<DWORD>(bytes.size() - done);
        if (!WriteFile(file, bytes.data() + done, rest, &written, nullptr) || written == 0) return;
        done += written;
    }
}

}  // namespace

Output::Output() { SetConsoleOutputCP(CP_UTF8); }

Output::~Output() {
    if (log_ != INVALID_HANDLE_VALUE) CloseHandle(log_);
}

bool Output::OpenLog(const std::wstring& path) {
    log_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
    return log_ != INVALID_HANDLE_VALUE;
}

void Output::Print(std::wstring_view line) { Write(GetStdHandle(STD_OUTPUT_HANDLE), line); }

void Output::Log(std::wstring_view line) {
    if (log_ != INVALID_HANDLE_VALUE) Write(log_, line);
}

}  // namespace beacon::standin
