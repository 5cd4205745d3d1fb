#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "outlook/bars/bar_model.h"

namespace beacon::standin {

/// Thrown by the readers below: what is wrong with the line.
struct BadLine {
    std::wstring reason;
};

/// One line of text for a bar without its controls, and one for each control.
std::wstring LineOf(WindowKind kind, const Bar& bar);
std::wstring LineOf(const BarControl& control);

/// The line's first word.
std::wstring_view WordOf(std::wstring_view line);
/// Fields with unknown names are skipped, missing ones keep their defaults.
Bar BarFromLine(std::wstring_view line, WindowKind& kind);
BarControl ControlFromLine(std::wstring_view line);

}  // namespace beacon::standin
