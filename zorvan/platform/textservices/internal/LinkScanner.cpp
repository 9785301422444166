#include <zorvan/platform/textservices/internal/LinkScanner.h>

#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/platform/textservices/internal/CodePoints.h>

#include <libpsl.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <string>

namespace zorvan::internal {

namespace {

constexpr std::size_t longestScheme = 32;
constexpr std::size_t longestLabel = 63;
constexpr std::size_t longestHost = 253;
constexpr std::size_t longestLocalPart = 64;

constexpr std::array<std::string_view, 6> schemesOfHosts = {"http", "https", "ftp",
                                                            "ftps", "ws",    "wss"};

/// The end of the code points from `start` on that belong.
template <class Belongs>
std::size_t endOfRun(std::string_view text, std::size_t start, Belongs belongs) noexcept {
    for (std::size_t next = start; next < text.size(); start = next)
        if (!belongs(nextCodePoint(text, next)))
            break;
    return start;
}

bool isWordPart(UChar32 c) noexcept {
    if (c < 0)
        return false;
    return u_isalnum(c) || (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
}

bool endsAddress(UChar32 c) noexcept {
    if (c < 0x80)
        return c <= 0x20 || c == 0x7F ||
               std::string_view("<>\"`{}|\\^").find(static_cast<char>(c)) != std::string_view::npos;
    constexpr std::uint32_t ending = U_GC_Z_MASK | U_GC_CC_MASK | U_GC_CN_MASK | U_GC_PI_MASK |
                                     U_GC_PF_MASK | U_GC_PS_MASK | U_GC_PE_MASK;
    return (U_GET_GC_MASK(c) & ending) != 0 || c == 0x3001 || c == 0x3002 || c == 0xFF0C ||
           c == 0xFF0E; // ideographic comma and stop
}

bool isLocalPart(UChar32 c) noexcept {
    if (c >= 0x80)
        return isWordPart(c);
    if (c < 0)
        return false;
    const char ascii = static_cast<char>(c);
    return isAlphanumeric(ascii) ||
           std::string_view("._%+-&'~").find(ascii) != std::string_view::npos;
}

bool isInternetAddress(std::string_view host) noexcept {
    for (int number = 1; number <= 4; ++number) {
        const std::size_t digits = std::min(host.find_first_not_of("0123456789"), host.size());
        if (digits == 0 || digits > 3 || (digits == 3 && host.substr(0, 3) > "255"))
            return false;
        host.remove_prefix(digits);
        if (number < 4 && !host.starts_with('.'))
            return false;
        host.remove_prefix(number < 4 ? 1 : 0);
    }
    return host.empty();
}

bool isIPv6Address(std::string_view host) {
    in6_addr ignored{};
    return ::inet_pton(AF_INET6, std::string(host).c_str(), &ignored) == 1;
}

/// A part of a link with escapes for the characters that may not stand there, and for each "%" that
/// begins no escape.
std::string escapedPart(std::string_view part, std::string_view forbidden) {
    std::string result;
    for (std::size_t i = 0; i < part.size(); ++i) {
        const bool isStray = part[i] == '%' && !percentUnescaped(part.substr(i, 3));
        if (isStray || forbidden.find(part[i]) != std::string_view::npos)
            appendPercentEscape(result, part[i]);
        else
            result += part[i];
    }
    return result;
}

/// The URL that a link with a scheme stands for: people write characters that URLs escape.
std::string urlOf(std::string_view link) {
    std::string url;
    const auto take = [&](std::size_t size, std::string_view forbidden) {
        url += escapedPart(link.substr(0, size), forbidden);
        link.remove_prefix(std::min(size, link.size()));
    };
    take(link.find(':') + 1, "");
    if (link.starts_with("//")) {
        take(2, "");
        const std::string_view authority = link.substr(0, link.find_first_of("/?#"));
        const std::size_t at = authority.rfind('@');
        const std::size_t user = at == std::string_view::npos ? 0 : at;
        take(user, "[]@");
        take(authority.size() - user, "");
    }
    take(link.find_first_of("?#"), "[]");
    take(link.find('#'), "");
    take(1, "");
    take(link.size(), "#");
    return url;
}

bool isPublicSuffix(const std::string& name) {
    const psl_ctx_t* list = psl_builtin();
    return list &&
           psl_is_public_suffix2(list, name.c_str(), PSL_TYPE_ICANN | PSL_TYPE_NO_STAR_RULE) != 0;
}

bool isTopLevelDomain(std::string_view label) {
    const std::string name = lowercased(label);
    // Some countries register below a second level only; the list then has a rule for that alone.
    return isPublicSuffix(name) || isPublicSuffix("any." + name);
}

} // namespace

std::optional<NSTextCheckingResult> LinkScanner::next() {
    bool afterWord = position_ > 0; // what touches the link before begins no other
    while (position_ < text_.size()) {
        std::size_t end = position_;
        const UChar32 c = nextCodePoint(text_, end);
        if (!afterWord && (isWordPart(c) || c == '_'))
            if (auto match = matchAt(position_)) {
                position_ = match->offset + match->length;
                return match;
            }
        const bool goesOn = afterWord && (c == '-' || c == '.');
        afterWord = goesOn || isWordPart(c) || c == '_' || c == '@' || c == '/' || c == '\\';
        position_ = end;
    }
    return std::nullopt;
}

std::optional<NSTextCheckingResult> LinkScanner::matchAt(std::size_t start) {
    if (const auto end = schemedEnd(start))
        return result(start, *end, "");
    if (const auto end = mailEnd(start))
        return result(start, *end, "mailto:");
    if (const auto end = webEnd(start))
        return result(start, *end, "http://");
    return std::nullopt;
}

NSTextCheckingResult LinkScanner::result(std::size_t start, std::size_t end,
                                         std::string_view scheme) const {
    const std::string link = std::string(scheme) + std::string(text_.substr(start, end - start));
    return {NSTextCheckingType::link, start, end - start, urlOf(link)};
}

std::optional<std::size_t> LinkScanner::schemedEnd(std::size_t start) {
    std::size_t end = start;
    while (
        end < text_.size() && end - start < longestScheme &&
        (isAlphanumeric(text_[end]) || text_[end] == '+' || text_[end] == '-' || text_[end] == '.'))
        ++end;
    if (end == start || !isLetter(text_[start]) || end == text_.size() || text_[end] != ':')
        return std::nullopt;
    const std::string scheme = lowercased(text_.substr(start, end - start));
    const std::string_view rest = text_.substr(end + 1);
    if (scheme == "mailto") {
        const auto mail = LinkScanner(text_).mailEnd(end + 1);
        const bool hasQuery = mail && *mail < text_.size() && text_[*mail] == '?';
        return hasQuery ? withoutTrailingPunctuation(start, addressEnd(*mail)) : mail;
    }
    if (!rest.starts_with("//"))
        return std::nullopt;
    const std::size_t authority = end + 3;
    if (std::find(schemesOfHosts.begin(), schemesOfHosts.end(), scheme) != schemesOfHosts.end())
        return authorityEnd(authority);
    return otherEnd(start, authority);
}

/// The end of an address of which no more is known than that it has to be a URL.
std::optional<std::size_t> LinkScanner::otherEnd(std::size_t start, std::size_t authority) {
    if (start < noOtherBefore_)
        return std::nullopt;
    noOtherBefore_ = addressEnd(authority);
    const std::size_t whole = withoutTrailingPunctuation(start, noOtherBefore_);
    if (whole <= authority || !URL::make({.string = urlOf(text_.substr(start, whole - start))}))
        return std::nullopt;
    return whole;
}

/// The end of an address whose host must be one that could exist.
std::optional<std::size_t> LinkScanner::authorityEnd(std::size_t start) const {
    const std::size_t end = endOfRun(text_, start, [](UChar32 c) {
        return !endsAddress(c) && c != '/' && c != '?' && c != '#';
    });
    const std::size_t at = text_.substr(start, end - start).rfind('@');
    const std::size_t host = at == std::string_view::npos ? start : start + at + 1;
    if (host < text_.size() && text_[host] == '[') {
        const std::size_t close = text_.find_first_not_of("0123456789abcdefABCDEF:.", host + 1);
        if (close == std::string_view::npos || text_[close] != ']' ||
            !isIPv6Address(text_.substr(host + 1, close - host - 1)))
            return std::nullopt;
        return portAndPathEnd(start, close + 1);
    }
    const Host read = readHost(host);
    const bool isNumeric = isInternetAddress(text_.substr(host, read.end - host));
    if (!read.isValid || (read.labels > 1 && !isNumeric && !hasAlphabeticEnd(read)))
        return std::nullopt;
    return portAndPathEnd(start, read.end);
}

std::optional<std::size_t> LinkScanner::mailEnd(std::size_t start) {
    if (start < noMailBefore_)
        return std::nullopt;
    const std::size_t at = endOfRun(text_, start, isLocalPart);
    noMailBefore_ = at;
    if (at == start || at == text_.size() || text_[at] != '@' || text_[at - 1] == '.')
        return std::nullopt;
    const std::string_view local = text_.substr(start, at - start);
    if (local.size() > longestLocalPart || local.find("..") != std::string_view::npos)
        return std::nullopt;
    const Host host = readHost(at + 1);
    const bool goesOn = host.end < text_.size() && text_[host.end] == '@';
    if (!host.isValid || host.labels < 2 || !hasAlphabeticEnd(host) || goesOn)
        return std::nullopt;
    return host.end;
}

std::optional<std::size_t> LinkScanner::webEnd(std::size_t start) {
    if (start < noWebBefore_)
        return std::nullopt;
    const Host host = readHost(start);
    noWebBefore_ = host.end;
    if (!host.isValid || host.labels < 2 || !hasAlphabeticEnd(host))
        return std::nullopt;
    const bool isMail = host.end < text_.size() && text_[host.end] == '@';
    if (isMail || !hasKnownEnd(start, host))
        return std::nullopt;
    return portAndPathEnd(start, host.end);
}

LinkScanner::Host LinkScanner::readHost(std::size_t start) const {
    Host host{start, true, 0, start};
    for (std::size_t label = start;;) {
        const std::size_t end =
            endOfRun(text_, label, [](UChar32 c) { return c == '-' || isWordPart(c); });
        const std::string_view name = text_.substr(label, end - label);
        const bool dotEndsSentence = name.empty() && host.labels > 0;
        if (dotEndsSentence)
            break;
        ++host.labels;
        host.lastLabel = label;
        host.end = end;
        host.isValid &= !name.empty() && name.size() <= longestLabel && name.front() != '-' &&
                        name.back() != '-';
        if (end == text_.size() || text_[end] != '.')
            break;
        label = end + 1;
    }
    const bool goesOn = host.end < text_.size() && text_[host.end] == '_';
    host.isValid &= !goesOn && host.end - start <= longestHost;
    return host;
}

bool LinkScanner::hasAlphabeticEnd(const Host& host) const {
    const std::string_view label = text_.substr(host.lastLabel, host.end - host.lastLabel);
    if (lowercased(label).starts_with("xn--"))
        return true;
    return label.size() >= 2 &&
           std::none_of(label.begin(), label.end(), [](char c) { return isDigit(c) || c == '-'; });
}

bool LinkScanner::hasKnownEnd(std::size_t start, const Host& host) const {
    const bool saysWeb = host.labels >= 3 && lowercased(text_.substr(start, 4)) == "www.";
    return saysWeb || isTopLevelDomain(text_.substr(host.lastLabel, host.end - host.lastLabel));
}

std::size_t LinkScanner::addressEnd(std::size_t start) const {
    return endOfRun(text_, start, [](UChar32 c) { return !endsAddress(c); });
}

std::size_t LinkScanner::portAndPathEnd(std::size_t start, std::size_t hostEnd) const {
    std::size_t end = hostEnd;
    if (end < text_.size() && text_[end] == ':') {
        std::size_t port = end + 1;
        while (port < text_.size() && port - end <= 5 && isDigit(text_[port]))
            ++port;
        const std::string_view digits = text_.substr(end + 1, port - end - 1);
        const bool isPort = !digits.empty() && (digits.size() < 5 || digits <= "65535");
        if (isPort && (port == text_.size() || !isAlphanumeric(text_[port])))
            end = port;
    }
    if (end < text_.size() && (text_[end] == '/' || text_[end] == '?' || text_[end] == '#'))
        end = std::max(withoutTrailingPunctuation(start, addressEnd(end)), end);
    return end;
}

std::size_t LinkScanner::withoutTrailingPunctuation(std::size_t start, std::size_t end) const {
    const std::string_view link = text_.substr(start, end - start);
    auto roundSurplus =
        std::count(link.begin(), link.end(), ')') - std::count(link.begin(), link.end(), '(');
    auto squareSurplus =
        std::count(link.begin(), link.end(), ']') - std::count(link.begin(), link.end(), '[');
    for (; end > start; --end) {
        const char last = text_[end - 1];
        if (last == ')' && roundSurplus > 0)
            --roundSurplus;
        else if (last == ']' && squareSurplus > 0)
            --squareSurplus;
        else if (std::string_view(".,;:!?'*_").find(last) == std::string_view::npos)
            break;
    }
    return end;
}

} // namespace zorvan::internal
