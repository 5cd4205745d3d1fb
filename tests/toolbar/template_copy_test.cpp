#include "toolbar/template_copy.h"

#include "com/text.h"
#include "tests/fakes/adapter_fixture.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

class WordTemplate : public test::AdapterTest {
protected:
    static void Write(const std::wstring& path, const std::string& text) {
        std::ofstream(com::ToAnsi(path), std::ios::binary) << text;
    }

    /// Copies by the toolbar's method; returns the lines logged.
    test::LogLines Copy(const std::wstring& programDirectory, const std::wstring& target) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineKey, L"Program Directory", programDirectory);
        log_.Clear();
        com::MakeObject<CToolbar>()->CopyFreshTemplateToAppData(_bstr_t(target.c_str()));
        return log_.Lines();
    }

    const std::wstring folder_ = log_.Root() + L"\\";
    const std::wstring source_ = folder_ + L"word-toolbar-container.dot";
    const std::wstring target_ = folder_ + L"target.dot";
};

TEST_F(WordTemplate, ReplacesTheUsersFileOrLogsOneError) {
    const std::wstring failed = L"Exception in CopyTemplateToAppDataIfNotThere: ";
    CopyFreshTemplateToAppData(target_);
    EXPECT_EQ(log_.Lines(), (test::LogLines{L"CopyFreshTemplateToAppData called", failed + L" 0"})) << "no directory";
    EXPECT_EQ(Copy(folder_, target_).back(), failed + L" 0") << "no file to copy";
    EXPECT_EQ(log_.Lines().size(), 3u) << "begin, path, error";
    Write(source_, "fresh");
    SetFileAttributesW(source_.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(Copy(folder_, target_).back(), failed + L" 0") << "a hidden file";
    SetFileAttributesW(source_.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Copy(log_.Root(), target_).back(), failed + L" 0") << "no separator";
    EXPECT_EQ(Copy(folder_, folder_ + L"missing\\target.dot").back(), failed + L"Path not found 76");

    Write(target_, "stale and longer");
    const HANDLE inUse = CreateFileW(target_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(Copy(folder_, target_).back(), failed + L"Permission denied 70");
    CloseHandle(inUse);
    EXPECT_EQ(Bytes(target_), "stale and longer");
    EXPECT_EQ(Copy(folder_, target_).back(),
              L"CopyFreshTemplateToAppData: Successful copy of " + source_ + L" to " + target_);
    EXPECT_EQ(Bytes(target_), "fresh");
}

}  // namespace
}  // namespace beacon
