#include "support/log.h"

#include <regex>

#include "tests/fakes/adapter_fixture.h"

namespace beacon::test {
namespace {

using namespace std::string_literals;

class Log : public AdapterTest {
protected:
    static void NewProcess(long logging) {
        SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", logging);
        StartLikeANewProcess();
    }

    static std::string Stamp() {
        SYSTEMTIME now;
        GetLocalTime(&now);
        char text[32];
        wsprintfA(text, "%02d-%02d-%04d\t%02d:%02d:%02d\t", now.wMonth, now.wDay, now.wYear, now.wHour, now.wMinute,
                  now.wSecond);
        return text;
    }

    bool Exists(int level) const { return std::filesystem::exists(log_.PathOf(level)); }
};

TEST_F(Log, WritesTheseBytes) {
    const std::string before = Stamp();
    LogMsg(L"App StartUp begin: ", -5L);
    LogMsg(L"caf\u00E9 \u4E2D\ttab");
    LogMsg(L"");
    const std::string after = Stamp();
    // The header's date is written as the user's Windows writes dates, which is here as in the USA.
    char header[60];
    wsprintfA(header, R"(%lX: \d+/\d+/\d{4} \d+:\d\d:\d\d [AP]M\r\n\r\n)", GetCurrentThreadId());
    const std::regex file(header + "(.{20})App StartUp begin: -5\r\n(.{20})caf\xE9 \\?\ttab\r\n(.{20})\r\n"s);
    const std::string bytes = Bytes(log_.PathOf(1));
    std::smatch found;
    ASSERT_TRUE(std::regex_match(bytes, found, file)) << bytes;
    for (const size_t line : {1u, 2u, 3u}) EXPECT_TRUE(before <= found[line] && found[line] <= after) << found[line];
    EXPECT_FALSE(Exists(2)) << "no line of level 2, no file";
}

TEST_F(Log, EachLevelsFirstLineInAProcessEmptiesItsFile) {
    for (const int level : {1, 2}) std::ofstream(std::filesystem::path(log_.PathOf(level))) << "of an earlier process";
    LogMsg2(L"a");
    EXPECT_EQ(Bytes(log_.PathOf(1)), "of an earlier process");
    LogMsg(L"b");
    LogMsg2(L"c");
    EXPECT_EQ(log_.Lines(1), LogLines{L"b"});
    EXPECT_EQ(log_.Lines(2), (LogLines{L"a", L"c"}));
    const std::string bytes = Bytes(log_.PathOf(2));
    EXPECT_EQ(bytes.find("\r\n\r\n"), bytes.rfind("\r\n\r\n")) << "more than one header: " << bytes;
    EXPECT_THAT(bytes, Not(HasSubstr("earlier")));
    for (const int level : {1, 2, 7}) EXPECT_EQ(GetLogFilePath(level), log_.PathOf(level == 1 ? 1 : 2));
    NewProcess(1);
    LogMsg2(L"d");
    EXPECT_EQ(log_.Lines(2), LogLines{L"d"});
}

TEST_F(Log, SwitchedOffTouchesNothingUntilTheNextProcess) {
    NewProcess(0);
    for (const long logging : {0L, 1L}) {
        SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", logging);
        EXPECT_TRUE(LogMsg(L"a") && LogMsg2(L"b") && WriteLogLine(L"c", 2));
    }
    EXPECT_FALSE(Exists(1) || Exists(2));
}

TEST_F(Log, LosesLinesSilentlyAndGoesOnLater) {
    const auto lose = [] {
        EXPECT_TRUE(LogMsg(L"lost"));
        EXPECT_TRUE(WriteLogLine(L"lost", 1));
    };
    const std::filesystem::path folder = std::filesystem::path(log_.PathOf(1)).parent_path();
    std::filesystem::remove(folder);
    lose();
    EXPECT_FALSE(std::filesystem::exists(folder)) << "it is not made here";
    std::filesystem::create_directory(folder);
    for (const std::wstring& appData : {L""s, std::wstring(256, L'x')}) {
        SetEnvironmentVariableW(L"AppData", appData.c_str());
        lose();
        EXPECT_EQ(GetLogFilePath(1), L"");
    }
    SetEnvironmentVariableW(L"AppData", nullptr);
    lose();
    SetEnvironmentVariableW(L"AppData", log_.Root().c_str());

    for (const wchar_t* line : {L"first", L"second"}) {
        const HANDLE locked = CreateFileW(log_.PathOf(1).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
        lose();
        CloseHandle(locked);
        LogMsg(line);
    }
    EXPECT_EQ(log_.Lines(1), (LogLines{L"first", L"second"}));
}

TEST_F(Log, CanBeReadWhileItIsWritten) {
    LogMsg(L"a");
    const HANDLE reader = CreateFileW(log_.PathOf(1).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    LogMsg(L"b");
    CloseHandle(reader);
    EXPECT_EQ(log_.Lines(1), (LogLines{L"a", L"b"}));
}

}  // namespace
}  // namespace beacon::test
