#include <zorvan/platform/foundation/URL.h>

#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/forEachPart.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <filesystem>
#include <system_error>

namespace zorvan {

namespace {

/// Whether the path is absolute and has nothing to fold: no empty, "." or ".." component.
bool isFolded(std::string_view path) {
    if (!path.starts_with('/'))
        return false;
    for (std::size_t slash = 0; slash != std::string_view::npos;) {
        const std::size_t next = path.find('/', slash + 1);
        const std::string_view component = path.substr(slash + 1, next - slash - 1);
        if (component.empty() || component == "." || component == "..")
            return false;
        slash = next;
    }
    return true;
}

std::string normalised(std::string path) {
    if (isFolded(path))
        return path;
    std::filesystem::path full(std::move(path));
    if (full.is_relative()) {
        std::error_code ignored;
        full = std::filesystem::current_path(ignored) / full;
    }
    std::string text = full.lexically_normal().string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    // POSIX lets "//name" mean something else than "/name"; here it does not.
    if (text.starts_with("//")) // and something behind
        text.erase(0, text.find_first_not_of('/') - 1);
    return text;
}

bool isSchemeCharacter(char c) {
    return internal::isAlphanumeric(c) || c == '+' || c == '-' || c == '.';
}

/// The length of "scheme" in "scheme:rest", or 0.
std::size_t schemeLength(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || !internal::isLetter(text[0]))
        return 0;
    return std::ranges::all_of(text.substr(0, colon), isSchemeCharacter) ? colon : 0;
}

/// Whether each character may stand in a URL, which brackets only may in some of its parts.
bool isURLText(std::string_view text, bool brackets) {
    constexpr std::string_view others = "-._~:/?@!$&'()*+,;=";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool allowed = static_cast<unsigned char>(c) >= 0x80 || internal::isAlphanumeric(c) ||
                             others.find(c) != std::string_view::npos ||
                             (brackets && (c == '[' || c == ']')) ||
                             (c == '%' && internal::percentUnescaped(text.substr(i, 3)));
        if (!allowed)
            return false;
    }
    return internal::isUTF8(text);
}

bool isPort(std::string_view text) {
    constexpr unsigned largestPort = 65535;
    unsigned port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return text.empty() ||
           (error == std::errc() && end == text.data() + text.size() && port <= largestPort);
}

/// Whether "user@host:port", with what may be missing, is what stands between "//" and the path.
bool isAuthority(std::string_view text) {
    if (const std::size_t at = text.rfind('@'); at != std::string_view::npos) {
        const std::string_view user = text.substr(0, at);
        if (user.find('@') != std::string_view::npos || !isURLText(user, false))
            return false;
        text.remove_prefix(at + 1);
    }
    if (text.starts_with('[')) {
        const std::size_t close = std::min(text.find(']'), text.size());
        const std::string address(text.substr(1, std::min(close, text.find('%')) - 1));
        const std::string_view rest = text.substr(std::min(close + 1, text.size()));
        in6_addr ignored{};
        return close < text.size() && isURLText(text.substr(0, close), true) &&
               ::inet_pton(AF_INET6, address.c_str(), &ignored) == 1 &&
               (rest.empty() || (rest.front() == ':' && isPort(rest.substr(1))));
    }
    const std::size_t colon = std::min(text.find(':'), text.size());
    return isURLText(text.substr(0, colon), false) &&
           (colon == text.size() || isPort(text.substr(colon + 1)));
}

std::string escaped(std::string_view path) {
    return internal::percentEscaped(path, [](char c) {
        return internal::isAlphanumeric(c) ||
               std::string_view("-._~/").find(c) != std::string_view::npos;
    });
}

} // namespace

URL URL::root() { return URL({.fileURLWithPath = "/"}); }

URL::URL(FilePath argument)
    : path_(normalised(std::move(argument.fileURLWithPath.value))), isFile_(true) {}

std::optional<URL> URL::make(Text argument) {
    const std::string text = std::move(argument.string.value);
    const std::size_t scheme = schemeLength(text);
    if (scheme == 0)
        return std::nullopt;

    URL url;
    std::size_t pathStart = scheme + 1;
    if (text.compare(pathStart, 2, "//") == 0)
        pathStart = std::min(text.find_first_of("/?#", pathStart + 2), text.size());
    const std::size_t pathEnd = std::min(text.find_first_of("?#", pathStart), text.size());
    url.prefix_ = text.substr(0, pathStart);
    url.path_ = text.substr(pathStart, pathEnd - pathStart);
    url.suffix_ = text.substr(pathEnd);
    const std::size_t fragment = std::min(url.suffix_.find('#'), url.suffix_.size());
    const std::string_view suffix = url.suffix_;
    const bool hasAuthority = pathStart > scheme + 1;
    if (!isURLText(url.path_, false) || !isURLText(suffix.substr(0, fragment), true) ||
        (fragment < suffix.size() && !isURLText(suffix.substr(fragment + 1), true)) ||
        (hasAuthority && !isAuthority(std::string_view(url.prefix_).substr(scheme + 3))))
        return std::nullopt;

    std::string lower = url.prefix_;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return internal::lowered(c); });
    if (!lower.starts_with("file:"))
        return url;
    if (lower != "file:" && lower != "file://" && lower != "file://localhost")
        return std::nullopt;
    const std::optional<std::string> path = internal::percentUnescaped(url.path_);
    if (!path || !path->starts_with('/') || path->find('\0') != std::string::npos)
        return std::nullopt;
    return URL({.fileURLWithPath = *path});
}

std::string URL::absoluteString() const {
    return isFile_ ? "file://" + escaped(path_) : prefix_ + path_ + suffix_;
}

std::string_view URL::lastPathComponent() const& noexcept {
    std::string_view path = path_;
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    if (path == "/")
        return path;
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view URL::pathExtension() const& noexcept {
    const std::string_view name = lastPathComponent();
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.find_first_not_of('.') > dot)
        return {};
    return name.substr(dot + 1);
}

std::vector<std::string> URL::pathComponents() const {
    std::vector<std::string> components;
    if (path_.starts_with('/'))
        components.emplace_back("/");
    internal::forEachPart(path_, '/',
                          [&](std::string_view part) { components.emplace_back(part); });
    return components;
}

URL URL::withPath(std::string path) const {
    URL copy(*this);
    copy.path_ = std::move(path);
    return copy;
}

URL URL::deletingPathExtension() const {
    const std::string_view extension = pathExtension();
    if (extension.empty())
        return *this;
    return withPath(path_.substr(0, static_cast<std::size_t>(extension.data() - path_.data()) - 1));
}

URL URL::appendingPathExtension(std::string_view extension) const {
    const std::string_view last = lastPathComponent();
    if (extension.empty() || last.empty() || last == "/")
        return *this;
    return withPath(path_ + '.' + (isFile_ ? std::string(extension) : escaped(extension)));
}

URL URL::deletingLastPathComponent() const {
    const std::string_view last = lastPathComponent();
    if (last.empty() || last == "/")
        return *this;
    std::string parent = path_.substr(0, static_cast<std::size_t>(last.data() - path_.data()));
    while (parent.size() > 1 && parent.back() == '/')
        parent.pop_back();
    return withPath(std::move(parent));
}

URL URL::appendingPathComponent(std::string_view component) const {
    if (component.empty())
        return *this;
    std::string path = path_;
    if (!path.ends_with('/'))
        path += '/';
    if (!isFile_)
        return withPath(path + escaped(component));
    path += component;
    return URL({.fileURLWithPath = std::move(path)});
}

URL URL::resolvingSymlinksInPath() const {
    if (!isFile_)
        return *this;
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path_, error);
    return error ? *this : URL({.fileURLWithPath = resolved.string()});
}

} // namespace zorvan

std::size_t std::hash<zorvan::URL>::operator()(const zorvan::URL& url) const noexcept {
    constexpr std::size_t odd = 1099511628211u; // so that the order of the parts counts
    const std::hash<std::string> ofText;
    return (ofText(url.prefix_) * odd + ofText(url.path_)) * odd + ofText(url.suffix_);
}
