#include "tests/fakes/adapter_fixture.h"

namespace beacon::test {
namespace {

class Settings : public AdapterTest {};

TEST_F(Settings, OfTheMachineHaveDefaults) {
    EXPECT_EQ(GetStartAnalysisDelay(), 2000);
    EXPECT_EQ(GetMaxDocUnits(), 3072);

    const struct {
        const wchar_t* value;
        long delay;
        long units;
    } cases[] = {
        {L"0", 2000, 3072},        {L"abc", 2000, 3072},     {L"1", 1, 1},
        {L"-5", 2000, -5},         {L"32767", 32767, 32767}, {L"32768", 32768, 3072},
        {L"-32768", 2000, -32768}, {L"-32769", 2000, 3072},
    };

    for (const auto& one : cases) {
        SCOPED_TRACE(one.value);
        SetOfMachine(L"StartAnalysisDelay", one.value);
        SetOfMachine(L"MaxDocUnits", one.value);
        EXPECT_EQ(GetStartAnalysisDelay(), one.delay);
        EXPECT_EQ(GetMaxDocUnits(), one.units);
    }
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", 750);
    EXPECT_EQ(GetMaxDocUnits(), 750) << "a number will do";
}

TEST_F(Settings, OfTheUserAreExactTexts) {
    EXPECT_FALSE(ReadDefaultAutoUpdate());
    EXPECT_EQ(GetEnableToolbar(), L"");
    for (const wchar_t* value : {L"True", L"true", L" True", L"1", L""}) {
        SetOfUser(L"DefaultAutoUpdate", value);
        SetOfUser(L"EnableToolbar", value);
        EXPECT_EQ(ReadDefaultAutoUpdate(), std::wstring_view(value) == L"True") << value;
        EXPECT_EQ(GetEnableToolbar(), value);
    }
    SetRegDword(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", 0);
    EXPECT_EQ(GetEnableToolbar(), L"0");
}

TEST_F(Settings, SwitchesAreOnForTheNumberOneAndReadOnce) {
    const struct {
        const wchar_t* name;
        void (*read)();
        const bool& value;
        const bool& other;
    } switches[] = {{L"Logging", ReadLoggingSetting, gLogging, gUseObjectModel},
                    {L"UseObjectModel", ReadUseObjectModelSetting, gUseObjectModel, gLogging}};

    for (const auto& one : switches) {
        const auto readInNewProcess = [&] {
            StartLikeANewProcess();
            one.read();
            return one.value;
        };
        SetOfMachine(one.name, L"1");
        EXPECT_FALSE(readInNewProcess()) << "a text is no number";
        for (const long number : {1, 0, 2, -1}) {
            SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, one.name, number);
            EXPECT_EQ(readInNewProcess(), number == 1) << number;
            EXPECT_FALSE(one.other);
            SetRegDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, one.name, 1 - number);
            one.read();
            EXPECT_EQ(one.value, number == 1) << "a change takes effect in a new process";
        }
    }
}

}  // namespace
}  // namespace beacon::test
