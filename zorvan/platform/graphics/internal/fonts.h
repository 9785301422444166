#pragma once

#include <pango/pangocairo.h>

namespace zorvan {

/// Pango stops the program when it is to draw without a font.
inline bool hasFonts() {
    static const bool hasOne = [] {
        PangoFontFamily** families = nullptr;
        int count = 0;
        pango_font_map_list_families(pango_cairo_font_map_get_default(), &families, &count);
        g_free(families);
        return count > 0;
    }();
    return hasOne;
}

} // namespace zorvan
