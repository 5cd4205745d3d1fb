#include "outlook/bars/bar_model.h"

#include <algorithm>
#include <cwchar>
#include <initializer_list>

namespace beacon::standin {
namespace {

struct BuiltInControl {
    const wchar_t* caption;
    long id;
    bool beginGroup = false;
    long type = kButtonControl;
};

Bar BuiltInBar(const wchar_t* name, long position, long row, std::initializer_list<BuiltInControl> controls) {
    Bar bar;
    bar.name = name;
    bar.position = position;
    bar.rowIndex = row;
    bar.visible = true;
    bar.builtIn = true;
    for (const BuiltInControl& entry : controls) {
        const auto control = std::make_shared<BarControl>();
        control->type = entry.type;
        control->id = entry.id;
        control->caption = entry.caption;
        control->tooltip = PlainCaption(entry.caption);
        control->style = entry.type == kButtonControl ? kCaptionStyle : 0;
        control->beginGroup = entry.beginGroup;
        control->builtIn = true;
        bar.controls.push_back(control);
    }
    return bar;
}

}  // namespace

Bar Copy(const Bar& bar, bool withTemporary) {
    Bar copy = bar;
    copy.controls.clear();
    for (const auto& control : bar.controls)
        if (withTemporary || !control->temporary) copy.controls.push_back(std::make_shared<BarControl>(*control));
    return copy;
}

std::vector<Bar> BuiltInBars() {
    constexpr long popup = kPopupControl;
    return {BuiltInBar(L"Menu Bar", kMenuBarPosition, 1,
                       {{L"&File", 30002, false, popup},
                        {L"&Edit", 30003, false, popup},
                        {L"&View", 30004, false, popup},
                        {L"&Tools", 30007, false, popup},
                        {L"&Actions", 30131, false, popup},
                        {L"&Help", 30010, false, popup}}),
            BuiltInBar(L"Standard", kTopPosition, 2,
                       {{L"&New", 1757},
                        {L"&Print...", 4, true},
                        {L"&Delete", 478},
                        {L"&Reply", 354, true},
                        {L"Reply to A&ll", 355},
                        {L"For&ward", 356}})};
}

bool ShowsFace(const BarControl& control) {
    return control.type == kButtonControl && !control.face.Empty() && control.style != kCaptionStyle;
}

bool ShowsCaption(const BarControl& control) {
    if (control.style == kAutomaticStyle) return control.face.Empty();
    return (control.style & kCaptionStyle) != 0;
}

void EnterText(BarControl& control, const std::wstring& text) {
    control.text = text;
    const auto found = std::find(control.items.begin(), control.items.end(), text);
    control.listIndex = found == control.items.end() ? 0 : static_cast<long>(found - control.items.begin()) + 1;
}

std::wstring PlainCaption(const std::wstring& caption) {
    std::wstring plain;
    for (size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == L'&' && i + 1 < caption.size()) ++i;  // "&&" stands for one "&"
        plain += caption[i];
    }
    return plain;
}

bool SameName(const std::wstring& left, const std::wstring& right) {
    return _wcsicmp(left.c_str(), right.c_str()) == 0;
}

}  // namespace beacon::standin
