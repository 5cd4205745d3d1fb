#include "support/log.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

#include "com/text.h"
#include "support/error_styles.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/log_capture.h"

namespace beacon::test {
namespace {

using namespace std::string_literals;

/// A new process whose user's folder is a fresh one.
class Log : public testing::Test {
protected:
    void SetUp() override {
        wchar_t temporary[MAX_PATH];
        GetTempPathW(MAX_PATH, temporary);
        root_ = temporary + (L"BeaconLogTest" + std::to_wstring(GetCurrentProcessId()));
        CreateDirectoryW(root_.c_str(), nullptr);
        SetEnvironmentVariableW(L"AppData", root_.c_str());
        NewProcess(1);
    }

    void TearDown() override {
        RemoveFolder();
        RemoveDirectoryW(root_.c_str());
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
        RestartLog();
    }

    static void NewProcess(long logging) {
        SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", logging);
        RestartLog();
    }

    void MakeFolder() { std::filesystem::create_directories(root_ + L"\\Corvantis\\Beacon\\logs"); }

    void RemoveFolder() { std::filesystem::remove_all(root_ + L"\\Corvantis"); }

    std::wstring PathOf(int level) const {
        return root_ + L"\\Corvantis\\Beacon\\logs\\OlkLog" + std::to_wstring(level) + L".txt";
    }

    bool Exists(int level) const { return GetFileAttributesW(PathOf(level).c_str()) != INVALID_FILE_ATTRIBUTES; }

    std::string Bytes(int level) const {
        std::ifstream file(com::ToAnsi(PathOf(level)), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// The texts after the header and after each line's date and time.
    std::vector<std::string> Texts(int level) const {
        std::string bytes = Bytes(level);
        std::vector<std::string> texts;
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\r'), std::count(bytes.begin(), bytes.end(), '\n'));
        const size_t header = bytes.find("\r\n\r\n");
        if (header == std::string::npos) return texts;
        bytes.erase(0, header + 4);
        for (size_t end; (end = bytes.find("\r\n")) != std::string::npos; bytes.erase(0, end + 2))
            texts.push_back(bytes.substr(0, end).substr(std::string("MM-DD-YYYY\tHH:MM:SS\t").size()));
        EXPECT_EQ(bytes, "");
        return texts;
    }

    std::wstring root_;
};

std::string GeneralDate(const SYSTEMTIME& time) {
    DATE date = 0;
    SystemTimeToVariantTime(const_cast<SYSTEMTIME*>(&time), &date);
    BSTR text = nullptr;
    VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, &text);
    const std::string result = com::ToAnsi(com::ToText(text));
    SysFreeString(text);
    return result;
}

std::string Stamp(const SYSTEMTIME& time) {
    char text[32];
    wsprintfA(text, "%02d-%02d-%04d\t%02d:%02d:%02d\t", time.wMonth, time.wDay, time.wYear, time.wHour, time.wMinute,
              time.wSecond);
    return text;
}

TEST_F(Log, WritesTheseBytes) {
    MakeFolder();
    const std::wstring text = L"caf\u00E9 \u20AC \u4E2D\ttab";
    char ansi[64];
    const int size = WideCharToMultiByte(CP_ACP, 0, text.c_str(), static_cast<int>(text.size()), ansi, sizeof ansi,
                                         nullptr, nullptr);
    char thread[16];
    wsprintfA(thread, "%lX", GetCurrentThreadId());
    // The second may turn while the lines are written; then they are written once more.
    for (int attempt = 0; attempt < 5; ++attempt) {
        NewProcess(1);
        SYSTEMTIME before;
        SYSTEMTIME after;
        GetLocalTime(&before);
        EXPECT_TRUE(LogMsg(L"App StartUp begin: ", -5L));
        EXPECT_TRUE(LogMsg(text));
        EXPECT_TRUE(LogMsg(L""));
        GetLocalTime(&after);
        if (before.wSecond != after.wSecond) continue;
        const std::string stamp = Stamp(before);
        EXPECT_EQ(Bytes(1), thread + ": "s + GeneralDate(before) + "\r\n\r\n" + stamp + "App StartUp begin: -5\r\n" +
                                stamp + std::string(ansi, static_cast<size_t>(size)) + "\r\n" + stamp + "\r\n");
        EXPECT_FALSE(Exists(2)) << "no line of level 2, no file";
        return;
    }
    FAIL() << "the clock runs too fast";
}

TEST_F(Log, EachLevelsFirstLineInAProcessEmptiesItsFile) {
    MakeFolder();
    for (const int level : {1, 2})
        std::ofstream(com::ToAnsi(PathOf(level)), std::ios::binary) << "of an earlier process";
    LogMsg2(L"a");
    LogMsg2(L"b");
    EXPECT_EQ(Texts(2), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(Bytes(1), "of an earlier process");
    LogMsg(L"c");
    LogMsg2(L"d");
    EXPECT_EQ(Texts(1), (std::vector<std::string>{"c"}));
    EXPECT_EQ(Texts(2), (std::vector<std::string>{"a", "b", "d"}));
    EXPECT_TRUE(std::regex_search(Bytes(2), std::regex("^[0-9A-F]+: [^\r]+\r\n\r\n")));
    EXPECT_EQ(Bytes(2).find("\r\n\r\n"), Bytes(2).rfind("\r\n\r\n")) << "one header";
    EXPECT_EQ(GetLogFilePath(1), PathOf(1));
    EXPECT_EQ(GetLogFilePath(2), PathOf(2));
    EXPECT_EQ(GetLogFilePath(7), PathOf(2));
    NewProcess(1);
    LogMsg2(L"e");
    EXPECT_EQ(Texts(2), (std::vector<std::string>{"e"}));
}

TEST_F(Log, SwitchedOffTouchesNothing) {
    MakeFolder();
    NewProcess(0);
    EXPECT_TRUE(LogMsg(L"a"));
    EXPECT_TRUE(WriteLogLine(L"b", 2));
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", 1);
    EXPECT_TRUE(LogMsg2(L"c"));
    EXPECT_FALSE(Exists(1) || Exists(2));
}

TEST_F(Log, LosesLinesSilently) {
    const auto lose = [] { EXPECT_NO_THROW(EXPECT_TRUE(LogMsg(L"lost"))); };
    lose();  // without the folder, which is not made here
    EXPECT_EQ(GetFileAttributesW((root_ + L"\\Corvantis").c_str()), INVALID_FILE_ATTRIBUTES);
    for (const std::wstring& appData : {L""s, std::wstring(256, L'x')}) {
        SetEnvironmentVariableW(L"AppData", appData.empty() ? nullptr : appData.c_str());
        lose();
        EXPECT_EQ(GetLogFilePath(1), L"");
    }
    SetEnvironmentVariableW(L"AppData", L"");
    lose();
    SetEnvironmentVariableW(L"AppData", root_.c_str());
    MakeFolder();

    const auto lock = [&](DWORD disposition) {
        return CreateFileW(PathOf(1).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, disposition, 0, nullptr);
    };
    HANDLE locked = lock(CREATE_ALWAYS);
    lose();
    CloseHandle(locked);
    LogMsg(L"first");
    locked = lock(OPEN_EXISTING);
    EXPECT_TRUE(LogMsg(L"lost"));
    CloseHandle(locked);
    LogMsg(L"second");
    EXPECT_EQ(Texts(1), (std::vector<std::string>{"first", "second"}));

    RemoveFolder();
    EXPECT_TRUE(LogMsg(L"lost"));
    EXPECT_FALSE(Exists(1));
}

TEST_F(Log, CanBeReadWhileItIsWritten) {
    MakeFolder();
    LogMsg(L"a");
    const HANDLE reader = CreateFileW(PathOf(1).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    LogMsg(L"b");
    CloseHandle(reader);
    EXPECT_EQ(Texts(1), (std::vector<std::string>{"a", "b"}));
}

TEST(ErrorStyles, GoOnStopAndLog) {
    const LogCapture log;
    int steps = 0;
    GoOnAfterError([&] { com::Raise(91); });
    GoOnAfterError([&] { throw 3; });
    StopOnError([&] {
        ++steps;
        com::Raise(13);
        ++steps;
    });
    EXPECT_EQ(steps, 1);
    EXPECT_TRUE(log.Lines(2).empty());
    LogOnError(L"Exception in Inspector.Send: ", [&] { ++steps; });
    LogOnError(L"Exception in Inspector.Send: ", [] { com::Raise(91); });
    LogOnError(L"Exception in Inspector.Send: ",
               [] { throw com::Error(-2147023174, L"The RPC server is unavailable."); });
    LogOnError(L"Exception in Inspector.Send: ", [] { throw 3; });
    EXPECT_EQ(steps, 2);
    EXPECT_EQ(log.Lines(2), (std::vector<std::wstring>{
                                L"Exception in Inspector.Send: Object variable or With block variable not set 91",
                                L"Exception in Inspector.Send: The RPC server is unavailable. -2147023174",
                                L"Exception in Inspector.Send: Invalid procedure call or argument 5",
                            }));
    EXPECT_TRUE(log.Lines(1).empty());
    std::vector<long> reported;
    ReportOnError([] {}, [&](const com::Error& error) { reported.push_back(error.number); });
    ReportOnError([] { com::Raise(13); },
                  [&](const com::Error& error) {
                      reported.push_back(error.number);
                      throw 3;
                  });
    EXPECT_EQ(reported, std::vector<long>{13});
}

}  // namespace
}  // namespace beacon::test
