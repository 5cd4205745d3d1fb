#pragma once

#include <windows.h>

#include <gmock/gmock-more-matchers.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "com/module.h"
#include "common/automation_object.h"
#include "support/globals.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/log_capture.h"

namespace beacon::test {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Base of the add-in's tests: module, apartment, registry without the product's keys, cleared flags, log, and a hidden
/// window. TearDown checks that no object of the add-in is left alive and that nothing holds a fake. A derived fixture
/// calls SetUp first and TearDown last.
class AdapterTest : public testing::Test {
protected:
    void SetUp() override {
        com::SetModuleInstance(GetModuleHandleW(nullptr));
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ForgetRegistry();
        globals::gUserInterrupt = globals::gSendNow = globals::gShutdownInProgress = false;
        globals::gOutlookVersion = 9;
        live_ = com::LiveThings();
        window_ =
            CreateWindowExW(0, L"STATIC", L"watched", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    }

    void TearDown() override {
        EXPECT_FALSE(globals::gShutdownInProgress);
        EXPECT_EQ(com::LiveThings(), live_);
        for (const standin::OutsideReference& left : standin::OutsideReferences())
            ADD_FAILURE() << "still held: " << com::ToAnsi(left.description) << ", " << left.references
                          << " references, " << left.sinks << " sinks";
        if (IsWindow(window_)) DestroyWindow(window_);
        ForgetRegistry();
        CoUninitialize();
    }

    static void SetOfUser(const wchar_t* name, const wchar_t* value) {
        SetRegString(HKEY_CURRENT_USER, kUserAdapterKey, name, value);
    }

    static void SetOfMachine(const wchar_t* name, const wchar_t* value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, value);
    }

    /// The content of a file; empty if it does not exist.
    static std::string Bytes(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Of the hidden window.
    long Handle() const { return HandleToLong(window_); }

    /// The lines of this level since the last call, with "#" for the handle of the hidden window. Clears both levels.
    LogLines NewLines(int level = 1) {
        LogLines lines = log_.Lines(level);
        log_.Clear();
        const std::wstring handle = std::to_wstring(Handle());
        for (std::wstring& line : lines)
            for (size_t at = 0; (at = line.find(handle, at)) != std::wstring::npos;)
                line.replace(at, handle.size(), L"#");
        return lines;
    }

    /// The messages that the fake engine has received since the last call. Clears the log.
    LogLines NewMessages() {
        const std::wstring prefix = L"* engine PutMessage ";
        LogLines messages;
        for (const std::wstring& line : NewLines())
            if (line.starts_with(prefix)) messages.push_back(line.substr(prefix.size()));
        return messages;
    }

    HWND window_ = nullptr;
    LogCapture log_;

private:
    static void ForgetRegistry() {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
    }

    long live_ = 0;
};

}  // namespace beacon::test
