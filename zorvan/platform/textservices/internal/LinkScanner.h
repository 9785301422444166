#pragma once

#include <zorvan/platform/textservices/NSDataDetector.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace zorvan::internal {

/// Reads a text from left to right and stops at each link.
///
/// A link may begin wherever no letter, digit or other part of a word stands before. Every attempt
/// that fails says how far its kind need not be tried again, which keeps the whole scan linear.
class LinkScanner {
public:
    explicit LinkScanner(std::string_view text) noexcept : text_(text) {}

    std::optional<NSTextCheckingResult> next();

private:
    struct Host {
        std::size_t end;    // where the host stops, valid or not
        bool isValid;       // labels of the right form and length
        std::size_t labels; // how many
        std::size_t lastLabel;
    };

    std::optional<NSTextCheckingResult> matchAt(std::size_t start);
    std::optional<std::size_t> schemedEnd(std::size_t start);
    std::optional<std::size_t> otherEnd(std::size_t start, std::size_t authority);
    std::optional<std::size_t> authorityEnd(std::size_t start) const;
    std::optional<std::size_t> mailEnd(std::size_t start);
    std::optional<std::size_t> webEnd(std::size_t start);

    Host readHost(std::size_t start) const;
    bool hasAlphabeticEnd(const Host& host) const;
    bool hasKnownEnd(std::size_t start, const Host& host) const;
    std::size_t addressEnd(std::size_t start) const;
    std::size_t portAndPathEnd(std::size_t start, std::size_t hostEnd) const;
    std::size_t withoutTrailingPunctuation(std::size_t start, std::size_t end) const;
    NSTextCheckingResult result(std::size_t start, std::size_t end, std::string_view scheme) const;

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t noMailBefore_ = 0;
    std::size_t noWebBefore_ = 0;
    std::size_t noOtherBefore_ = 0;
};

} // namespace zorvan::internal
