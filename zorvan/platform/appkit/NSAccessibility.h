#pragma once

#include <cstdint>
#include <string>

namespace zorvan {

/// What a view is to those who do not see it.
enum class NSAccessibilityRole : std::int64_t {
    /// A part that only holds others, or nothing of interest.
    group,
    /// What does something when it is pressed.
    button,
    /// What is on or off.
    checkBox,
    /// One of several of which one is on.
    radioButton,
    /// What opens a menu when it is pressed.
    menuButton,
    /// Text that can be edited.
    textField,
    /// Text to read.
    staticText,
    /// A picture.
    image,
    /// A value that can be moved between two ends.
    slider,
    /// How far something has come.
    progressIndicator,
    /// Items in lines.
    list,
    /// Rows and columns.
    table,
};

} // namespace zorvan
