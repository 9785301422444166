#include <zorvan/text/String.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/text/internal/CommonSubsequence.h>

#include <algorithm>
#include <cstdio>

namespace zorvan {

namespace {

bool isDomainPart(char c) noexcept { return internal::isAlphanumeric(c) || c == '.' || c == '-'; }

bool isLocalPart(char c) noexcept { return isDomainPart(c) || c == '_' || c == '%' || c == '+'; }

void report(const std::string& line) {
    std::fwrite((line + '\n').c_str(), 1, line.size() + 1, stdout);
}

} // namespace

std::vector<std::vector<std::string>> captureMatches(std::string_view s, std::string_view pattern,
                                                     NSRegularExpression::Options options) {
    try {
        std::string givenUp;
        auto matches = NSRegularExpression::cached(pattern, options).captures(s, &givenUp);
        if (!givenUp.empty())
            report("regex given up: " + givenUp);
        return matches;
    } catch (const RegularExpressionError& error) {
        report(std::string("invalid regex: ") + error.what());
        return {};
    }
}

std::vector<std::vector<std::string>> caseInsensitiveCaptureMatches(std::string_view s,
                                                                    std::string_view pattern) {
    return captureMatches(s, pattern, NSRegularExpression::Options::caseInsensitive);
}

bool isValidEmail(std::string_view s) noexcept {
    // The pattern by hand: "@" occurs once, and the last label is what follows the last dot.
    const std::size_t at = s.find('@');
    const std::size_t dot = s.rfind('.');
    if (at == std::string_view::npos || dot == std::string_view::npos || dot < at + 2)
        return false;
    const std::string_view local = s.substr(0, at);
    const std::string_view domain = s.substr(at + 1, dot - at - 1);
    const std::string_view label = s.substr(dot + 1);
    return !local.empty() && std::all_of(local.begin(), local.end(), isLocalPart) &&
           std::all_of(domain.begin(), domain.end(), isDomainPart) && label.size() >= 2 &&
           label.size() <= 64 && std::all_of(label.begin(), label.end(), internal::isLetter);
}

bool isValidLink(std::string_view s) { return isValid(s, NSTextCheckingType::link); }

bool isValid(std::string_view s, NSTextCheckingType checkType) {
    const auto detector = NSDataDetector::make(checkType);
    if (!detector)
        return false;
    const auto match = detector->firstMatch(s);
    return match && match->offset == 0 && match->length == s.size();
}

std::optional<std::string> commonSubsequence(const std::vector<std::string>& strings) {
    if (strings.empty())
        return std::nullopt;
    std::string common = strings.front();
    for (std::size_t i = 1; i < strings.size(); ++i)
        common = internal::commonSubsequence(common, strings[i]);
    return common;
}

} // namespace zorvan
