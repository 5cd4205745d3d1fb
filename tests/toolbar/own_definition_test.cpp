#include "toolbar/own_definition.h"

#include <set>

#include "com/object.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

class OwnToolbarDefinition : public test::AdapterTest {
protected:
    /// All values of a button but its picture.
    std::wstring Button(long index) {
        return definition_.ButtonCaption(index) + L"|" + definition_.ButtonTooltip(index) + L"|" +
               (definition_.ButtonEnabled(index) ? L"on" : L"off") + L"|" +
               std::to_wstring(definition_.ButtonMaskColor(index));
    }

    static void Set(const wchar_t* name, const wchar_t* value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    }

    OwnDefinition definition_;
};

TEST_F(OwnToolbarDefinition, HasSixDistinctButtons) {
    ASSERT_EQ(definition_.ButtonCount(), 6);
    std::set<std::wstring> captions;
    std::set<std::string> pictures{""};
    for (long i = 0; i < 6; ++i) {
        captions.insert(definition_.ButtonCaption(i));
        pictures.insert(Bytes(definition_.ButtonBitmapPath(i)));
    }
    EXPECT_EQ(captions.size(), 6u) << "commands are recognised by caption";
    EXPECT_EQ(pictures.size(), 7u);
    EXPECT_EQ(Button(4), L"Focus|Bring the information on this item to the front|on|16711935");
    for (const long index : {-1L, 6L}) EXPECT_EQ(test::RaisedBy([&] { Button(index); }).number, 9) << index;
}

TEST_F(OwnToolbarDefinition, PrefersTheValuesOfTheMachine) {
    Set(L"ButtonCaption2", L"Find");
    Set(L"ButtonTooltip2", L"");
    Set(L"ButtonEnabled2", L"False");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ButtonMaskColor2", static_cast<long>(0x8000000F));
    EXPECT_EQ(Button(2), L"Find||off|2147483663");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ButtonEnabled5", 0);
    Set(L"ButtonMaskColor5", L"255");
    EXPECT_EQ(Button(5), L"Refresh|Analyse this item again|off|255");
    Set(L"ButtonEnabled1", L"yes");
    Set(L"ButtonMaskColor1", L"pink");
    EXPECT_EQ(Button(1), L"Backpack|Open the backpack|on|16711935");
    Set(L"ButtonBitmapPath2", L"C:\\faces\\find.bmp");
    EXPECT_EQ(definition_.ButtonBitmapPath(2), L"C:\\faces\\find.bmp");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ContextMode", 2);
    EXPECT_EQ(definition_.ContextMode(), 2);
}

TEST_F(OwnToolbarDefinition, OwnsItsBitmapFiles) {
    std::wstring path;
    {
        OwnDefinition other;
        path = other.ButtonBitmapPath(5);
        EXPECT_EQ(path, other.ButtonBitmapPath(5));
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

TEST_F(OwnToolbarDefinition, SavesALayoutForEachApplication) {
    EXPECT_THROW(definition_.LoadLayout(L"Outlook"), com::Error) << "otherwise the bar would have no size";
    definition_.SaveLayout(L"Outlook", {26, 400, -3, 52, 2, L"Floating"});
    definition_.SaveLayout(L"Word", {1, 2, 3, 4, 5, L"Top"});
    const BarLayout layout = definition_.LoadLayout(L"Outlook");
    EXPECT_EQ(std::tie(layout.height, layout.width, layout.left, layout.top, layout.rowIndex, layout.position),
              std::tuple(26, 400, -3, 52, 2, L"Floating"));
}

}  // namespace
}  // namespace beacon
