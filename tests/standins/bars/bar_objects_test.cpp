#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

TEST_F(CommandBars, AreFoundByPlaceAndNameAndTakeMissingArguments) {
    const com::Object bars = window_.Bars();
    EXPECT_EQ(bars.GetObject(L"Item", {FromLong(1)}).GetText(L"Name"), L"Menu Bar");
    const com::Object standard = bars.GetObject(L"item", {FromText(L"STANDARD")});
    EXPECT_EQ(standard.GetLong(L"Index"), 2);
    EXPECT_TRUE(com::ToBool(standard.Get(L"BuiltIn")));
    EXPECT_EQ(BarWindow::Control(standard, 4).GetText(L"Tag"), L"");
    EXPECT_EQ(com::ToObject(bars.Invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {FromText(L"mine")})).GetLong(L"Index"),
              bars.GetLong(L"Count"));

    const com::Object bar = bars.CallObject(L"Add", {Missing(), Missing(), Missing(), Missing()});
    EXPECT_EQ(bar.GetText(L"Name"), L"Custom 1");
    EXPECT_EQ(bar.GetLong(L"Position"), 4);
    EXPECT_FALSE(com::ToBool(bar.Get(L"Visible")));
    const com::Object controls = bar.GetObject(L"Controls");
    const com::Object control = controls.CallObject(L"Add", {FromLong(1), Missing(), Missing(), Missing(), Missing()});
    EXPECT_EQ(control.GetLong(L"Type"), 1);
    EXPECT_EQ(control.GetLong(L"Id"), 1);
    EXPECT_EQ(controls.CallObject(L"Add", {FromLong(4), Missing(), Missing(), FromLong(1)}).GetLong(L"Index"), 1);
    EXPECT_EQ(control.GetLong(L"Index"), 2);
}

TEST_F(CommandBars, RefuseWhatIsNotThere) {
    const com::Object bars = window_.Bars();
    for (const _variant_t& item : {FromLong(0), FromLong(4), FromText(L"Nobody's")})
        EXPECT_EQ(NumberOf([&] { bars.GetObject(L"Item", {item}); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { BarWindow::Control(bar_, 1); }), com::kSubscriptOutOfRange);
    EXPECT_EQ(NumberOf([&] { window_.Bar(L"Standard").Call(L"Delete"); }), 5);
    EXPECT_EQ(NumberOf([&] { window_.AddBar(L"mine"); }), 5);
    EXPECT_EQ(NumberOf([&] { BarWindow::AddControl(bar_, 7, L"?"); }), 5);
    EXPECT_EQ(NumberOf([&] { bar_.Put(L"Position", FromLong(7)); }), 5);
    const com::Object button = BarWindow::AddControl(bar_, 1, L"Button");
    EXPECT_EQ(NumberOf([&] { button.Put(L"Width", FromLong(-1)); }), 5);
    EXPECT_EQ(NumberOf([&] { button.GetText(L"Text"); }), com::kNoSuchMember) << "a button is no combo box";
}

TEST_F(CommandBars, ADeletedBarsObjectsAnswerWithAnError) {
    const com::Object bars = window_.Bars();
    const com::Object controls = bar_.GetObject(L"Controls");
    const com::Object button = BarWindow::AddControl(bar_, 1, L"Button");
    const com::Object other = BarWindow::AddControl(bar_, 1, L"Other");
    button.Call(L"Delete");
    EXPECT_NE(NumberOf([&] { button.GetText(L"Caption"); }), 0);
    EXPECT_EQ(other.GetLong(L"Index"), 1);
    bar_.Call(L"Delete");
    EXPECT_EQ(bars.GetLong(L"Count"), 2);
    for (const com::Object& gone : {bar_, controls, other})
        EXPECT_NE(NumberOf([&] { gone.GetLong(&gone == &controls ? L"Count" : L"Index"); }), 0);

    window_.host.reset();
    EXPECT_NE(NumberOf([&] { bars.GetLong(L"Count"); }), 0) << "its window is gone";
}

TEST_F(CommandBars, PropertiesKeepWhatTheyAreGiven) {
    const com::Object button = BarWindow::AddControl(bar_, 1, L"&Button");
    const std::pair<const wchar_t*, _variant_t> forBar[] = {{L"Protection", 1L}, {L"Enabled", false}, {L"RowIndex", 7L},
                                                            {L"Left", 11L},      {L"Top", 12L},       {L"Width", 333L},
                                                            {L"Height", 44L},    {L"Position", 3L}};
    for (const auto& [name, value] : forBar) {
        bar_.Put(name, value);
        EXPECT_EQ(bar_.Get(name), value) << testing::PrintToString(name);
    }
    const std::pair<const wchar_t*, _variant_t> forButton[] = {
        {L"Style", 3L},          {L"TooltipText", L"tip"}, {L"DescriptionText", L"description"},
        {L"ShortcutText", L"s"}, {L"Tag", L"t\t\x20ac"},   {L"BeginGroup", true},
        {L"State", -1L},         {L"Enabled", false}};
    for (const auto& [name, value] : forButton) {
        button.Put(name, value);
        EXPECT_EQ(BarWindow::Control(bar_, 1).Get(name), value) << testing::PrintToString(name);
    }
    EXPECT_EQ(bar_.GetObject(L"Controls", {FromText(L"button")}).GetLong(L"Style"), 3);
}

TEST_F(CommandBars, HiddenControlsTakeNoPlace) {
    int told = 0;
    window_.host->SetHeightChanged([&] { ++told; });
    const com::Object first = BarWindow::AddControl(bar_, 1, L"First");
    const com::Object second = BarWindow::AddControl(bar_, 1, L"Second");
    const com::Object third = BarWindow::AddControl(bar_, 1, L"Third");
    const LONG shown = window_.host->PlaceOf(L"Third")->left;
    EXPECT_EQ(window_.host->PlaceOf(L"Second")->right, shown);
    third.Put(L"BeginGroup", true);
    EXPECT_GT(window_.host->PlaceOf(L"Third")->left, shown) << "a line stands between";
    second.Put(L"Visible", false);
    EXPECT_EQ(window_.host->PlaceOf(L"Second"), std::nullopt);
    EXPECT_LT(window_.host->PlaceOf(L"Third")->left, shown);
    first.Put(L"Visible", false);
    EXPECT_EQ(window_.host->PlaceOf(L"Third")->left, 0) << "no line before the first";
    EXPECT_EQ(third.GetLong(L"Width"), window_.host->PlaceOf(L"Third")->right);

    PumpMessages();
    const int before = window_.host->Height();
    bar_.Put(L"Visible", false);
    EXPECT_LT(window_.host->Height(), before);
    EXPECT_EQ(window_.host->PlaceOf(L"Third"), std::nullopt);
    EXPECT_EQ(NumberOf([&] { window_.host->Click(L"Third"); }), 5);
    told = 0;
    PumpMessages();
    EXPECT_EQ(told, 1);
    RECT area{};
    GetClientRect(window_.host->Window(), &area);
    EXPECT_EQ(area.bottom, window_.host->Height());
}

}  // namespace
}  // namespace beacon::standin::test
