#include <windows.h>

#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "com/event_sink.h"
#include "com/object.h"
#include "common/program.h"
#include "outlook/bars/command_bars_host.h"
#include "outlook/bars/control_objects.h"
#include "tests/fakes/raised_by.h"

namespace beacon::standin {
namespace {

using com::Object;
using testing::ElementsAre;

/// A window with command bars that a file keeps, used as an add-in uses it: by name.
class Bars : public testing::Test {
protected:
    Bars() {
        std::filesystem::remove(path_);
        Open();
    }

    ~Bars() override { Close(); }

    void Open() {
        const auto note = [this](const std::wstring& line) { lines_.push_back(line); };
        top_ = CreateWindowExW(0, L"STATIC", L"Bars", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 800, 300, nullptr,
                               nullptr, GetModuleHandleW(nullptr), nullptr);
        store_ = std::make_unique<BarStore>(path_.wstring(), note);
        host_ = std::make_unique<CommandBarsHost>(top_, WindowKind::Explorer, *store_);
        host_->SetListener(note);
    }

    void Close() {
        host_.reset();
        store_.reset();
        DestroyWindow(top_);
    }

    Object AddBar() const {
        const Object bar =
            Object(static_cast<IDispatch*>(host_->CommandBars().get())).CallObject(L"Add", {L"Mine \\ t\x20acsts", 1L});
        bar.Put(L"Visible", true);
        return bar;
    }

    static Object AddControl(const Object& bar, long type, const wchar_t* caption) {
        const Object control = bar.GetObject(L"Controls").CallObject(L"Add", {type});
        control.Put(L"Caption", caption);
        return control;
    }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() / L"command-bars-test.json";
    HWND top_ = nullptr;
    std::unique_ptr<BarStore> store_;
    std::unique_ptr<CommandBarsHost> host_;
    std::vector<std::wstring> lines_;  // printed by the store and the window
};

TEST_F(Bars, ComeBackAfterARestartWithAllTheyHad) {
    const Object bar = AddBar();
    const Object box = AddControl(bar, kComboBoxControl, L"Line\r\nbreak\tand tab");
    for (const wchar_t* item : {L"", L"one = 1"}) box.Call(L"AddItem", {item});
    box.Put(L"Text", L"typed");
    const Object button = AddControl(bar, kButtonControl, L"Face");
    button.Put(L"Tag", L"marker 65540;0");
    ASSERT_TRUE(OpenClipboard(top_));
    EmptyClipboard();
    SetClipboardData(CF_BITMAP, CreateBitmap(16, 16, 1, 1, std::array<WORD, 16>{0x1234}.data()));
    CloseClipboard();
    button.Call(L"PasteFace");
    const ButtonFace face = host_->Button(L"Face").face;
    PumpMessages();
    EXPECT_TRUE(std::filesystem::exists(path_)) << "written before the end";
    const std::wstring before = host_->Describe();
    bar.GetObject(L"Controls")
        .CallObject(L"Add", {kButtonControl, com::Missing(), com::Missing(), com::Missing(), true});
    Close();
    Open();
    EXPECT_EQ(host_->Describe(), before) << "without the temporary control";
    EXPECT_THAT(before, testing::EndsWith(L" text=\"typed\" items=\"\",\"one = 1\"\n"
                                          L"  2 button \"Face\" tag=\"marker 65540;0\" face=16x16\n"));
    EXPECT_EQ(host_->Button(L"Face").face, face);
}

TEST_F(Bars, DoNotOverwriteAFileThatCannotBeRead) {
    constexpr char kText[] = R"({"explorer": [{"name": "A", "controls": [{"face": {"width": 2, "height": 2,
                                 "pixels": [1, 2, 3]}}]}], "inspector": []})";
    Close();
    std::ofstream(path_, std::ios::binary) << kText;
    Open();
    EXPECT_THAT(lines_, ElementsAre(testing::HasSubstr(L"a face of another size")));
    AddBar();
    Close();
    std::ifstream file(path_, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), kText);
}

TEST_F(Bars, RaiseClickForEveryObjectUntilItsReferenceEnds) {
    const Object bar = AddBar();
    Object objects[2] = {AddControl(bar, kButtonControl, L"&Look")};
    objects[1] = bar.GetObject(L"Controls").GetObject(L"Item", {1L});
    com::EventSubscription sinks[2];
    for (int i = 0; i < 2; ++i) sinks[i].Advise(objects[i].Get(), kCommandBarButtonEvents, [](auto&&...) {});
    const auto click = [&] {
        host_->Click(L"Look");
        PumpMessages();
    };
    objects[0].Put(L"Enabled", false);
    click();
    objects[0].Put(L"Enabled", true);
    click();
    for (Object& object : objects) {
        object.Reset();  // the subscription still holds the connection point
        click();
    }
    EXPECT_THAT(lines_,
                ElementsAre(L"Click \"&Look\" sinks=2", L"Click \"&Look\" sinks=1", L"Click \"&Look\" sinks=0"));
}

TEST_F(Bars, RaiseChangeForAChoice) {
    const Object box = AddControl(AddBar(), kComboBoxControl, L"Context");
    for (const wchar_t* item : {L"alpha", L"beta"}) box.Call(L"AddItem", {item});
    EXPECT_EQ(test::RaisedBy([&] { host_->Choose(L"Context", L"delta"); }).number, 5);
    host_->Choose(L"Context", L"alpha");
    box.Call(L"AddItem", {L"new", 1L});  // before the choice arrives
    PumpMessages();
    EXPECT_THAT(lines_, ElementsAre(L"Change \"Context\" text=\"alpha\" sinks=0"));
    box.Call(L"AddItem", {L"newer", 1L});
    EXPECT_EQ(box.GetLong(L"ListIndex"), 3) << "the chosen item has moved";
}

}  // namespace
}  // namespace beacon::standin
