#include <zorvan/platform/foundation/URL.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void requireKept(const zorvan::URL& url) {
    if (zorvan::URL::make({.string = url.absoluteString()}) != url)
        std::abort();
}

} // namespace

// The bytes are a URL, and a component to append to one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    if (const auto url = zorvan::URL::make({.string = text})) {
        requireKept(*url);
        (void)url->pathComponents();
        (void)url->deletingPathExtension().lastPathComponent();
    }
    const zorvan::URL web = *zorvan::URL::make({.string = "https://example.com/a?b#c"});
    requireKept(web.appendingPathComponent(text).appendingPathExtension(text));
    return 0;
}
