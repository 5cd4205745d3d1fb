#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

class Permanence : public testing::Test {
protected:
    Permanence() { std::filesystem::remove(path_); }

    ~Permanence() override { std::filesystem::remove(path_); }

    void Write(const char* text) const {
        FILE* const file = _wfopen(path_.c_str(), L"wb");
        std::fputs(text, file);
        std::fclose(file);
    }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() / L"command-bars-test.txt";
};

com::Object Find(const BarWindow& window, const wchar_t* name) {
    return window.Bars().GetObject(L"Item", {FromText(name)});
}

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
        face = *window.host->FaceOf(L"Face");

        const BarWindow next(store, WindowKind::Inspector);  // a later window of this run
        before = next.host->Describe();
        EXPECT_EQ(NumberOf([&] { Find(next, L"Only now"); }), com::kSubscriptOutOfRange);
        const BarWindow explorer(store);
        EXPECT_EQ(explorer.Bars().GetLong(L"Count"), 3) << "explorers have their own bars";
    }
    BarStore store(path_.wstring());
    const BarWindow window(store, WindowKind::Inspector);
    EXPECT_EQ(window.host->Describe(), before);
    const com::Object bar = Find(window, L"Mine \\ t\x20acsts");
    EXPECT_EQ(bar.GetObject(L"Controls").GetLong(L"Count"), 4) << "the temporary control is gone";
    EXPECT_EQ(BarWindow::Control(bar, 1).GetText(L"Caption"), L"Line\r\nbreak\tand tab");
    EXPECT_EQ(window.host->FaceOf(L"Face"), face);
    EXPECT_THAT(window.host->List(L"Box"), testing::ElementsAre(L"", L"one = 1"));
    EXPECT_EQ(window.host->Text(L"Box"), L"typed");
}

TEST_F(Permanence, EveryWindowHasItsOwnObjects) {
    BarStore store;
    const BarWindow first(store);
    const BarWindow second(store);
    const com::Object bar = first.AddBar(L"Mine");
    const com::Object button = BarWindow::AddControl(bar, 1, L"Button");
    EXPECT_EQ(NumberOf([&] { Find(second, L"Mine"); }), com::kSubscriptOutOfRange) << "it was open before";

    const BarWindow third(store);
    BarWindow::Control(Find(third, L"Mine"), 1).Put(L"Tag", FromText(L"third"));
    EXPECT_EQ(button.GetText(L"Tag"), L"");
    EXPECT_EQ(BarWindow::Control(Find(BarWindow(store), L"Mine"), 1).GetText(L"Tag"), L"third")
        << "the last change is what later windows get";

    Find(third, L"Mine").Call(L"Delete");
    button.Put(L"Tag", FromText(L"late"));
    EXPECT_EQ(button.GetText(L"Tag"), L"late") << "the first window keeps its bar";
    EXPECT_EQ(NumberOf([&] { Find(BarWindow(store), L"Mine"); }), com::kSubscriptOutOfRange)
        << "a change elsewhere does not bring a deleted bar back";
}

TEST_F(Permanence, ChangesAreWrittenFromTheMessageLoop) {
    BarStore store(path_.wstring());
    const BarWindow window(store);
    window.AddBar(L"Mine");
    EXPECT_FALSE(std::filesystem::exists(path_));
    Pump();
    BarStore other(path_.wstring());
    EXPECT_EQ(other.Bars(WindowKind::Explorer).back().name, L"Mine");
}

TEST_F(Permanence, AFileThatCannotBeReadIsSaidSoAndKept) {
    const std::pair<const char*, const wchar_t*> files[] = {
        {"something else\n", L"line 1: this is no file of command bars"},
        {"command-bars 1\ncontrol\ttype=1\n", L"line 2: a control before the first bar"},
        {"command-bars 1\nbar\tkind=explorer\tname=A\ncontrol\ttype=x\n", L"line 3: \"x\" is no number"},
        {"command-bars 1\nbar\tkind=explorer\tname=A\ncontrol\ttype=1\tface=2x2:00ff\n", L"line 3: a face of another"},
        {"command-bars 1\nbar\tkind=window\tname=A\n", L"line 2: a bar of no known kind"},
        {"command-bars 1\nbar\tkind=explorer\tname=A\\\n", L"line 2: a text ends in"},
    };
    for (const auto& [text, reason] : files) {
        Write(text);
        const auto size = std::filesystem::file_size(path_);
        try {
            BarStore store(path_.wstring());
            ADD_FAILURE() << text;
        } catch (const com::Error& error) {
            EXPECT_THAT(error.description, testing::HasSubstr(reason));
        }
        EXPECT_EQ(std::filesystem::file_size(path_), size);
    }
    std::wstring trouble;
    {
        BarStore store(L"Z:\\no\\such\\folder\\bars.txt", [&](const std::wstring& text) { trouble = text; });
        const BarWindow window(store);
        window.AddBar(L"Mine");
    }
    EXPECT_THAT(trouble, testing::HasSubstr(L"cannot write"));
}

}  // namespace
}  // namespace beacon::standin::test
