#pragma once

#include <cstdint>
#include <string>

namespace zorvan {

/// What a view is to those who do not see it. A `group` only holds others, or is nothing of
/// interest.
enum class NSAccessibilityRole : std::int64_t {
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
