#include <zorvan/platform/textservices/NSDataDetector.h>

#include <zorvan/platform/textservices/internal/LinkScanner.h>

namespace zorvan {

std::optional<NSDataDetector> NSDataDetector::make(NSTextCheckingType types) {
    if (!types.contains(NSTextCheckingType::link))
        return std::nullopt;
    return NSDataDetector();
}

std::optional<NSTextCheckingResult> NSDataDetector::firstMatch(std::string_view text) const {
    return internal::LinkScanner(text).next();
}

std::vector<NSTextCheckingResult> NSDataDetector::matches(std::string_view text) const {
    std::vector<NSTextCheckingResult> found;
    internal::LinkScanner scanner(text);
    while (auto match = scanner.next())
        found.push_back(std::move(*match));
    return found;
}

} // namespace zorvan
