#include <filesystem>
#include <fstream>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

class Permanence : public testing::Test {
protected:
    Permanence() { std::filesystem::remove(path_); }

    ~Permanence() override { std::filesystem::remove(path_); }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() / L"command-bars-test.json";
};

TEST_F(Permanence, ABarComesBackAfterARestartWithAllItHad) {
    ButtonFace face;
    std::wstring before;
    {
        BarStore store(path_.wstring());
        const BarWindow window(store, WindowKind::Inspector);
        const com::Object bar = window.AddBar(L"Mine \\ t\x20acsts");
        bar.Put(L"Protection", FromLong(1));
        const com::Object button = BarWindow::AddControl(bar, 1, L"Line\r\nbreak\tand tab");
        button.Put(L"Tag", FromText(L"marker 65540;0"));
        button.Put(L"BeginGroup", true);
        const com::Object box = BarWindow::AddControl(bar, 4, L"Box");
        box.Call(L"AddItem", {FromText(L"")});
        box.Call(L"AddItem", {FromText(L"one = 1")});
        box.Put(L"Text", FromText(L"typed"));
        const com::Object pasted = BarWindow::AddControl(bar, 1, L"Face");
        const WORD cross[16] = {};
        const HBITMAP bitmap = CreateBitmap(16, 16, 1, 1, cross);
        ASSERT_TRUE(OpenClipboard(window.top));
        EmptyClipboard();
        SetClipboardData(CF_BITMAP, bitmap);
        CloseClipboard();
        pasted.Call(L"PasteFace");
        BarWindow::AddControl(bar, 1, L"Hidden").Put(L"Visible", false);
        bar.GetObject(L"Controls").CallObject(L"Add", {FromLong(1), Missing(), Missing(), Missing(), true});
        window.AddBar(L"Only now", true);
        face = window.host->Button(L"Face").face;

        const BarWindow next(store, WindowKind::Inspector);  // a later window of this run
        before = next.host->Describe();
        EXPECT_EQ(NumberOf([&] { next.Bar(L"Only now"); }), com::kSubscriptOutOfRange);
        EXPECT_EQ(BarWindow(store).Bars().GetLong(L"Count"), 2) << "explorers have their own bars";
        EXPECT_FALSE(std::filesystem::exists(path_)) << "changes are written from the message loop";
        PumpMessages();
        EXPECT_TRUE(std::filesystem::exists(path_));
        bar.Put(L"RowIndex", FromLong(2));
    }
    BarStore store(path_.wstring());
    const BarWindow window(store, WindowKind::Inspector);
    const com::Object bar = window.Bar(L"Mine \\ t\x20acsts");
    EXPECT_EQ(bar.GetLong(L"RowIndex"), 2) << "the last change is written at the end";
    bar.Put(L"RowIndex", FromLong(3));
    EXPECT_EQ(window.host->Describe(), before);
    EXPECT_EQ(bar.GetObject(L"Controls").GetLong(L"Count"), 4) << "the temporary control is gone";
    EXPECT_EQ(BarWindow::Control(bar, 1).GetText(L"Caption"), L"Line\r\nbreak\tand tab");
    EXPECT_EQ(window.host->Button(L"Face").face, face);
    EXPECT_THAT(window.host->ComboBox(L"Box").items, testing::ElementsAre(L"", L"one = 1"));
    EXPECT_EQ(window.host->ComboBox(L"Box").text, L"typed");
}

TEST_F(Permanence, EveryWindowHasItsOwnObjects) {
    BarStore store;
    const BarWindow first(store);
    const BarWindow second(store);
    const com::Object bar = first.AddBar(L"Mine");
    const com::Object button = BarWindow::AddControl(bar, 1, L"Button");
    EXPECT_EQ(NumberOf([&] { second.Bar(L"Mine"); }), com::kSubscriptOutOfRange) << "it was open before";

    const BarWindow third(store);
    BarWindow::Control(third.Bar(L"Mine"), 1).Put(L"Tag", FromText(L"third"));
    EXPECT_EQ(button.GetText(L"Tag"), L"");
    EXPECT_EQ(BarWindow::Control(BarWindow(store).Bar(L"Mine"), 1).GetText(L"Tag"), L"third")
        << "the last change is what later windows get";

    third.Bar(L"Mine").Call(L"Delete");
    button.Put(L"Tag", FromText(L"late"));
    EXPECT_EQ(button.GetText(L"Tag"), L"late") << "the first window keeps its bar";
    EXPECT_EQ(NumberOf([&] { BarWindow(store).Bar(L"Mine"); }), com::kSubscriptOutOfRange)
        << "a change elsewhere does not bring a deleted bar back";
}

TEST_F(Permanence, AFileThatCannotBeReadIsSaidSoAndKept) {
    std::wstring trouble;
    const auto hear = [&](const std::wstring& text) { trouble = text; };
    const std::pair<const char*, const wchar_t*> files[] = {
        {"command-bars 1\n", L"parse error"},
        {R"({"explorer": [{"name": "A"}]})", L"'inspector' not found"},
        {R"({"explorer": [{"name": "A", "controls": [{"face": {"width": 2, "height": 2, "pixels": [1, 2, 3]}}]}],
             "inspector": []})",
         L"a face of another size"},
    };
    for (const auto& [text, reason] : files) {
        std::ofstream(path_, std::ios::binary) << text;
        {
            BarStore store(path_.wstring(), hear);
            const BarWindow window(store);
            EXPECT_EQ(window.Bars().GetLong(L"Count"), 2);
            window.AddBar(L"Mine");
        }
        EXPECT_THAT(trouble, testing::HasSubstr(reason));
        std::ifstream file(path_, std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text);
    }
    {
        BarStore store(L"Z:\\no\\such\\folder\\bars.json", hear);
        const BarWindow window(store);
        window.AddBar(L"Mine");
    }
    EXPECT_THAT(trouble, testing::HasSubstr(L"cannot write"));
}

}  // namespace
}  // namespace beacon::standin::test
