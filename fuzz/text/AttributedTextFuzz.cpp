#include <zorvan/text/NSAttributedString.h>

#include <cstddef>
#include <cstdint>

// Each four bytes are an edit: what is done, where, over which length, with which value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zorvan;
    NSMutableAttributedString text;
    for (; size >= 4; data += 4, size -= 4) {
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
        if (text.attributedSubstring(rest).length() != rest.length)
            __builtin_trap();
    }
    if (!htmlDocument(text) || !rtf(text))
        __builtin_trap();
    return 0;
}
