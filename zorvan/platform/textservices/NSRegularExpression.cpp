#include <zorvan/platform/textservices/NSRegularExpression.h>

#include <zorvan/platform/foundation/internal/timeOf.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/platform/textservices/internal/CodePoints.h>

#include <unicode/localpointer.h>
#include <unicode/uregex.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <list>
#include <utility>

namespace zorvan {

namespace {

constexpr std::int32_t stackLimit = 32 << 20; // in bytes, of which ICU takes two for each
// ICU counts in units of 10,000 saved steps.
constexpr std::size_t baseStepLimit = 2000;
constexpr std::size_t bytesPerStepUnit = 100;

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
    {U_REGEX_STOPPED_BY_CALLER, "search takes too long"},
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

bool isGivenUp(UErrorCode status) {
    return status == U_REGEX_TIME_OUT || status == U_REGEX_STOPPED_BY_CALLER ||
           status == U_REGEX_STACK_OVERFLOW;
}

std::int32_t stepLimit(std::size_t bytes) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(baseStepLimit + bytes / bytesPerStepUnit, most));
}

/// The text of a search in UTF-16, in which ICU is quickest, and compares what a group has captured
/// in a fraction of the time. Knows the way back to the bytes.
class SearchedText {
public:
    explicit SearchedText(std::string_view text)
        : text_(text), isTooLong_(text.size() > mostUnits && utf16Length(text) > mostUnits),
          units_(isTooLong_ ? std::u16string() : utf16FromUTF8(text)) {}

    void give(URegularExpression* matcher, UErrorCode& status) const {
        if (isTooLong_)
            status = U_REGEX_STACK_OVERFLOW;
        else
            uregex_setText(matcher, units_.data(), static_cast<std::int32_t>(units_.size()),
                           &status);
    }

    std::string group(URegularExpression* matcher, std::int32_t number) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t start = uregex_start(matcher, number, &status);
        const std::int32_t end = uregex_end(matcher, number, &status);
        if (U_FAILURE(status) || start < 0)
            return {};
        const std::size_t first = offsetOf(start);
        return std::string(text_.substr(first, offsetOf(end) - first));
    }

private:
    static constexpr std::size_t mostUnits = std::numeric_limits<std::int32_t>::max();

    static int unitsIn(std::int32_t codePoint) { return codePoint > 0xFFFF ? 2 : 1; }

    /// Goes there from where it was asked about last: ICU has gone as far. Of groups within each
    /// other it goes back and forth, but not where each unit is a byte.
    std::size_t offsetOf(std::int32_t unit) {
        if (units_.size() == text_.size())
            return static_cast<std::size_t>(unit);
        while (unit_ < unit)
            unit_ += unitsIn(internal::nextCodePoint(text_, offset_));
        while (unit_ > unit)
            unit_ -= unitsIn(internal::previousCodePoint(text_, offset_));
        return offset_;
    }

    std::string_view text_;
    bool isTooLong_;
    std::u16string units_;
    std::int32_t unit_ = 0;
    std::size_t offset_ = 0;
};

/// Bounds the time of a search: a step may take time with the length of the text, and so may what
/// is no step.
class TimeLimit {
public:
    explicit TimeLimit(std::size_t bytes)
        : allowed_(std::chrono::seconds(2) + std::chrono::microseconds(bytes)) {}

    void watch(URegularExpression* matcher, UErrorCode& status) {
        uregex_setMatchCallback(matcher, goesOnMatching, this, &status);
        uregex_setFindProgressCallback(matcher, goesOnFinding, this, &status);
    }

private:
    using Time = std::chrono::nanoseconds;

    static TimeLimit& of(const void* context) {
        return *const_cast<TimeLimit*>(static_cast<const TimeLimit*>(context));
    }

    static UBool goesOnMatching(const void* context, std::int32_t) {
        return of(context).isTimeLeft();
    }

    static UBool goesOnFinding(const void* context, std::int64_t) { // at each place of the text
        TimeLimit& limit = of(context);
        return ++limit.places_ % 64 != 0 || limit.isTimeLeft();
    }

    /// The thread's own time is dear to read: not before it can be up, by the clock on the wall.
    bool isTimeLeft() {
        const Time wall = internal::timeOf(CLOCK_MONOTONIC_COARSE);
        if (wall < nextLook_)
            return true;
        const Time own = internal::timeOf(CLOCK_THREAD_CPUTIME_ID);
        if (nextLook_ == Time())
            end_ = own + allowed_;
        nextLook_ = wall + (end_ - own);
        return own < end_;
    }

    const Time allowed_;
    unsigned places_ = 0;
    Time end_{};
    Time nextLook_{};
};

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
    SearchedText searched(text);
    TimeLimit limit(text.size());
    // A clone shares the compiled pattern; the stack that a long search may have filled goes with
    // it.
    const icu::LocalURegularExpressionPointer matcher(
        uregex_clone(compiled_->pattern.getAlias(), &status));
    uregex_setStackLimit(matcher.getAlias(), stackLimit, &status);
    uregex_setTimeLimit(matcher.getAlias(), stepLimit(text.size()), &status);
    limit.watch(matcher.getAlias(), status);
    searched.give(matcher.getAlias(), status);

    const std::int32_t groups = uregex_groupCount(matcher.getAlias(), &status);
    std::vector<std::vector<std::string>> matches;
    while (uregex_findNext(matcher.getAlias(), &status)) {
        std::vector<std::string>& captured = matches.emplace_back();
        captured.reserve(static_cast<std::size_t>(groups));
        for (std::int32_t i = 1; i <= groups; ++i)
            captured.push_back(searched.group(matcher.getAlias(), i));
    }
    if (givenUp && isGivenUp(status))
        *givenUp = reason(status);
    else
        check(status);
    return matches;
}

} // namespace zorvan
