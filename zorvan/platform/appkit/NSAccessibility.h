#pragma once

#include <cstdint>
#include <string>

namespace zorvan {

/// What a view is to those who do not see it.
enum class NSAccessibilityRole : std::int64_t {
    /// A part that only holds others, or nothing of interest.
    group,
    button,
    checkBox,
    radioButton,
    menuButton,
    textField,
    staticText,
    image,
    slider,
    progressIndicator,
    list,
    table,
};

} // namespace zorvan
