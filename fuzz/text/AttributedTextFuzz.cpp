// Each four bytes are an edit: what is done, where, over which length, with which value.

#include <fuzz/Fuzzing.h>
#include <zorvan/text/NSAttributedString.h>

using namespace zorvan;

void tryOut(std::span<const std::uint8_t> data) {
    NSMutableAttributedString text;
    for (; data.size() >= 4; data = data.subspan(4)) {
        const std::size_t location = data[1] % (text.length() + 1);
        const NSRange range{location, data[2] % (text.length() - location + 1)};
        const std::string value(1 + data[3] % 3, static_cast<char>(data[3]));
        if (data[0] % 3 == 0)
            text.replaceCharacters(range, value);
        else if (data[0] % 3 == 1)
            text.addAttribute(AttributeName::link, value, range);
        else
            text.addAttribute(AttributeName::font, TextFont{value, 1.0 * data[3], true, false},
                              range);
        // The edit may have made the text shorter.
        const NSRange rest{text.length() / 2, text.length() - text.length() / 2};
        require(text.attributedSubstring(rest).length() == rest.length);
    }
    require(htmlDocument(text) && rtf(text));
}
