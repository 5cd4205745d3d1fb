#include "toolbar/own_definition.h"

#include <fstream>
#include <set>

#include "com/object.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/button_faces.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

class TheOwnDefinition : public test::AdapterTest {
protected:
    static void Set(const wchar_t* name, const wchar_t* value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    }

    static void Set(const wchar_t* name, long value) {
        SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    }

    OwnDefinition definition_;
};

std::string Bytes(const std::wstring& path) {
    std::ifstream file(com::ToAnsi(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST_F(TheOwnDefinition, HasSixDistinctButtonsWithPicturesOfItsOwn) {
    ASSERT_EQ(definition_.ButtonCount(), 6);
    std::set<std::wstring> captions;
    std::set<std::wstring> tooltips;
    for (long i = 0; i < 6; ++i) {
        captions.insert(definition_.ButtonCaption(i));
        tooltips.insert(definition_.ButtonTooltip(i));
        EXPECT_TRUE(definition_.ButtonEnabled(i));
        EXPECT_EQ(definition_.ButtonMaskColor(i), 0xFF00FFu);
        const std::wstring path = definition_.ButtonBitmapPath(i);
        EXPECT_EQ(path, definition_.ButtonBitmapPath(i));
        const auto picture = LoadPicture(path);
        ASSERT_NE(picture, nullptr);
        OLE_HANDLE handle = 0;
        picture->get_Handle(&handle);
        BITMAP record{};
        GetObjectW(LongToHandle(static_cast<LONG>(handle)), sizeof record, &record);
        EXPECT_EQ(record.bmWidth, 16);
        EXPECT_EQ(record.bmHeight, 16);
    }
    EXPECT_EQ(captions.size(), 6u) << "commands are told apart by caption";
    EXPECT_EQ(tooltips.size(), 6u);
    EXPECT_EQ(captions.count(L"") + tooltips.count(L""), 0u);
    EXPECT_EQ(definition_.ContextMode(), 1);
    EXPECT_EQ(definition_.DefaultContextText(), L"<no context>");
    EXPECT_EQ(definition_.ContextWarningText(), L"Please choose a context before you search in it.");
    EXPECT_EQ(definition_.ContextWarningTitle(), L"Beacon");
}

TEST_F(TheOwnDefinition, PicturesOfTwoObjectsDoNotDisturbEachOtherAndGoWithThem) {
    std::wstring others;
    {
        OwnDefinition other;
        const std::wstring mine = definition_.ButtonBitmapPath(5);
        others = other.ButtonBitmapPath(5);
        EXPECT_NE(mine, others);
        EXPECT_EQ(Bytes(mine), Bytes(others));
        EXPECT_NE(Bytes(mine), Bytes(definition_.ButtonBitmapPath(0)));
        DeleteFileW(others.c_str());
        others = other.ButtonBitmapPath(5);
        EXPECT_EQ(Bytes(mine), Bytes(others)) << "a file that a clean-up took is written again";
    }
    EXPECT_EQ(GetFileAttributesW(others.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(TheOwnDefinition, ValuesOfTheMachineReplaceTheBuiltInOnes) {
    Set(L"ButtonCaption2", L"Find");
    Set(L"ButtonTooltip2", L"");
    Set(L"ButtonEnabled2", L"False");
    Set(L"ButtonEnabled3", 0L);
    Set(L"ButtonEnabled4", L"yes");
    Set(L"ButtonBitmapPath2", L"C:\\faces\\find.bmp");
    Set(L"ButtonMaskColor2", static_cast<long>(0x8000000F));
    Set(L"ButtonMaskColor3", L"255");
    Set(L"ButtonMaskColor4", L"pink");
    Set(L"ContextMode", 2L);
    Set(L"DefaultContextText", L"anywhere");
    Set(L"ContextWarningText", L"no!");
    Set(L"ContextWarningTitle", L"Lamp");
    EXPECT_EQ(definition_.ButtonCaption(2), L"Find");
    EXPECT_EQ(definition_.ButtonTooltip(2), L"");
    EXPECT_EQ(definition_.ButtonBitmapPath(2), L"C:\\faces\\find.bmp");
    for (const long i : {0L, 1L, 2L, 3L, 4L, 5L}) EXPECT_EQ(definition_.ButtonEnabled(i), i != 2 && i != 3) << i;
    EXPECT_EQ(definition_.ButtonMaskColor(2), 0x8000000F);
    EXPECT_EQ(definition_.ButtonMaskColor(3), 255u);
    EXPECT_EQ(definition_.ButtonMaskColor(4), 0xFF00FFu);
    EXPECT_EQ(definition_.ContextMode(), 2);
    EXPECT_EQ(definition_.DefaultContextText(), L"anywhere");
    EXPECT_EQ(definition_.ContextWarningText(), L"no!");
    EXPECT_EQ(definition_.ContextWarningTitle(), L"Lamp");
}

TEST_F(TheOwnDefinition, AButtonThatDoesNotExistIsErrorNine) {
    const std::function<void(long)> members[] = {
        [&](long i) { definition_.ButtonCaption(i); }, [&](long i) { definition_.ButtonTooltip(i); },
        [&](long i) { definition_.ButtonBitmapPath(i); }, [&](long i) { definition_.ButtonEnabled(i); },
        [&](long i) { definition_.ButtonMaskColor(i); }};
    for (const auto& member : members)
        for (const long index : {-1L, 6L}) EXPECT_EQ(test::RaisedBy([&] { member(index); }).number, 9);
}

TEST_F(TheOwnDefinition, EngineStateFollowsTheRunningObjectTable) {
    constexpr CLSID kController = {0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};
    EXPECT_EQ(definition_.EngineState(), 0);
    DWORD registration = 0;
    const auto controller = com::MakeObject<CToolbar>();  // any object will do
    ASSERT_EQ(
        RegisterActiveObject(static_cast<IUnknown*>(controller.Get()), kController, ACTIVEOBJECT_WEAK, &registration),
        S_OK);
    EXPECT_EQ(definition_.EngineState(), 3);
    RevokeActiveObject(registration, nullptr);
    EXPECT_EQ(definition_.EngineState(), 0);
}

TEST_F(TheOwnDefinition, ASearchWithoutAServerIsLogged) {
    definition_.NewSearch(-5, L"lost?");
    EXPECT_TRUE(
        log_.Has(L"ToolbarConfig: the utility server is missing, no search for window -5 with text <lost?>", 1));
}

TEST_F(TheOwnDefinition, LayoutsAreKeptForEachApplication) {
    EXPECT_THROW(definition_.LoadLayout(L"Outlook"), com::Error) << "nothing saved must not become a bar without size";
    definition_.SaveLayout(L"Outlook", {26, 400, -3, 52, 2, L"Floating"});
    definition_.SaveLayout(L"Word", {1, 2, 3, 4, 5, L"Top"});
    const BarLayout layout = definition_.LoadLayout(L"Outlook");
    EXPECT_EQ(layout.height, 26);
    EXPECT_EQ(layout.width, 400);
    EXPECT_EQ(layout.left, -3);
    EXPECT_EQ(layout.top, 52);
    EXPECT_EQ(layout.rowIndex, 2);
    EXPECT_EQ(layout.position, L"Floating");
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook\\Layout", L"Width"),
              400);
}

}  // namespace
}  // namespace beacon
