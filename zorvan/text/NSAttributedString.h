#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// Whether the text has length 0.
[[nodiscard]] inline bool isEmpty(const NSAttributedString& text) noexcept {
    return text.length() == 0;
}

/// The whole text as an HTML document in UTF-8. Each line is a paragraph; fonts, colours,
/// underline, strike-through, links, super- and subscripts and the alignment are kept, other
/// attributes are not. Spaces and tabs are shown as they are. A link is kept when its scheme is
/// http, https, ftp or mailto, or when it has none. Absent when the export fails; this one never
/// does.
[[nodiscard]] std::optional<std::string> htmlDocument(const NSAttributedString& text);

/// The whole text in Rich Text Format, pure ASCII; the same attributes are kept. Absent when the
/// export fails; this one never does.
[[nodiscard]] std::optional<Data> rtf(const NSAttributedString& text);

/// Appends `added` carrying `attributes`.
void append(NSMutableAttributedString& text, std::string_view added,
            const AttributeDictionary& attributes);

/// Replaces the whole text; the new one takes the attributes of the first unit of the old one.
void replaceAllCharacters(NSMutableAttributedString& text, std::string_view with);

/// Colours the whole text.
void addForegroundColor(NSMutableAttributedString& text, const TextColor& color);

/// `text` with `attributes` over its whole length.
/// @{
[[nodiscard]] NSAttributedString format(const AttributeDictionary& attributes,
                                        std::string_view text);
[[nodiscard]] NSMutableAttributedString mutableFormat(const AttributeDictionary& attributes,
                                                      std::string_view text);
/// @}

/// A copy of `text` with `attributes` added over its whole length.
[[nodiscard]] NSMutableAttributedString update(const AttributeDictionary& attributes,
                                               const NSAttributedString& text);

} // namespace zorvan
