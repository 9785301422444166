#include <zorvan/platform/graphics/internal/TextParagraphs.h>

#include <zorvan/platform/foundation/internal/UTF8.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace zorvan {

namespace {

constexpr std::string_view ellipsis = "\u2026";
/// More than this fills no line.
constexpr std::size_t maximumByteCount = 65536;

using AttributeList = std::unique_ptr<PangoAttrList, Release<pango_attr_list_unref>>;

guint16 component(double value) noexcept {
    return static_cast<guint16>(value > 0 ? std::min(value, 1.0) * 65535 + 0.5 : 0);
}

double fontSizeOf(const TextFont& font) noexcept {
    return font.size > 0 ? std::clamp(font.size, 0.1, 2000.0) : 12;
}

/// Collects the attributes of one stretch.
class AttributeWriter {
public:
    AttributeWriter(PangoAttrList* list, std::size_t begin, std::size_t end, double alpha)
        : list_(list), begin_(static_cast<guint>(begin)), end_(static_cast<guint>(end)),
          alpha_(alpha) {}

    void write(const AttributeDictionary& attributes) {
        const TextFont* font = attribute<TextFont>(attributes, AttributeName::font);
        const auto* level = attribute<std::int64_t>(attributes, AttributeName::superscript);
        writeFont(font ? *font : TextFont(), level ? std::clamp<std::int64_t>(*level, -3, 3) : 0);
        const auto* link = attribute<std::string>(attributes, AttributeName::link);
        const auto* color = attribute<TextColor>(attributes, AttributeName::foregroundColor);
        writeForeground(color ? *color : link ? TextColor(0, 0, 0.8) : TextColor());
        if (const auto* back = attribute<TextColor>(attributes, AttributeName::backgroundColor)) {
            add(pango_attr_background_new(component(back->red), component(back->green),
                                          component(back->blue)));
            add(pango_attr_background_alpha_new(opacity(*back)));
        }
        if (link || isSet(attributes, AttributeName::underlineStyle))
            add(pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        if (isSet(attributes, AttributeName::strikethroughStyle))
            add(pango_attr_strikethrough_new(TRUE));
    }

    void writeFont(const TextFont& font, std::int64_t level) {
        const TextFontDescription description(pango_font_description_new());
        const double size = fontSizeOf(font);
        pango_font_description_set_family(description.get(), font.family.c_str());
        pango_font_description_set_absolute_size(description.get(),
                                                 size * (level ? 0.7 : 1) * PANGO_SCALE);
        pango_font_description_set_weight(description.get(),
                                          font.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_style(description.get(),
                                         font.isItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
        add(pango_attr_font_desc_new(description.get()));
        if (level)
            add(pango_attr_rise_new(
                static_cast<int>(size * 0.33 * static_cast<double>(level) * PANGO_SCALE)));
    }

private:
    static bool isSet(const AttributeDictionary& attributes, std::string_view name) noexcept {
        if (const auto* style = attribute<std::int64_t>(attributes, name))
            return *style != 0;
        const bool* set = attribute<bool>(attributes, name);
        return set && *set;
    }

    /// Pango takes 0 for opaque.
    guint16 opacity(const TextColor& color) const noexcept {
        return std::max<guint16>(1, component(color.alpha * alpha_));
    }

    void writeForeground(const TextColor& color) {
        add(pango_attr_foreground_new(component(color.red), component(color.green),
                                      component(color.blue)));
        add(pango_attr_foreground_alpha_new(opacity(color)));
    }

    void add(PangoAttribute* made) {
        made->start_index = begin_;
        made->end_index = end_;
        pango_attr_list_insert(list_, made);
    }

    PangoAttrList* list_;
    guint begin_;
    guint end_;
    double alpha_;
};

} // namespace

TextParagraph::TextParagraph(const NSAttributedString& text, NSRange range) {
    const NSAttributedString part = text.attributedSubstring(range);
    bool isFirst = true;
    for (const NSAttributedString::Run& run : part.runs()) {
        std::string piece = part.attributedSubstring(run.range).string();
        // Pango's texts end at a zero byte.
        std::replace(piece.begin(), piece.end(), '\0', ' ');
        piece.resize(internal::utf8PrefixLength(piece, maximumByteCount - text_.size()));
        spans_.push_back({text_.size(), text_.size() + piece.size(), run.attributes});
        text_ += piece;
        const auto* font = attribute<TextFont>(run.attributes, AttributeName::font);
        const double size = fontSizeOf(font ? *font : TextFont());
        fontSize_ = std::max(fontSize_, size);
        smallestFontSize_ = isFirst ? size : std::min(smallestFontSize_, size);
        const auto* alignment = attribute<TextAlignment>(run.attributes, AttributeName::alignment);
        if (isFirst && alignment)
            alignment_ = *alignment;
        isFirst = false;
    }
    if (spans_.empty())
        fontSize_ = smallestFontSize_ = fontSizeOf(TextFont());
}

std::size_t TextParagraph::byteCountToFill(CGSize box) const noexcept {
    // Narrow letters are a fifth as wide as their font is high, and take up to four bytes.
    const double columns = box.width / (smallestFontSize_ * 0.2) + 16;
    const double rows = std::max(box.height, 0.0) / smallestFontSize_ + 2;
    const double bytes = columns * rows * 4;
    return bytes < static_cast<double>(maximumByteCount) ? static_cast<std::size_t>(bytes)
                                                         : maximumByteCount;
}

TextLayout TextParagraph::layout(PangoContext* context, double width, double alpha,
                                 const Part& part) const {
    const std::size_t from = part.from;
    TextLayout layout(pango_layout_new(context));
    std::string shown = text_.substr(from);
    shown.resize(internal::utf8PrefixLength(shown, part.count));
    const AttributeList list(pango_attr_list_new());
    if (spans_.empty())
        AttributeWriter(list.get(), 0, G_MAXUINT, alpha).writeFont(TextFont(), 0);
    for (const Span& span : spans_)
        if (span.end > from) {
            const bool isLast = &span == &spans_.back();
            AttributeWriter(list.get(), span.begin > from ? span.begin - from : 0,
                            isLast ? G_MAXUINT : span.end - from, alpha)
                .write(span.attributes);
        }
    if (part.hasEllipsis)
        shown += ellipsis;
    pango_layout_set_text(layout.get(), shown.data(), static_cast<int>(shown.size()));
    pango_layout_set_attributes(layout.get(), list.get());
    pango_layout_set_auto_dir(layout.get(), FALSE);
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    constexpr double widest = 1e6;
    if (width < widest)
        pango_layout_set_width(layout.get(),
                               static_cast<int>(std::ceil(std::max(width, 0.0) * PANGO_SCALE)));
    pango_layout_set_alignment(layout.get(), alignment_ == TextAlignment::right ? PANGO_ALIGN_RIGHT
                                             : alignment_ == TextAlignment::center
                                                 ? PANGO_ALIGN_CENTER
                                                 : PANGO_ALIGN_LEFT);
    pango_layout_set_justify(layout.get(), alignment_ == TextAlignment::justified);
    return layout;
}

std::vector<TextParagraph> paragraphsOf(const NSAttributedString& text) {
    const std::u16string_view units = text.utf16();
    std::vector<TextParagraph> paragraphs;
    for (std::size_t begin = 0; begin < units.size();) {
        const std::size_t end = std::min(units.find_first_of(u"\n\r\u2029", begin), units.size());
        paragraphs.emplace_back(text, NSRange{begin, end - begin});
        begin = end + (units.substr(end).starts_with(u"\r\n") ? 2 : 1);
    }
    return paragraphs;
}

std::unique_ptr<PangoContext, Release<g_object_unref>> makeTextContext() {
    std::unique_ptr<PangoContext, Release<g_object_unref>> context(
        pango_font_map_create_context(pango_cairo_font_map_get_default()));
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    return context;
}

} // namespace zorvan
