// The bytes are a URL, and a component to append to one.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/foundation/URL.h>

using zorvan::URL;

namespace {

void requireKept(const URL& url) { require(URL::make({.string = url.absoluteString()}) == url); }

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const std::string text(textOf(input));
    if (const auto url = URL::make({.string = text})) {
        requireKept(*url);
        (void)url->pathComponents();
        (void)url->deletingPathExtension().lastPathComponent();
    }
    const URL web = *URL::make({.string = "https://example.com/a?b#c"});
    requireKept(web.appendingPathComponent(text).appendingPathExtension(text));
}
