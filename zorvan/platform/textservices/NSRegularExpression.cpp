#include <zorvan/platform/textservices/NSRegularExpression.h>

#include <zorvan/platform/textservices/Unicode.h>

#include <unicode/localpointer.h>
#include <unicode/uregex.h>
#include <unicode/utext.h>

#include <algorithm>
#include <limits>
#include <list>
#include <utility>

namespace zorvan {

namespace {

constexpr std::int32_t stackLimit = 32 << 20;
// ICU counts in units of 10,000 saved steps.
constexpr std::size_t baseTimeLimit = 2000;
constexpr std::size_t bytesPerTimeUnit = 100;

constexpr std::pair<NSRegularExpression::Options, std::uint32_t> flags[] = {
    {NSRegularExpression::Options::caseInsensitive, UREGEX_CASE_INSENSITIVE},
    {NSRegularExpression::Options::allowCommentsAndWhitespace, UREGEX_COMMENTS},
    {NSRegularExpression::Options::ignoreMetacharacters, UREGEX_LITERAL},
    {NSRegularExpression::Options::dotMatchesLineSeparators, UREGEX_DOTALL},
    {NSRegularExpression::Options::anchorsMatchLines, UREGEX_MULTILINE},
    {NSRegularExpression::Options::useUnixLineSeparators, UREGEX_UNIX_LINES},
    {NSRegularExpression::Options::useUnicodeWordBoundaries, UREGEX_UWORD},
};

std::uint32_t icuFlags(NSRegularExpression::Options options) {
    std::uint32_t result = 0;
    for (const auto& [option, flag] : flags)
        if (options.rawValue & option.rawValue)
            result |= flag;
    return result;
}

constexpr std::pair<UErrorCode, const char*> reasons[] = {
    {U_REGEX_RULE_SYNTAX, "syntax error"},
    {U_REGEX_BAD_ESCAPE_SEQUENCE, "unknown backslash escape"},
    {U_REGEX_PROPERTY_SYNTAX, "unknown character property"},
    {U_REGEX_MISMATCHED_PAREN, "unbalanced parenthesis"},
    {U_REGEX_NUMBER_TOO_BIG, "number too large"},
    {U_REGEX_BAD_INTERVAL, "malformed {min,max} interval"},
    {U_REGEX_MAX_LT_MIN, "maximum below minimum in {min,max} interval"},
    {U_REGEX_INVALID_BACK_REF, "reference to a group that does not exist"},
    {U_REGEX_INVALID_FLAG, "unknown mode flag"},
    {U_REGEX_LOOK_BEHIND_LIMIT, "look-behind of unbounded length"},
    {U_REGEX_MISSING_CLOSE_BRACKET, "missing closing bracket"},
    {U_REGEX_INVALID_RANGE, "set range out of order"},
    {U_REGEX_PATTERN_TOO_BIG, "pattern too large"},
    {U_REGEX_INVALID_CAPTURE_GROUP_NAME, "invalid group name"},
    {U_REGEX_STACK_OVERFLOW, "search needs too much memory"},
    {U_REGEX_TIME_OUT, "search takes too long"},
};

const char* reason(UErrorCode status) {
    for (const auto& [code, text] : reasons)
        if (code == status)
            return text;
    return u_errorName(status);
}

std::string describe(UErrorCode status, const UParseError& place) {
    std::string text = reason(status);
    if (place.line > 0 && place.offset >= 0)
        text +=
            " at line " + std::to_string(place.line) + ", column " + std::to_string(place.offset);
    return text;
}

void check(UErrorCode status) {
    if (U_FAILURE(status))
        throw RegularExpressionError(reason(status));
}

std::string group(URegularExpression* matcher, std::int32_t number, std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int64_t start = uregex_start64(matcher, number, &status);
    const std::int64_t end = uregex_end64(matcher, number, &status);
    if (U_FAILURE(status) || start < 0)
        return {};
    return std::string(
        text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
}

std::int32_t timeLimit(std::size_t bytes) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(baseTimeLimit + bytes / bytesPerTimeUnit, most));
}

} // namespace

struct NSRegularExpression::Compiled {
    icu::LocalURegularExpressionPointer pattern;
};

NSRegularExpression::NSRegularExpression(std::string_view pattern, Options options) {
    std::u16string units = utf16FromUTF8(pattern);
    if (units.size() > std::numeric_limits<std::int32_t>::max())
        throw RegularExpressionError(reason(U_REGEX_PATTERN_TOO_BIG));
    if (units.empty()) { // ICU compiles no empty pattern; this one matches the same
        units = u"(?:)";
        options = Options::none;
    }
    UErrorCode status = U_ZERO_ERROR;
    UParseError place{};
    auto compiled = std::make_shared<Compiled>();
    compiled->pattern.adoptInstead(uregex_open(
        units.data(), static_cast<std::int32_t>(units.size()), icuFlags(options), &place, &status));
    if (U_FAILURE(status))
        throw RegularExpressionError(describe(status, place));
    compiled_ = std::move(compiled);
}

NSRegularExpression NSRegularExpression::cached(std::string_view pattern, Options options) {
    struct Entry {
        std::string pattern;
        Options options;
        NSRegularExpression expression;
    };
    constexpr std::size_t capacity = 16;
    thread_local std::list<Entry> lately;
    for (auto entry = lately.begin(); entry != lately.end(); ++entry)
        if (entry->pattern == pattern && entry->options == options) {
            lately.splice(lately.begin(), lately, entry);
            return lately.front().expression;
        }
    NSRegularExpression expression(pattern, options);
    if (lately.size() == capacity)
        lately.pop_back();
    lately.push_front({std::string(pattern), options, expression});
    return expression;
}

std::vector<std::vector<std::string>> NSRegularExpression::captures(std::string_view text,
                                                                    std::string* givenUp) const {
    UErrorCode status = U_ZERO_ERROR;
    UText source = UTEXT_INITIALIZER;
    utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &status);
    const icu::LocalUTextPointer closesSource(&source);
    // A clone shares the compiled pattern; the stack that a long search may have filled goes with
    // it.
    const icu::LocalURegularExpressionPointer matcher(
        uregex_clone(compiled_->pattern.getAlias(), &status));
    uregex_setStackLimit(matcher.getAlias(), stackLimit, &status);
    uregex_setTimeLimit(matcher.getAlias(), timeLimit(text.size()), &status);
    uregex_setUText(matcher.getAlias(), &source, &status);
    check(status);

    const std::int32_t groups = uregex_groupCount(matcher.getAlias(), &status);
    std::vector<std::vector<std::string>> matches;
    while (uregex_findNext(matcher.getAlias(), &status)) {
        std::vector<std::string>& captured = matches.emplace_back();
        captured.reserve(static_cast<std::size_t>(groups));
        for (std::int32_t i = 1; i <= groups; ++i)
            captured.push_back(group(matcher.getAlias(), i, text));
    }
    if (givenUp && (status == U_REGEX_TIME_OUT || status == U_REGEX_STACK_OVERFLOW))
        *givenUp = reason(status);
    else
        check(status);
    return matches;
}

} // namespace zorvan
