#include <zorvan/text/internal/Documents.h>

#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace zorvan::internal {

namespace {

const TextFont defaultFont;

/// Values in the order in which they were first asked for.
template <class T>
class Table {
public:
    /// The place of `value`, which is added when it is new.
    std::size_t indexOf(const T& value) {
        const auto [found, isNew] = indexes_.try_emplace(value, values_.size());
        if (isNew)
            values_.push_back(value);
        return found->second;
    }

    const std::vector<T>& values() const noexcept { return values_; }

private:
    std::vector<T> values_;
    std::map<T, std::size_t> indexes_;
};

using ByteColor = std::array<int, 3>;

/// RTF has opaque colours only.
ByteColor byteColor(const TextColor& color) noexcept {
    return {colorByte(color.red), colorByte(color.green), colorByte(color.blue)};
}

void appendUnit(std::string& out, char16_t unit) {
    if (unit == u'\t') {
        out += "\\tab ";
        return;
    }
    if (unit == u'\u2028') {
        out += "\\line ";
        return;
    }
    if (unit >= 0x20 && unit < 0x7F) {
        out += std::u16string_view(u"\\{}").find(unit) == std::u16string_view::npos ? "" : "\\";
        out += static_cast<char>(unit);
        return;
    }
    if (unit < 0x20 || unit == 0x7F)
        unit = u'\uFFFD';
    // A unit is written as a signed 16-bit number, and "?" is for readers that do not know it.
    out += std::string("\\u") + std::to_string(static_cast<std::int16_t>(unit)) + "?";
}

std::string escapedUnits(std::u16string_view units) {
    std::string out;
    for (const char16_t unit : units)
        appendUnit(out, unit);
    return out;
}

/// Well-formed UTF-16: a lone surrogate could not be read back.
std::u16string wellFormed(std::u16string_view units) { return utf16FromUTF8(utf8FromUTF16(units)); }

class RTFWriter {
public:
    std::string document(const NSAttributedString& text) {
        families_.indexOf(defaultFont.family);
        std::string body;
        bool startsParagraph = true;
        bool isAfterReturn = false;
        for (const auto& [range, attributes] : text.runs()) {
            const std::u16string units =
                wellFormed(std::u16string_view(text.utf16()).substr(range.location, range.length));
            const bool hasEnded = isAfterReturn && units.front() == u'\n'; // with the run before
            body += run(std::u16string_view(units).substr(hasEnded ? 1 : 0), attributes,
                        startsParagraph);
            isAfterReturn = units.back() == u'\r';
        }
        return std::string("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n") + fontTable() +
               colorTable() + "\\pard\n" + body + "}\n";
    }

private:
    std::string run(std::u16string_view units, const AttributeDictionary& attributes,
                    bool& startsParagraph) {
        std::string out;
        for (std::size_t start = 0; start < units.size();) {
            if (startsParagraph)
                out += paragraphFormat(attributes);
            const std::size_t end =
                std::min(units.find_first_of(paragraphEnds, start), units.size());
            if (end > start)
                out += std::string("{") + characterFormat(attributes) +
                       linked(escapedUnits(units.substr(start, end - start)), attributes) + "}";
            startsParagraph = end < units.size();
            if (startsParagraph)
                out += "\\par\n";
            start = paragraphAfter(units, end);
        }
        return out;
    }

    static std::string paragraphFormat(const AttributeDictionary& attributes) {
        switch (alignmentOf(attributes)) {
        case TextAlignment::right:
            return "\\pard\\qr ";
        case TextAlignment::center:
            return "\\pard\\qc ";
        case TextAlignment::justified:
            return "\\pard\\qj ";
        default:
            return "\\pard\\ql ";
        }
    }

    std::string characterFormat(const AttributeDictionary& attributes) {
        const auto* given = attribute<TextFont>(attributes, AttributeName::font);
        const TextFont& font = given ? *given : defaultFont;
        std::string out = std::string("\\f") + std::to_string(families_.indexOf(font.family)) +
                          "\\fs" + std::to_string(halfPoints(font.size));
        if (font.isBold)
            out += "\\b";
        if (font.isItalic)
            out += "\\i";
        if (const auto* color = attribute<TextColor>(attributes, AttributeName::foregroundColor))
            out += std::string("\\cf") + colorNumber(*color);
        if (const auto* color = attribute<TextColor>(attributes, AttributeName::backgroundColor)) {
            const std::string number = colorNumber(*color);
            out += std::string("\\cb") + number + "\\chshdng0\\chcbpat" + number;
        }
        return out + lineFormat(attributes) + " ";
    }

    static std::string lineFormat(const AttributeDictionary& attributes) {
        std::string out;
        if (isSet(attributes, AttributeName::underlineStyle))
            out += "\\ul";
        if (isSet(attributes, AttributeName::strikethroughStyle))
            out += "\\strike";
        const std::int64_t level = superscriptLevel(attributes);
        return out + (level > 0 ? "\\super" : level < 0 ? "\\sub" : "");
    }

    static std::string linked(const std::string& content, const AttributeDictionary& attributes) {
        const auto* link = attribute<std::string>(attributes, AttributeName::link);
        if (!link || !isHarmlessLink(*link) || link->find('"') != std::string::npos)
            return content;
        return std::string("{\\field{\\*\\fldinst{HYPERLINK \"") +
               escapedUnits(utf16FromUTF8(*link)) + "\"}}{\\fldrslt{" + content + "}}}";
    }

    static long halfPoints(double size) noexcept {
        constexpr double largest = 1638; // what word processors take
        return size >= 0.5 ? std::lround(std::min(size, largest) * 2) : 1;
    }

    std::string colorNumber(const TextColor& color) {
        return std::to_string(colors_.indexOf(byteColor(color)) +
                              1); // 0 is the reader's own colour
    }

    std::string fontTable() const {
        std::string out = "{\\fonttbl";
        for (std::size_t i = 0; i < families_.values().size(); ++i)
            out += std::string("{\\f") + std::to_string(i) + "\\fnil " +
                   fontName(families_.values()[i]) + ";}";
        return out + "}\n";
    }

    /// A semicolon ends a name in the table.
    static std::string fontName(std::string name) {
        std::replace(name.begin(), name.end(), ';', ' ');
        return escapedUnits(utf16FromUTF8(name));
    }

    std::string colorTable() const {
        std::string out = "{\\colortbl;";
        for (const auto& [red, green, blue] : colors_.values())
            out += std::string("\\red") + std::to_string(red) + "\\green" + std::to_string(green) +
                   "\\blue" + std::to_string(blue) + ";";
        return out + "}\n";
    }

    Table<std::string> families_;
    Table<ByteColor> colors_;
};

} // namespace

std::string rtfDocument(const NSAttributedString& text) { return RTFWriter().document(text); }

} // namespace zorvan::internal
