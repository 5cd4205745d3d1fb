#include "addin/registration.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace beacon::test {
namespace {

const std::wstring kOffice = L"Software\\Microsoft\\Office";
const std::wstring kAddIns = kOffice + L"\\Outlook\\Addins";
const std::wstring kAddIn = kAddIns + L"\\BeaconOLKAdapter.Connect";

class Registration : public testing::Test {
protected:
    void SetUp() override { RegDeleteTreeW(HKEY_LOCAL_MACHINE, kOffice.c_str()); }

    void TearDown() override { SetUp(); }

    static void Make(const std::wstring& key) {
        HKEY made = nullptr;
        ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, key.c_str(), &made), ERROR_SUCCESS);
        RegCloseKey(made);
    }

    static bool Has(const std::wstring& key) {
        HKEY found = nullptr;
        if (RegOpenKeyW(HKEY_LOCAL_MACHINE, key.c_str(), &found) != ERROR_SUCCESS) return false;
        RegCloseKey(found);
        return true;
    }
};

TEST_F(Registration, TakesItsOwnKeyWithAllThatIsBelowAndTheParentsThatAreEmptyThen) {
    for (const wchar_t* below : {L"\\one\\deep\\deeper", L"\\one\\other", L"\\two"}) Make(kAddIn + below);
    UnregisterAddIn();
    EXPECT_FALSE(Has(kOffice));
}

TEST_F(Registration, KeepsAParentWithAnotherKeyOrValueAndThoseAboveIt) {
    Make(kAddIn);
    Make(kAddIns + L"\\Another.Connect");
    UnregisterAddIn();
    EXPECT_FALSE(Has(kAddIn));
    EXPECT_TRUE(Has(kAddIns + L"\\Another.Connect"));
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kAddIns.c_str());

    Make(kAddIn);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, (kOffice + L"\\Outlook").c_str(), L"Other", REG_SZ, L"x", sizeof L"x");
    UnregisterAddIn();
    EXPECT_FALSE(Has(kAddIns));
    EXPECT_TRUE(Has(kOffice + L"\\Outlook"));
}

}  // namespace
}  // namespace beacon::test
