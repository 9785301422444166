#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::propertylist {

namespace {

// A bare carriage return would be read as a line feed.
constexpr std::pair<char32_t, const char*> entities[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'\r', "&#13;"}};

class XMLWriter {
public:
    std::string write(const PropertyList& root) {
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
        value(root, 0);
        text_ += "</plist>\n";
        return std::move(text_);
    }

private:
    void value(const PropertyList& list, std::size_t depth) {
        if (const auto* array = list.as<PropertyList::Array>())
            container("array", array->empty(), depth, [&] {
                for (const PropertyList& item : *array)
                    value(item, depth + 1);
            });
        else if (const auto* dictionary = list.as<PropertyList::Dictionary>())
            container("dict", dictionary->empty(), depth, [&] {
                for (const auto& [key, item] : *dictionary) {
                    leaf("key", escaped(key), depth + 1);
                    value(item, depth + 1);
                }
            });
        else if (const auto* string = list.as<std::string>())
            leaf("string", escaped(*string), depth);
        else if (const auto* data = list.as<Data>())
            leaf("data", encodeBase64(*data), depth);
        else if (const auto* date = list.as<Date>())
            leaf("date", encodeDate(*date), depth);
        else
            number(*list.as<NSNumber>(), depth);
    }

    void number(const NSNumber& number, std::size_t depth) {
        if (number.isBool()) {
            indent(depth);
            text_ += number.boolValue() ? "<true/>\n" : "<false/>\n";
        } else if (number.isUnsigned()) {
            leaf("integer", std::to_string(number.uint64Value()), depth);
        } else if (number.isInteger()) {
            leaf("integer", std::to_string(number.int64Value()), depth);
        } else {
            leaf("real", encodeReal(number.doubleValue()), depth);
        }
    }

    template <class Content>
    void container(std::string_view name, bool empty, std::size_t depth, Content content) {
        if (depth + 1 > maximumDepth)
            throw Refusal("the list is too deep");
        indent(depth);
        tag("<", name, empty ? "/>\n" : ">\n");
        if (empty)
            return;
        content();
        indent(depth);
        tag("</", name, ">\n");
    }

    void leaf(std::string_view name, std::string_view content, std::size_t depth) {
        indent(depth);
        tag("<", name, ">");
        text_ += content;
        tag("</", name, ">\n");
    }

    void tag(std::string_view before, std::string_view name, std::string_view after) {
        text_ += before;
        text_ += name;
        text_ += after;
    }

    /// What lies deeper than anybody would read is not indented further: it would be most of the
    /// text.
    void indent(std::size_t depth) { text_.append(std::min<std::size_t>(depth, 32), '\t'); }

    static std::string escaped(std::string_view text) {
        std::string result;
        result.reserve(text.size());
        for (UTF8Reader reader(text); !reader.atEnd();) {
            const std::optional<char32_t> scalar = reader.next();
            if (!scalar)
                throw Refusal("a text is not UTF-8");
            const auto* const entity =
                std::ranges::find(entities, *scalar, &std::pair<char32_t, const char*>::first);
            if (entity != std::end(entities))
                result += entity->second;
            else if ((*scalar < 0x20 && *scalar != '\t' && *scalar != '\n') || *scalar == 0xFFFE ||
                     *scalar == 0xFFFF)
                throw Refusal("a text has a character that XML cannot hold");
            else
                appendUTF8(result, *scalar);
        }
        return result;
    }

    std::string text_;
};

} // namespace

Data writeXML(const PropertyList& list) {
    const std::string text = XMLWriter().write(list);
    const std::span<const std::byte> bytes = std::as_bytes(std::span(text));
    return Data(bytes.begin(), bytes.end());
}

} // namespace zorvan::propertylist
