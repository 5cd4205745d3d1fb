#include <array>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

TEST_F(CommandBars, RefuseWhatIsNotThereOrNotAllowed) {
    const com::Object bars = window_.Bars();
    const com::Object button = BarWindow::AddControl(bar_, 1, L"Button");
    const std::pair<long, std::function<void()>> rows[] = {
        {com::kSubscriptOutOfRange, [&] { bars.GetObject(L"Item", {FromLong(0)}); }},
        {5, [&] { window_.Bar(L"Standard").Call(L"Delete"); }},
        {5, [&] { window_.AddBar(L"mine"); }},
        {5, [&] { BarWindow::AddControl(bar_, 7, L"?"); }},
        {5, [&] { button.Put(L"Width", FromLong(-1)); }},
        {com::kNoSuchMember, [&] { button.GetText(L"Text"); }},
    };
    for (const auto& row : rows) EXPECT_EQ(RaisedBy(row.second).number, row.first) << "row " << &row - rows;
}

class Permanence : public testing::Test {
protected:
    Permanence() { std::filesystem::remove(path_); }

    ~Permanence() override { std::filesystem::remove(path_); }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() / L"command-bars-test.json";
};

TEST_F(Permanence, ABarComesBackAfterARestartWithAllItHad) {
    std::wstring before;
    ButtonFace face;
    {
        BarStore store(path_.wstring());
        const BarWindow window(store, WindowKind::Inspector);
        const com::Object bar = window.AddBar(L"Mine \\ t\x20acsts");
        bar.Put(L"Protection", FromLong(1));
        const com::Object box = BarWindow::AddControl(bar, 4, L"Line\r\nbreak\tand tab");
        box.Call(L"AddItem", {FromText(L"")});
        box.Call(L"AddItem", {FromText(L"one = 1")});
        box.Put(L"Text", FromText(L"typed"));
        box.Put(L"BeginGroup", true);
        const com::Object button = BarWindow::AddControl(bar, 1, L"Face");
        button.Put(L"Tag", FromText(L"marker 65540;0"));
        ASSERT_TRUE(OpenClipboard(window.top));
        EmptyClipboard();
        SetClipboardData(CF_BITMAP, CreateBitmap(16, 16, 1, 1, std::array<WORD, 16>{0x1234}.data()));
        CloseClipboard();
        button.Call(L"PasteFace");
        face = window.host->Button(L"Face").face;
        bar.GetObject(L"Controls").CallObject(L"Add", {FromLong(1), Missing(), Missing(), Missing(), true});
        EXPECT_EQ(BarWindow(store).Bars().GetLong(L"Count"), 2) << "explorers have their own bars";
        EXPECT_FALSE(std::filesystem::exists(path_)) << "changes are written from the message loop";
        PumpMessages();
        EXPECT_TRUE(std::filesystem::exists(path_));
        before = BarWindow(store, WindowKind::Inspector).host->Describe();  // a later window of this run
    }
    BarStore store(path_.wstring());
    const BarWindow window(store, WindowKind::Inspector);
    const com::Object bar = window.Bar(L"Mine \\ t\x20acsts");
    EXPECT_EQ(window.host->Describe(), before);
    EXPECT_EQ(bar.GetObject(L"Controls").GetLong(L"Count"), 2) << "the temporary control is gone";
    EXPECT_FALSE(face.Empty());
    EXPECT_EQ(window.host->Button(L"Face").face, face);
    const BarControl& box = window.host->ComboBox(L"Line\r\nbreak\tand tab");
    EXPECT_THAT(box.items, testing::ElementsAre(L"", L"one = 1"));
    EXPECT_EQ(box.text, L"typed");
}

TEST_F(Permanence, AFileThatCannotBeReadIsReportedAndNotOverwritten) {
    constexpr char kText[] = R"({"explorer": [{"name": "A", "controls": [{"face": {"width": 2, "height": 2,
                                 "pixels": [1, 2, 3]}}]}], "inspector": []})";
    std::ofstream(path_, std::ios::binary) << kText;
    std::wstring trouble;
    {
        BarStore store(path_.wstring(), [&](const std::wstring& line) { trouble = line; });
        const BarWindow window(store);
        EXPECT_EQ(window.Bars().GetLong(L"Count"), 2);
        window.AddBar(L"Mine");
    }
    EXPECT_THAT(trouble, testing::HasSubstr(L"a face of another size"));
    std::ifstream file(path_, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), kText);
}

}  // namespace
}  // namespace beacon::standin::test
