#include "support/settings.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>

#include "support/registry.h"

namespace beacon::test {
namespace {

/// Missing, a text or a DWORD.
using Value = std::variant<std::monostate, const wchar_t*, long>;

void Store(HKEY hive, const wchar_t* key, const wchar_t* name, const Value& value) {
    RegDeleteKeyValueW(hive, key, name);
    if (const auto* const text = std::get_if<const wchar_t*>(&value)) SetRegString(hive, key, name, *text);
    if (const auto* const number = std::get_if<long>(&value)) SetRegDword(hive, key, name, *number);
}

class Settings : public testing::Test {
protected:
    void SetUp() override { TearDown(); }

    void TearDown() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
        ForgetSwitches();
    }
};

TEST_F(Settings, OfTheMachineHaveDefaults) {
    const struct {
        Value value;
        long delay;
        long units;
    } cases[] = {
        {{}, 2000, 3072},
        {L"500", 500, 500},
        {L"0", 2000, 3072},
        {L"abc", 2000, 3072},
        {L"", 2000, 3072},
        {L"1", 1, 1},
        {750L, 750, 750},
        {0L, 2000, 3072},
        {L"32767", 32767, 32767},
        {L"-5", 2000, -5},
        {L"32768", 32768, 3072},
        {L"-32769", 2000, 3072},
        {L"4294967296", 2000, 3072},
        {L"-32768", 2000, -32768},
        {-5L, 2000, -5},
    };

    for (const auto& one : cases) {
        Store(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", one.value);
        Store(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", one.value);
        EXPECT_EQ(GetStartAnalysisDelay(), one.delay);
        EXPECT_EQ(GetMaxDocUnits(), one.units);
    }
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
    Store(HKEY_CURRENT_USER, kMachineAdapterKey, L"MaxDocUnits", L"5");
    EXPECT_EQ(GetMaxDocUnits(), 3072) << "the user's hive does not count";
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Tarnwell Systems, Inc");
}

TEST_F(Settings, OfTheUserAreExactTexts) {
    const struct {
        Value value;
        bool on;
        const wchar_t* toolbar;
    } cases[] = {{{}, false, L""},    {L"True", true, L"True"}, {L"true", false, L"true"}, {L" True", false, L" True"},
                 {L"1", false, L"1"}, {1L, false, L"1"},        {0L, false, L"0"},         {L"0", false, L"0"},
                 {L"", false, L""}};

    for (const auto& one : cases) {
        Store(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", one.value);
        Store(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", one.value);
        EXPECT_EQ(ReadDefaultAutoUpdate(), one.on);
        EXPECT_EQ(GetEnableToolbar(), one.toolbar);
    }
}

TEST_F(Settings, SwitchesAreOnForTheNumberOneAndReadOnce) {
    const struct {
        const wchar_t* name;
        void (*read)();
        const bool& value;
        const bool& other;
    } switches[] = {{L"Logging", ReadLoggingSetting, gLogging, gUseObjectModel},
                    {L"UseObjectModel", ReadUseObjectModelSetting, gUseObjectModel, gLogging}};

    const struct {
        Value value;
        bool on;
    } cases[] = {{{}, false}, {1L, true}, {0L, false}, {2L, false}, {-1L, false}, {L"1", false}};

    for (const auto& one : switches) {
        for (const auto& test : cases) {
            ForgetSwitches();
            Store(HKEY_LOCAL_MACHINE, kMachineAdapterKey, one.name, test.value);
            EXPECT_FALSE(one.value);
            one.read();
            EXPECT_EQ(one.value, test.on);
            EXPECT_FALSE(one.other);
            Store(HKEY_LOCAL_MACHINE, kMachineAdapterKey, one.name, test.on ? 0L : 1L);
            one.read();
            EXPECT_EQ(one.value, test.on) << "a change takes effect in a new process";
        }
        TearDown();
    }
}

}  // namespace
}  // namespace beacon::test
