#include <zorvan/text/NSAttributedString.h>

#include <zorvan/text/internal/Documents.h>

#include <cstddef>

namespace zorvan {

namespace {

NSRange whole(const NSAttributedString& text) noexcept { return {0, text.length()}; }

} // namespace

std::optional<std::string> htmlDocument(const NSAttributedString& text) {
    return internal::htmlDocument(text);
}

std::optional<Data> rtf(const NSAttributedString& text) {
    const std::string document = internal::rtfDocument(text);
    const auto* bytes = reinterpret_cast<const std::byte*>(document.data());
    return Data(bytes, bytes + document.size());
}

void append(NSMutableAttributedString& text, std::string_view added,
            const AttributeDictionary& attributes) {
    text.append(NSAttributedString(added, attributes));
}

void replaceAllCharacters(NSMutableAttributedString& text, std::string_view with) {
    text.replaceCharacters(whole(text), with);
}

void addForegroundColor(NSMutableAttributedString& text, const TextColor& color) {
    text.addAttribute(AttributeName::foregroundColor, color, whole(text));
}

NSAttributedString format(const AttributeDictionary& attributes, std::string_view text) {
    return NSAttributedString(text, attributes);
}

NSMutableAttributedString mutableFormat(const AttributeDictionary& attributes,
                                        std::string_view text) {
    return NSMutableAttributedString(text, attributes);
}

NSMutableAttributedString update(const AttributeDictionary& attributes,
                                 const NSAttributedString& text) {
    NSMutableAttributedString result(text);
    result.addAttributes(attributes, whole(result));
    return result;
}

} // namespace zorvan
