#include "outlook/bars/bar_store.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "com/error.h"
#include "outlook/bars/bar_lines.h"

namespace beacon::standin {
namespace {

constexpr std::wstring_view kFirstLine = L"command-bars 1";

[[noreturn]] void Fail(const std::wstring& text) { throw com::Error(5, text, L"standin_outlook"); }

std::wstring FromUtf8(std::string_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string narrow(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                        nullptr);
    return narrow;
}

std::string ReadBytes(FILE* file) {
    std::string bytes;
    char buffer[65536];
    for (size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) != 0;) bytes.append(buffer, count);
    return bytes;
}

auto ByNumber(unsigned stored) {
    return [stored](const Bar& bar) { return bar.stored == stored; };
}

}  // namespace

BarStore::BarStore(std::wstring path, std::function<void(const std::wstring&)> trouble)
    : path_(std::move(path)), trouble_(std::move(trouble)) {
    if (!path_.empty()) Read();
    for (const WindowKind kind : {WindowKind::Explorer, WindowKind::Inspector}) {
        std::vector<Bar>& bars = Of(kind);
        size_t place = 0;  // what Office installs comes first
        for (const Bar& builtIn : BuiltInBars(kind)) {
            const bool there =
                std::any_of(bars.begin(), bars.end(), [&](const Bar& bar) { return SameName(bar.name, builtIn.name); });
            if (!there) bars.insert(bars.begin() + static_cast<std::ptrdiff_t>(std::min(place, bars.size())), builtIn);
            ++place;
        }
        for (Bar& bar : bars) bar.stored = ++last_;
    }
}

BarStore::~BarStore() { Save(); }

unsigned BarStore::Add(WindowKind kind, const Bar& bar) {
    std::vector<Bar>& bars = Of(kind);
    std::erase_if(bars, [&](const Bar& other) { return SameName(other.name, bar.name); });
    bars.push_back(Copy(bar, false));
    bars.back().stored = ++last_;
    changed_ = true;
    return last_;
}

void BarStore::Update(WindowKind kind, const Bar& bar) {
    std::vector<Bar>& bars = Of(kind);
    const auto found = std::find_if(bars.begin(), bars.end(), ByNumber(bar.stored));
    if (found == bars.end()) return;
    *found = Copy(bar, false);
    changed_ = true;
}

void BarStore::Remove(WindowKind kind, unsigned stored) {
    if (std::erase_if(Of(kind), ByNumber(stored)) != 0) changed_ = true;
}

void BarStore::Read() {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen(path_.c_str(), L"rb"), &std::fclose);
    if (file == nullptr) return;  // the first run
    const std::wstring text = FromUtf8(ReadBytes(file.get()));
    size_t number = 0;
    Bar* bar = nullptr;
    try {
        for (size_t start = 0; start < text.size();) {
            const size_t end = std::min(text.find(L'\n', start), text.size());
            std::wstring_view line = std::wstring_view(text).substr(start, end - start);
            if (!line.empty() && line.back() == L'\r') line.remove_suffix(1);
            start = end + 1;
            if (++number == 1) {
                if (line != kFirstLine) throw BadLine{L"this is no file of command bars"};
            } else if (WordOf(line) == L"bar") {
                WindowKind kind{};
                Bar read = BarFromLine(line, kind);
                bar = &Of(kind).emplace_back(std::move(read));
            } else if (WordOf(line) == L"control") {
                if (bar == nullptr) throw BadLine{L"a control before the first bar"};
                bar->controls.push_back(std::make_shared<BarControl>(ControlFromLine(line)));
            } else if (!line.empty()) {
                throw BadLine{L"an unknown kind of line"};
            }
        }
    } catch (const BadLine& bad) {
        Fail(path_ + L", line " + std::to_wstring(number) + L": " + bad.reason);
    }
}

void BarStore::Write() const {
    std::wstring text(kFirstLine);
    text += L'\n';
    for (const WindowKind kind : {WindowKind::Explorer, WindowKind::Inspector}) {
        for (const Bar& bar : Bars(kind)) {
            text += LineOf(kind, bar) + L"\n";
            for (const auto& control : bar.controls) text += LineOf(*control) + L"\n";
        }
    }
    const std::string bytes = ToUtf8(text);
    // Written beside and moved, so that an end in the middle leaves the old file.
    const std::wstring fresh = path_ + L".new";
    std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen(fresh.c_str(), L"wb"), &std::fclose);
    if (file == nullptr) Fail(L"cannot write " + fresh);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    if (std::fclose(file.release()) != 0 || !written) Fail(L"cannot write all of " + fresh);
    if (MoveFileExW(fresh.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING) == FALSE) Fail(L"cannot replace " + path_);
}

void BarStore::Save() noexcept {
    if (!changed_ || path_.empty()) return;
    try {
        Write();
        changed_ = false;
    } catch (...) {
        try {
            if (trouble_) trouble_(com::CurrentError().description);
        } catch (...) {
            // Nobody is left to tell.
        }
    }
}

}  // namespace beacon::standin
