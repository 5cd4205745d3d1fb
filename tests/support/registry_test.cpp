#include "support/registry.h"

#include "tests/fakes/adapter_fixture.h"

namespace beacon::test {
namespace {

using namespace std::string_literals;

constexpr wchar_t kKey[] = L"Software\\Corvantis\\Beacon\\RegistryTest";

const HKEY kNoHive = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0xABC0));

class Registry : public AdapterTest {
protected:
    void SetUp() override {
        AdapterTest::SetUp();
        ASSERT_EQ(CreateRegKey(HKEY_CURRENT_USER, kKey, key_), ERROR_SUCCESS);
        modGetDword(HKEY_CURRENT_USER, kKey, L"an earlier failure");
    }

    void Write(DWORD type, const std::string& bytes) {
        ASSERT_EQ(RegSetValueExA(key_.get(), "Value", 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                 static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
    }

    /// Type and bytes, as the ANSI functions give them.
    std::pair<DWORD, std::string> Stored(const char* name) {
        DWORD type = REG_NONE;
        char bytes[64];
        DWORD size = sizeof bytes;
        RegGetValueA(key_.get(), nullptr, name, RRF_RT_ANY, &type, bytes, &size);
        return {type, {bytes, size}};
    }

    /// By the only function that clears it.
    static void ForgetError() {
        std::wstring ignored;
        GetRegValue(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir", ignored);
    }

    com::UniqueKey key_;
};

TEST_F(Registry, ReadsEveryTypeAsTextOrSaysWhyNot) {
    const std::wstring notText = L"modGetString - Value Type is not REGSZ";
    const std::wstring moreData = L"modGetDword: RegQueryValueEx("s + kKey + L"\\Value) failed 234";

    const struct {
        const char* name;
        DWORD type;
        std::string bytes;
        bool readable;
        std::wstring text;       // of GetRegValue
        long number;             // of modGetDword
        std::wstring textError;  // of modGetString
        std::wstring error;      // of modGetDword, and what GetRegValue leaves when it fails
    } cases[] = {
        {"text", REG_SZ, "True\0"s, true, L"True", 0, L"", moreData},
        {"empty text", REG_SZ, "\0"s, true, L"", 0, L"", L""},
        {"no text at all", REG_SZ, "", true, L"", 0, L"", L""},
        {"unterminated text", REG_SZ, "abc"s, true, L"abc", 0, L"", L""},
        {"text with a NUL", REG_SZ, "ab\0cd\0"s, true, L"ab", 0, L"", moreData},
        {"unexpanded", REG_EXPAND_SZ, "%AppData%\\x\0"s, true, L"%AppData%\\x", 0, L"", moreData},
        {"several texts", REG_MULTI_SZ, "a\0b\0\0"s, true, L"a\rb\r", 0, L"", moreData},
        {"number", REG_DWORD, "\x01\0\0\0"s, true, L"1", 1, notText, L""},
        {"short binary", REG_BINARY, "\x01\x02\x03"s, true, L"0", 0, notText, L""},
        {"nothing", REG_NONE, "", true, L"0", 0, notText, L""},
        {"binary of 5 bytes", REG_BINARY, "\x01\x02\x03\x04\x05"s, false, L"", 0, notText, moreData},
        {"large number", REG_QWORD, "\x01\0\0\0\0\0\0\0"s, false, L"", 0, notText, moreData},
    };

    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        Write(one.type, one.bytes);
        std::wstring text = L"before";
        EXPECT_EQ(GetRegValue(HKEY_CURRENT_USER, kKey, L"Value", text), one.readable);
        EXPECT_EQ(text, one.text);
        EXPECT_EQ(gRegLastError, one.readable ? L"" : one.error);

        ForgetError();
        EXPECT_EQ(modGetString(HKEY_CURRENT_USER, kKey, L"Value"), one.textError.empty() ? one.text : L"");
        EXPECT_EQ(gRegLastError, one.textError);
        ForgetError();
        EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, kKey, L"Value"), one.number);
        EXPECT_EQ(gRegLastError, one.error);
    }
}

TEST_F(Registry, SaysWhatIsMissing) {
    const std::wstring missing = L"Software\\Corvantis\\Beacon\\Missing";
    const auto read = [](HKEY hive, const std::wstring& key) {
        std::wstring text = L"before";
        EXPECT_FALSE(GetRegValue(hive, key, L"Value", text));
        EXPECT_EQ(text, L"");
        return gRegLastError;
    };
    EXPECT_EQ(read(HKEY_CURRENT_USER, kKey), L"modGetDword: RegQueryValueEx("s + kKey + L"\\Value) failed 2");
    EXPECT_EQ(read(HKEY_LOCAL_MACHINE, missing), L"RegOpenKey(80000002," + missing + L") failed: 2");
    EXPECT_EQ(modGetString(HKEY_CURRENT_USER, missing, L"Value"), L"");
    EXPECT_EQ(gRegLastError, L"modGetString - Value Type is not REGSZ");
    EXPECT_EQ(OpenRegKey(HKEY_CURRENT_USER, missing, key_), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key_, nullptr);
    EXPECT_EQ(CreateRegKey(kNoHive, L"x", key_), ERROR_INVALID_HANDLE);
    EXPECT_EQ(gRegLastError, L"RegCreateKey(ABC0,x) failed: 6");
}

TEST_F(Registry, WritesWhatItReads) {
    const std::wstring key = kKey + L"\\new\\key"s;
    const std::wstring same = L"\\" + key;
    SetRegString(HKEY_CURRENT_USER, key, L"Text", L"0");
    SetRegDword(HKEY_CURRENT_USER, key, L"Number", -2);
    std::wstring text;
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, key, L"Number"), -2);
    EXPECT_EQ(modGetString(HKEY_CURRENT_USER, same, L"Text"), L"0");
    EXPECT_TRUE(GetRegValue(HKEY_CURRENT_USER, same, L"Number", text));
    EXPECT_EQ(text, L"-2");
    SetRegString(kNoHive, kKey, L"Text", L"lost");
    SetRegDword(kNoHive, kKey, L"Number", 1);
}

TEST_F(Registry, StoresTextsInTheAnsiCodePage) {
    const std::wstring umlaut = L"\u00FCber\u20AC";
    SetRegString(HKEY_CURRENT_USER, kKey, L"Umlaut", umlaut);
    char ansi[16];
    const int size = WideCharToMultiByte(CP_ACP, 0, umlaut.c_str(), -1, ansi, sizeof ansi, nullptr, nullptr);
    EXPECT_EQ(Stored("Umlaut"), std::pair(DWORD{REG_SZ}, std::string(ansi, static_cast<size_t>(size))));
    SetRegString(HKEY_CURRENT_USER, kKey, L"Empty", L"");
    EXPECT_EQ(Stored("Empty"), std::pair(DWORD{REG_SZ}, "\0"s));
    SetRegDword(HKEY_CURRENT_USER, kKey, L"Empty", 1);
    EXPECT_EQ(Stored("Empty"), std::pair(DWORD{REG_DWORD}, "\x01\0\0\0"s)) << "a value may change its type";
}

}  // namespace
}  // namespace beacon::test
