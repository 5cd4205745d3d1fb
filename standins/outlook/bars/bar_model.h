#pragma once

#include <memory>
#include <string>
#include <vector>

#include "outlook/bars/button_face.h"

namespace beacon::standin {

enum class WindowKind { Explorer, Inspector };

/// The numbers that Office gives to kinds of controls; the stand-in has these three.
inline constexpr long kButtonControl = 1;
inline constexpr long kComboBoxControl = 4;
inline constexpr long kPopupControl = 10;

constexpr bool IsControlType(long type) {
    return type == kButtonControl || type == kComboBoxControl || type == kPopupControl;
}

/// Styles of a button.
inline constexpr long kAutomaticStyle = 0;
inline constexpr long kCaptionStyle = 2;

/// Docking positions.
inline constexpr long kTopPosition = 1;
inline constexpr long kFloatingPosition = 4;
inline constexpr long kPopupPosition = 5;
inline constexpr long kMenuBarPosition = 6;

/// One control of a bar, in one window or in the store.
struct BarControl {
    long type = kButtonControl;
    long id = 1;  // what Office gives to controls that are not its own
    std::wstring caption;
    std::wstring tooltip;
    std::wstring description;
    std::wstring shortcut;
    std::wstring tag;
    long style = kAutomaticStyle;
    long state = 0;
    long width = 0;  // pixels; 0: as wide as its content
    bool enabled = true;
    bool visible = true;
    bool beginGroup = false;
    bool builtIn = false;
    bool temporary = false;  // ends with its window
    ButtonFace face;
    std::wstring text;                // of a combo box
    std::vector<std::wstring> items;  // of a combo box
    long listIndex = 0;               // 1-based, 0: none of them
};

/// One command bar, in one window or in the store.
struct Bar {
    std::wstring name;
    long position = kFloatingPosition;
    long protection = 0;
    long rowIndex = 0;
    long left = 0;  // pixels; 0 here and below: where the layout puts it
    long top = 0;
    long width = 0;
    long height = 0;
    bool visible = false;
    bool enabled = true;
    bool builtIn = false;
    bool temporary = false;
    std::vector<std::shared_ptr<BarControl>> controls;
};

/// A copy with controls of its own; without the temporary ones when it is for the store.
Bar Copy(const Bar& bar, bool withTemporary);

/// The bars that every window has, as Office installs them; their controls carry no tags.
std::vector<Bar> BuiltInBars();

/// What a button shows.
bool ShowsFace(const BarControl& control);
bool ShowsCaption(const BarControl& control);

/// Sets a combo box's text as a user does, and its list index to the item of that text.
void EnterText(BarControl& control, const std::wstring& text);

/// Without the "&" that marks a caption's key.
std::wstring PlainCaption(const std::wstring& caption);

/// Names of bars and captions are compared as Office does: without regard to case.
bool SameName(const std::wstring& left, const std::wstring& right);

}  // namespace beacon::standin
