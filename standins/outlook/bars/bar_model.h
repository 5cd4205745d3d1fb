#pragma once

#include <memory>
#include <string>
#include <vector>

#include "outlook/bars/button_face.h"

namespace beacon::standin {

enum class WindowKind { Explorer, Inspector };

// Office's control types; the stand-in supports these three.
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
    long id = 1;  // 1: a custom control
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
    bool temporary = false;  // deleted with its window
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
    long left = 0;  // pixels; 0 here and below: decided by the layout
    long top = 0;
    long width = 0;
    long height = 0;
    bool visible = false;
    bool enabled = true;
    bool builtIn = false;
    bool temporary = false;
    std::vector<std::shared_ptr<BarControl>> controls;
};

/// A deep copy, with or without temporary controls.
Bar Copy(const Bar& bar, bool withTemporary);

/// Office's own bars; their controls have no tags.
std::vector<Bar> BuiltInBars();

// What a button shows.
bool ShowsFace(const BarControl& control);
bool ShowsCaption(const BarControl& control);

/// Sets the text of a combo box and the list index of the item with this text.
void EnterText(BarControl& control, const std::wstring& text);

/// The caption without the "&" of its access key.
std::wstring PlainCaption(const std::wstring& caption);

/// Compares names of bars and captions case-insensitively, as Office does.
bool SameName(const std::wstring& left, const std::wstring& right);

}  // namespace beacon::standin
