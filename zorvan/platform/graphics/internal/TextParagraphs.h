#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

#include <memory>
#include <pango/pangocairo.h>
#include <string>
#include <vector>

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

using TextLayout = std::unique_ptr<PangoLayout, Release<g_object_unref>>;
using TextFontDescription =
    std::unique_ptr<PangoFontDescription, Release<pango_font_description_free>>;

/// A paragraph, its attributes as Pango knows them.
class TextParagraph {
public:
    TextParagraph(const NSAttributedString& text, NSRange range);

    std::size_t byteCount() const noexcept { return text_.size(); }

    struct Part {
        std::size_t from = 0;
        /// The most bytes.
        std::size_t count = std::string::npos;
        bool hasEllipsis = false;
    };
    /// Part of the text, broken at `width` (in points; infinity for no breaks), "…" after it when
    /// asked for. `alpha` multiplies the alpha of all colours.
    TextLayout layout(PangoContext* context, double width, double alpha, const Part& part) const;

    /// More bytes than letters of the smallest font in it fill the box with.
    std::size_t byteCountToFill(CGSize box) const noexcept;

    /// Of the largest font in it.
    double fontSize() const noexcept { return fontSize_; }

private:
    struct Span {
        std::size_t begin;
        std::size_t end;
        AttributeDictionary attributes;
    };

    std::string text_;
    std::vector<Span> spans_;
    TextAlignment alignment_ = TextAlignment::left;
    double fontSize_ = 0;
    double smallestFontSize_ = 0;
};

std::vector<TextParagraph> paragraphsOf(const NSAttributedString& text);

/// A context whose layouts do not depend on the size they are drawn at.
std::unique_ptr<PangoContext, Release<g_object_unref>> makeTextContext();

} // namespace zorvan
