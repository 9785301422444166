#include <zorvan/text/internal/Documents.h>

#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr std::pair<char, std::string_view> entities[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

/// A code point that HTML cannot hold stands as U+FFFD.
std::string escapedText(std::u16string_view units) {
    std::string result;
    for (const char c : utf8FromUTF16(units)) {
        const bool isControl = (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
        const auto* const entity =
            std::ranges::find(entities, c, &std::pair<char, std::string_view>::first);
        if (isControl)
            result += "\xEF\xBF\xBD";
        else if (entity != std::end(entities))
            result += entity->second;
        else
            result += c;
    }
    return result;
}

std::string escapedText(std::string_view text) { return escapedText(utf16FromUTF8(text)); }

std::string cssColor(const TextColor& color) {
    return std::string("rgba(") + std::to_string(colorByte(color.red)) + "," +
           std::to_string(colorByte(color.green)) + "," + std::to_string(colorByte(color.blue)) +
           "," + documentNumber(colorByte(color.alpha) / 255.0) + ")";
}

/// A family name within quotes, where a backslash escapes by code.
std::string cssString(std::string text) {
    std::erase_if(text, [](char c) {
        return c == '\'' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
    });
    return std::string("'") + text + "'";
}

std::string cssFont(const TextFont& font) {
    std::string style = std::string("font-family:") + cssString(font.family) +
                        ",sans-serif;font-size:" + documentNumber(font.size) + "pt;";
    if (font.isBold)
        style += "font-weight:bold;";
    if (font.isItalic)
        style += "font-style:italic;";
    return style;
}

std::string spanStyle(const AttributeDictionary& attributes) {
    std::string style;
    if (const auto* font = attribute<TextFont>(attributes, AttributeName::font))
        style += cssFont(*font);
    if (const auto* color = attribute<TextColor>(attributes, AttributeName::foregroundColor))
        style += std::string("color:") + cssColor(*color) + ";";
    if (const auto* color = attribute<TextColor>(attributes, AttributeName::backgroundColor))
        style += std::string("background-color:") + cssColor(*color) + ";";
    std::string lines;
    if (isSet(attributes, AttributeName::underlineStyle))
        lines += " underline";
    if (isSet(attributes, AttributeName::strikethroughStyle))
        lines += " line-through";
    if (!lines.empty())
        style += std::string("text-decoration:") + lines.substr(1) + ";";
    return style;
}

std::string_view scriptElement(const AttributeDictionary& attributes) {
    const std::int64_t level = superscriptLevel(attributes);
    return level > 0 ? "sup" : level < 0 ? "sub" : "";
}

std::string_view paragraphStart(const AttributeDictionary& attributes) {
    switch (alignmentOf(attributes)) {
    case TextAlignment::left:
        return "<p>";
    case TextAlignment::right:
        return "<p style=\"text-align:right\">";
    case TextAlignment::center:
        return "<p style=\"text-align:center\">";
    default:
        return "<p style=\"text-align:justify\">";
    }
}

std::string element(std::string_view name, std::string_view attributes, std::string_view content) {
    std::string result = "<";
    result.append(name);
    if (!attributes.empty())
        result.append(" ").append(attributes);
    return result.append(">").append(content).append("</").append(name).append(">");
}

std::string runContent(std::u16string_view units, const AttributeDictionary& attributes) {
    std::string content;
    for (std::size_t start = 0;;) {
        const std::size_t line = units.find(u'\u2028', start);
        content += escapedText(units.substr(start, line - start));
        if (line == std::u16string_view::npos)
            break;
        content += "<br>";
        start = line + 1;
    }
    if (const std::string_view script = scriptElement(attributes); !script.empty())
        content = element(script, {}, content);
    if (const std::string style = spanStyle(attributes); !style.empty())
        content = element("span", "style=\"" + escapedText(style) + "\"", content);
    const auto* link = attribute<std::string>(attributes, AttributeName::link);
    if (link && isHarmlessLink(*link))
        content = element("a", "href=\"" + escapedText(*link) + "\"", content);
    return content;
}

/// The paragraph of `range`, whose first run is `run`; that moves to the run its end lies in.
std::string paragraph(const NSAttributedString& text, NSRange range, std::size_t& run) {
    const auto& runs = text.runs();
    std::string result(paragraphStart(runs[run].attributes));
    if (range.length == 0)
        result += "<br>";
    for (std::size_t start = range.location; start < range.end();) {
        const std::size_t end = std::min(runs[run].range.end(), range.end());
        result += runContent(std::u16string_view(text.utf16()).substr(start, end - start),
                             runs[run].attributes);
        start = end;
        if (end == runs[run].range.end())
            ++run;
    }
    return result + "</p>\n";
}

} // namespace

std::string htmlDocument(const NSAttributedString& text) {
    std::string document = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                           "<title></title>\n<style>p{margin:0;white-space:pre-wrap}</style>\n"
                           "</head>\n<body>\n";
    const std::u16string_view units = text.utf16();
    std::size_t run = 0;
    for (std::size_t start = 0; start < units.size();) {
        const std::size_t end = std::min(units.find_first_of(paragraphEnds, start), units.size());
        document += paragraph(text, {start, end - start}, run);
        start = paragraphAfter(units, end);
        while (run < text.runs().size() && text.runs()[run].range.end() <= start)
            ++run;
    }
    return document + "</body>\n</html>\n";
}

} // namespace zorvan::internal
