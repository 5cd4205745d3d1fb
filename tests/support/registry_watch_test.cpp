#include "support/registry_watch.h"

#include <gtest/gtest.h>
#include <sddl.h>

#include "support/registry.h"

namespace beacon::test {
namespace {

constexpr wchar_t kRoot[] = L"Software\\Beacon watch test";
constexpr wchar_t kWatchedKey[] = L"Software\\Beacon watch test\\Middle\\Key";

TEST(RegistryWatch, HasANewVersionAfterEachChangeOfTheKeyAndOnlyThen) {
    const HKEY hive = HKEY_CURRENT_USER;
    RegDeleteTreeW(hive, kRoot);
    const auto set = [&](const wchar_t* key, const wchar_t* value) { SetRegString(hive, key, L"Value", value); };

    const struct {
        const char* what;
        std::function<void()> change;
    } changes[] = {
        {"made with all above it", [&] { set(kWatchedKey, L"1"); }},
        {"value", [&] { set(kWatchedKey, L"2"); }},
        {"value gone", [&] { RegDeleteKeyValueW(hive, kWatchedKey, L"Value"); }},
        {"key gone", [&] { RegDeleteTreeW(hive, kWatchedKey); }},
        {"key made", [&] { set(kWatchedKey, L"3"); }},
        {"all gone", [&] { RegDeleteTreeW(hive, kRoot); }},
        {"made again", [&] { set(kWatchedKey, L"4"); }},
        {"all gone again", [&] { RegDeleteTreeW(hive, kRoot); }},
    };

    RegistryWatch watch(hive, kWatchedKey);
    unsigned before = watch.Version();
    for (const auto& one : changes) {
        EXPECT_EQ(watch.Version(), before) << "before: " << one.what;
        set(L"Software\\Beacon watch test, another", one.what == changes[0].what ? L"a" : L"b");
        one.change();
        EXPECT_NE(watch.Version(), before) << one.what;
        before = watch.Version();
        before = watch.Version();
    }
    RegDeleteTreeW(hive, L"Software\\Beacon watch test, another");
}

// The parent stands empty when it goes, and comes back together with the key.
TEST(RegistryWatch, SeesAKeyComeBackWhoseParentHadGone) {
    const HKEY hive = HKEY_CURRENT_USER;
    HKEY parent = nullptr;
    ASSERT_EQ(CreateRegKey(hive, L"Software\\Beacon watch test\\Middle", parent), ERROR_SUCCESS);
    RegCloseKey(parent);
    RegistryWatch watch(hive, kWatchedKey);
    watch.Version();
    const unsigned before = watch.Version();
    RegDeleteTreeW(hive, kRoot);
    SetRegString(hive, kWatchedKey, L"Value", L"1");
    EXPECT_NE(watch.Version(), before);
    RegDeleteTreeW(hive, kRoot);
}

TEST(RegistryWatch, TakesAKeyThatMustNotBeWatchedForChangedAtEachCall) {
    const HKEY hive = HKEY_CURRENT_USER;
    HKEY key = nullptr;
    ASSERT_EQ(CreateRegKey(hive, kWatchedKey, key), ERROR_SUCCESS);
    PSECURITY_DESCRIPTOR denied = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:(D;;0x10;;;WD)(A;;KA;;;WD)", SDDL_REVISION_1,
                                                                     &denied, nullptr));
    ASSERT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, denied), ERROR_SUCCESS);
    LocalFree(denied);
    RegCloseKey(key);
    RegistryWatch watch(hive, kWatchedKey);
    watch.Version();
    const unsigned before = watch.Version();
    EXPECT_NE(watch.Version(), before);
    RegDeleteTreeW(hive, kRoot);
}

}  // namespace
}  // namespace beacon::test
