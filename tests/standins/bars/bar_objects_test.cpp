#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

class CommandBars : public testing::Test {
protected:
    BarStore store_;
    BarWindow window_{store_};
};

TEST_F(CommandBars, BuiltInBarsComeFirstAndCannotBeDeleted) {
    const com::Object bars = window_.Bars();
    EXPECT_EQ(bars.GetObject(L"Item", {FromLong(1)}).GetText(L"Name"), L"Menu Bar");
    const com::Object standard = bars.GetObject(L"item", {FromText(L"STANDARD")});
    EXPECT_EQ(standard.GetLong(L"Index"), 2);
    EXPECT_TRUE(com::ToBool(standard.Get(L"BuiltIn")));
    const long controls = standard.GetObject(L"Controls").GetLong(L"Count");
    ASSERT_GT(controls, 2);
    for (long i = 1; i <= controls; ++i) EXPECT_EQ(BarWindow::Control(standard, i).GetText(L"Tag"), L"");
    EXPECT_EQ(NumberOf([&] { standard.Call(L"Delete"); }), 5);

    window_.AddBar(L"Mine");
    EXPECT_EQ(com::ToObject(bars.Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {FromText(L"mine")})).GetLong(L"Index"),
              bars.GetLong(L"Count"));
}

TEST_F(CommandBars, AddTakesMissingArguments) {
    const com::Object bar = window_.Bars().CallObject(L"Add", {Missing(), Missing(), Missing(), Missing()});
    EXPECT_EQ(bar.GetText(L"Name"), L"Custom 1");
    EXPECT_EQ(bar.GetLong(L"Position"), 4);
    EXPECT_FALSE(com::ToBool(bar.Get(L"Visible")));
    const com::Object control =
        bar.GetObject(L"Controls").CallObject(L"Add", {FromLong(1), Missing(), Missing(), Missing(), Missing()});
    EXPECT_EQ(control.GetLong(L"Type"), 1);
    EXPECT_EQ(control.GetLong(L"Id"), 1);
    const com::Object first =
        bar.GetObject(L"Controls").CallObject(L"Add", {FromLong(4), Missing(), Missing(), FromLong(1)});
    EXPECT_EQ(first.GetLong(L"Index"), 1);
    EXPECT_EQ(control.GetLong(L"Index"), 2);
}

/// Calls as Visual Basic does: all names at once, then Invoke with the numbers of the named arguments.
HRESULT AddByName(const com::Object& bars, std::vector<const wchar_t*> names, std::vector<_variant_t> values,
                  com::Object* bar = nullptr, UINT* wrong = nullptr) {
    names.insert(names.begin(), L"Add");
    std::vector<DISPID> ids(names.size());
    const HRESULT found = bars.Get()->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()),
                                                    static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids.data());
    if (FAILED(found)) return found;
    DISPPARAMS parameters{values.data(), ids.data() + 1, static_cast<UINT>(values.size()),
                          static_cast<UINT>(names.size() - 1)};
    _variant_t result;
    const HRESULT answer =
        bars.Get()->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                           &result, nullptr, wrong);
    if (SUCCEEDED(answer) && bar != nullptr) *bar = com::ToObject(result);
    return answer;
}

TEST_F(CommandBars, AddTakesNamedArguments) {
    const com::Object bars = window_.Bars();
    com::Object bar;
    ASSERT_EQ(AddByName(bars, {L"temporary", L"Name", L"MenuBar"}, {true, L"By name", Missing()}, &bar), S_OK);
    EXPECT_EQ(bar.GetText(L"Name"), L"By name");
    EXPECT_EQ(bar.GetLong(L"Position"), 4);
    EXPECT_EQ(store_.Bars(WindowKind::Explorer).size(), 3u) << "a temporary bar is not stored";

    // Named arguments come first in the array, then the others from the last to the first.
    ASSERT_EQ(AddByName(bars, {L"Position"}, {FromLong(2), L"Half by name"}, &bar), S_OK);
    EXPECT_EQ(bar.GetText(L"Name"), L"Half by name");
    EXPECT_EQ(bar.GetLong(L"Position"), 2);

    EXPECT_EQ(AddByName(bars, {L"Colour"}, {FromLong(2)}), DISP_E_UNKNOWNNAME);
    UINT wrong = 99;
    EXPECT_EQ(AddByName(bars, {L"Name"}, {L"Twice", L"Twice"}, nullptr, &wrong), DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(AddByName(bars, {L"Name", L"Position"}, {L"New", L"no number"}, nullptr, &wrong), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(wrong, 1u);
}

TEST_F(CommandBars, RefusesWhatIsNotThere) {
    const com::Object bars = window_.Bars();
    const com::Object bar = window_.AddBar(L"Mine");
    EXPECT_EQ(NumberOf([&] { window_.AddBar(L"mine"); }), 5);
    EXPECT_EQ(NumberOf([&] { bars.GetObject(L"Item", {FromLong(0)}); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { bars.GetObject(L"Item", {FromLong(5)}); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { bars.GetObject(L"Item", {FromText(L"Nobody's")}); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { BarWindow::Control(bar, 1); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { BarWindow::AddControl(bar, 7, L"?"); }), 5);
    EXPECT_EQ(NumberOf([&] { bar.Put(L"Position", FromLong(7)); }), 5);
    const com::Object button = BarWindow::AddControl(bar, 1, L"Button");
    EXPECT_EQ(NumberOf([&] { button.GetText(L"Text"); }), com::kNoSuchMember) << "a button is no combo box";
}

TEST_F(CommandBars, ADeletedBarsObjectsAnswerWithAnError) {
    const com::Object bars = window_.Bars();
    const com::Object bar = window_.AddBar(L"Mine");
    const com::Object controls = bar.GetObject(L"Controls");
    const com::Object button = BarWindow::AddControl(bar, 1, L"Button");
    const com::Object other = BarWindow::AddControl(bar, 1, L"Other");
    button.Call(L"Delete");
    EXPECT_NE(NumberOf([&] { button.GetText(L"Caption"); }), 0);
    EXPECT_EQ(other.GetLong(L"Index"), 1);
    bar.Call(L"Delete");
    EXPECT_EQ(bars.GetLong(L"Count"), 3);
    for (const com::Object& gone : {bar, controls, other})
        EXPECT_NE(NumberOf([&] { gone.GetLong(&gone == &controls ? L"Count" : L"Index"); }), 0);

    window_.host.reset();
    EXPECT_NE(NumberOf([&] { bars.GetLong(L"Count"); }), 0) << "its window is gone";
}

TEST_F(CommandBars, PropertiesKeepWhatTheyAreGiven) {
    const com::Object bar = window_.AddBar(L"Mine");
    const com::Object button = BarWindow::AddControl(bar, 1, L"&Button");
    const std::pair<const wchar_t*, _variant_t> forBar[] = {{L"Protection", 1L}, {L"Enabled", false}, {L"RowIndex", 7L},
                                                            {L"Left", 11L},      {L"Top", 12L},       {L"Width", 333L},
                                                            {L"Height", 44L},    {L"Position", 3L}};
    for (const auto& [name, value] : forBar) {
        bar.Put(name, value);
        EXPECT_EQ(bar.Get(name), value) << testing::PrintToString(name);
    }
    const std::pair<const wchar_t*, _variant_t> forButton[] = {
        {L"Style", 3L},          {L"TooltipText", L"tip"}, {L"DescriptionText", L"description"},
        {L"ShortcutText", L"s"}, {L"Tag", L"t\t\x20ac"},   {L"BeginGroup", true},
        {L"State", -1L},         {L"FaceId", 59L},         {L"Enabled", false}};
    for (const auto& [name, value] : forButton) {
        button.Put(name, value);
        EXPECT_EQ(BarWindow::Control(bar, 1).Get(name), value) << testing::PrintToString(name);
    }
    EXPECT_EQ(bar.GetObject(L"Controls", {FromText(L"button")}).GetLong(L"Style"), 3);
}

TEST_F(CommandBars, HiddenControlsTakeNoPlace) {
    const int before = window_.host->Height();
    const com::Object bar = window_.AddBar(L"Mine");
    EXPECT_GT(window_.host->Height(), before);
    BarWindow::AddControl(bar, 1, L"First");
    const com::Object second = BarWindow::AddControl(bar, 1, L"Second");
    BarWindow::AddControl(bar, 1, L"Third");
    const LONG shown = window_.host->PlaceOf(L"Third")->left;
    second.Put(L"Visible", false);
    EXPECT_EQ(window_.host->PlaceOf(L"Second"), std::nullopt);
    EXPECT_EQ(window_.host->PlaceOf(L"Third")->left, window_.host->PlaceOf(L"First")->right);
    EXPECT_LT(window_.host->PlaceOf(L"Third")->left, shown);
    bar.Put(L"Visible", false);
    EXPECT_EQ(window_.host->Height(), before);
    EXPECT_EQ(window_.host->PlaceOf(L"Third"), std::nullopt);
    EXPECT_EQ(NumberOf([&] { window_.host->Click(L"Third"); }), 5);
}

TEST_F(CommandBars, TheHeightsOwnerHearsOfAChange) {
    int told = 0;
    window_.host->SetHeightChanged([&] { ++told; });
    const com::Object bar = window_.AddBar(L"Mine");
    BarWindow::AddControl(bar, 1, L"Button");
    Pump();
    EXPECT_EQ(told, 1);
    RECT area{};
    GetClientRect(window_.host->Window(), &area);
    EXPECT_EQ(area.bottom, window_.host->Height());
}

}  // namespace
}  // namespace beacon::standin::test
