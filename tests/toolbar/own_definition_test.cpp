#include "toolbar/own_definition.h"

#include <set>

#include "com/object.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

using Strings = std::vector<std::wstring>;

class OwnToolbarDefinition : public test::AdapterTest {
protected:
    Strings Texts() {
        return {definition_.DefaultContextText(), definition_.ContextWarningText(), definition_.ContextWarningTitle()};
    }

    OwnDefinition definition_;
};

TEST_F(OwnToolbarDefinition, HasSixDistinctButtons) {
    ASSERT_EQ(definition_.ButtonCount(), 6);
    std::set<std::wstring> captions;
    std::set<std::wstring> tooltips;
    std::set<std::string> pictures;
    for (long i = 0; i < 6; ++i) {
        captions.insert(definition_.ButtonCaption(i));
        tooltips.insert(definition_.ButtonTooltip(i));
        EXPECT_TRUE(definition_.ButtonEnabled(i));
        EXPECT_EQ(definition_.ButtonMaskColor(i), 0xFF00FFu);
        EXPECT_EQ(definition_.ButtonBitmapPath(i), definition_.ButtonBitmapPath(i));
        pictures.insert(Bytes(definition_.ButtonBitmapPath(i)));
    }
    EXPECT_EQ(captions.size(), 6u) << "commands are recognised by caption";
    EXPECT_EQ(tooltips.size(), 6u);
    EXPECT_EQ(pictures.size(), 6u);
    EXPECT_EQ(captions.count(L"") + tooltips.count(L"") + pictures.count(""), 0u);
    EXPECT_EQ(definition_.ContextMode(), 1);
    EXPECT_EQ(Texts(), (Strings{L"<no context>", L"Please choose a context before you search in it.", L"Beacon"}));
}

TEST_F(OwnToolbarDefinition, OwnsItsBitmapFiles) {
    std::wstring path;
    {
        OwnDefinition other;
        path = other.ButtonBitmapPath(5);
        EXPECT_NE(path, definition_.ButtonBitmapPath(5));
        DeleteFileW(path.c_str());
        path = other.ButtonBitmapPath(5);
        EXPECT_EQ(Bytes(path), Bytes(definition_.ButtonBitmapPath(5))) << "a deleted file is written again";
    }
    EXPECT_EQ(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(OwnToolbarDefinition, DoesNotReplaceAnotherFile) {
    std::wstring path = definition_.ButtonBitmapPath(4);
    const size_t end = path.rfind(L"-button");
    const size_t begin = path.rfind(L'-', end - 1) + 1;
    path.replace(begin, end - begin, std::to_wstring(std::stol(path.substr(begin)) + 1));  // the next number
    path.replace(path.rfind(L'4'), 1, L"5");
    std::ofstream(com::ToAnsi(path)) << "another's";
    EXPECT_EQ(Bytes(definition_.ButtonBitmapPath(5)).substr(0, 2), "BM");
    EXPECT_EQ(Bytes(path), "another's");
    DeleteFileW(path.c_str());
}

TEST_F(OwnToolbarDefinition, RaisesAnErrorIfItCannotWriteABitmap) {
    wchar_t folder[MAX_PATH];
    GetEnvironmentVariableW(L"TMP", folder, MAX_PATH);
    SetEnvironmentVariableW(L"TMP", L"C:\\no such folder");
    EXPECT_EQ(test::RaisedBy([&] { definition_.ButtonBitmapPath(1); }).number,
              HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    SetEnvironmentVariableW(L"TMP", folder);
}

TEST_F(OwnToolbarDefinition, PrefersTheValuesOfTheMachine) {
    const std::pair<const wchar_t*, const wchar_t*> texts[] = {
        {L"ButtonCaption2", L"Find"},      {L"ButtonTooltip2", L""},
        {L"ButtonEnabled2", L"False"},     {L"ButtonEnabled4", L"yes"},
        {L"ButtonMaskColor3", L"255"},     {L"ButtonBitmapPath2", L"C:\\faces\\find.bmp"},
        {L"ButtonMaskColor4", L"pink"},    {L"DefaultContextText", L"anywhere"},
        {L"ContextWarningTitle", L"Lamp"}, {L"ContextWarningText", L"no!"}};
    for (const auto& [name, value] : texts) SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    const std::pair<const wchar_t*, long> numbers[] = {
        {L"ButtonEnabled3", 0}, {L"ButtonMaskColor2", static_cast<long>(0x8000000F)}, {L"ContextMode", 2}};
    for (const auto& [name, value] : numbers) SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    EXPECT_EQ(definition_.ButtonCaption(2), L"Find");
    EXPECT_EQ(definition_.ButtonTooltip(2), L"");
    EXPECT_EQ(definition_.ButtonBitmapPath(2), L"C:\\faces\\find.bmp");
    for (const long i : {0L, 1L, 2L, 3L, 4L, 5L}) EXPECT_EQ(definition_.ButtonEnabled(i), i != 2 && i != 3) << i;
    const std::pair<long, OLE_COLOR> masks[] = {{2, 0x8000000F}, {3, 255}, {4, 0xFF00FF}};
    for (const auto& [button, colour] : masks) EXPECT_EQ(definition_.ButtonMaskColor(button), colour);
    EXPECT_EQ(definition_.ContextMode(), 2);
    EXPECT_EQ(Texts(), (Strings{L"anywhere", L"no!", L"Lamp"}));
}

TEST_F(OwnToolbarDefinition, RaisesErrorNineForAButtonThatDoesNotExist) {
    const std::function<void(long)> members[] = {
        [&](long i) { definition_.ButtonCaption(i); }, [&](long i) { definition_.ButtonTooltip(i); },
        [&](long i) { definition_.ButtonBitmapPath(i); }, [&](long i) { definition_.ButtonEnabled(i); },
        [&](long i) { definition_.ButtonMaskColor(i); }};
    for (const auto& member : members)
        for (const long index : {-1L, 6L}) EXPECT_EQ(test::RaisedBy([&] { member(index); }).number, 9);
}

TEST_F(OwnToolbarDefinition, AsksTheRunningObjectTableForTheEngine) {
    EXPECT_EQ(definition_.EngineState(), 0);
    {
        const test::FakeEngine engine;
        EXPECT_EQ(definition_.EngineState(), 3);
    }
    EXPECT_EQ(definition_.EngineState(), 0);
}

TEST_F(OwnToolbarDefinition, LogsASearchThatItCannotCarryOut) {
    definition_.NewSearch(-5, L"lost?");
    EXPECT_TRUE(
        log_.Has(L"ToolbarConfig: the utility server is missing, no search for window -5 with text <lost?>", 1));
}

TEST_F(OwnToolbarDefinition, SavesALayoutForEachApplication) {
    EXPECT_THROW(definition_.LoadLayout(L"Outlook"), com::Error) << "otherwise the bar would have no size";
    definition_.SaveLayout(L"Outlook", {26, 400, -3, 52, 2, L"Floating"});
    definition_.SaveLayout(L"Word", {1, 2, 3, 4, 5, L"Top"});
    const BarLayout layout = definition_.LoadLayout(L"Outlook");
    EXPECT_EQ((std::vector<long>{layout.height, layout.width, layout.left, layout.top, layout.rowIndex}),
              (std::vector<long>{26, 400, -3, 52, 2}));
    EXPECT_EQ(layout.position, L"Floating");
}

}  // namespace
}  // namespace beacon
