#include <zorvan/platform/foundation/internal/XMLParsing.h>
#include <zorvan/platform/graphics/internal/SvgAddresses.h>
#include <zorvan/platform/graphics/internal/SvgReach.h>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

namespace {

/// Thrown for a document whose reach cannot be told.
struct Hidden {};

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

std::string_view withoutPrefix(std::string_view name) { return name.substr(name.find(':') + 1); }

std::optional<std::int64_t> reachAt(int depth, std::span<const std::byte> document);

/// Whether an attribute is a style, which may refer to elements.
bool isStyle(std::string_view attribute) {
    return isOneOf(attribute, {"style", "fill", "stroke", "mask", "clip-path", "filter", "marker",
                               "marker-start", "marker-mid", "marker-end"});
}

/// Gathers what reaches what.
class Elements final : public internal::XMLFollower {
public:
    /// Of a document that stands in so many others.
    explicit Elements(int depth) : depth_(depth) {}

    void begin(std::string_view fullName, Attributes attributes) override;
    void end(std::string_view fullName) override;
    void characters(std::string_view text) override {
        if (isInStyle_)
            style_ += text;
    }
    void declareEntity(std::string_view text, bool isForDeclarations) override {
        if (isForDeclarations || text.find('<') != text.npos || text.find("&#") != text.npos)
            throw Hidden();
    }
    void declareAttribute() override {
        constexpr int most = 16; // as each costs something for each element
        if (++declaredAttributes_ > most)
            throw Hidden();
    }
    void missEntity() override { throw Hidden(); }
    void instruct(std::string_view target, std::string_view text) override {
        if (target == "xml-stylesheet" && text.find_first_of(":&") != text.npos)
            throw Hidden();
    }

    std::int64_t reach();

private:
    using Index = std::size_t;
    using Indexes = std::vector<Index>;
    struct Element {
        Index parent;            // itself for the first
        std::int64_t length = 1; // of it and what is within
        bool isEntered = false;  // by other ways than from the first
    };
    /// The elements of a name, and those in whose place they are drawn.
    struct Named {
        Indexes elements;
        Indexes references;
    };

    void refer(std::string_view name, std::string_view reference);
    void showImage(const std::string& content);

    int depth_;
    int declaredAttributes_ = 0;
    std::vector<Element> elements_; // parents before their children
    Index open_ = 0;
    Indexes drawnByProperty_;
    std::map<std::string, Named, std::less<>> named_;
    std::int64_t imageReach_ = 0;
    bool isInStyle_ = false;
    std::string style_;
};

void Elements::begin(std::string_view fullName, Attributes attributes) {
    const std::string_view name = withoutPrefix(fullName);
    if (name == "include" || isInStyle_)
        throw Hidden();
    elements_.push_back({open_});
    open_ = elements_.size() - 1;
    isInStyle_ = name == "style";
    if (isOneOf(name, {"pattern", "mask", "clipPath", "marker", "filter"})) {
        elements_.back().isEntered = true;
        drawnByProperty_.push_back(open_);
    }
    for (; *attributes; attributes += 2) {
        const std::string_view attribute = withoutPrefix(attributes[0]), value = attributes[1];
        if (attribute == "id")
            named_[std::string(value)].elements.push_back(open_);
        else if (attribute == "href" && !isOneOf(name, {"a", "script", "font-face-uri"}))
            refer(name, value);
        else if (isStyle(attribute) && takesContentFromAddress(value))
            throw Hidden();
    }
}

void Elements::end(std::string_view fullName) {
    if (withoutPrefix(fullName) == "style" && takesContentFromAddress(std::exchange(style_, {})))
        throw Hidden();
    isInStyle_ = false;
    const Element& done = elements_[open_];
    Element& parent = elements_[done.parent];
    if (&parent != &done)
        parent.length = std::max(parent.length, done.length + 1);
    open_ = done.parent;
}

void Elements::refer(std::string_view name, std::string_view reference) {
    const bool isImage = isOneOf(name, {"image", "feImage"});
    if (!isDataAddress(reference)) {
        if (reference.starts_with('#') && isOneOf(name, {"use", "feImage", "tref"}))
            named_[std::string(reference.substr(1))].references.push_back(open_);
        return;
    }
    const std::optional<std::string> content = contentOfDataAddress(reference);
    if (!isImage || !content)
        throw Hidden();
    showImage(*content);
}

/// Pictures made of pixels reach nothing.
void Elements::showImage(const std::string& content) {
    using namespace std::literals;
    constexpr std::string_view byteOrder = "\xEF\xBB\xBF";
    std::string_view text = content;
    if (text.starts_with(byteOrder))
        text.remove_prefix(byteOrder.size());
    text = internal::withoutSpace(text);
    if (text.starts_with('<')) {
        constexpr int mostDocuments = 4; // within one another
        const auto reach = depth_ < mostDocuments
                               ? reachAt(depth_ + 1, std::as_bytes(std::span(content)))
                               : std::nullopt;
        if (!reach)
            throw Hidden();
        imageReach_ = std::max(imageReach_, *reach);
        return;
    }
    // Documents that are compressed, or written with more bytes for a letter, or with others.
    constexpr std::string_view others[] = {"\x1F\x8B"sv, "\xFE\xFF"sv, "\xFF\xFE"sv,
                                           "Lo\xA7\x94"sv};
    if (text.substr(0, 4).find('<') != text.npos ||
        std::ranges::any_of(others, [&](auto start) { return text.starts_with(start); }))
        throw Hidden();
}

/// What a property refers to, and what refers to something and is entered from elsewhere itself,
/// librsvg never draws within itself: none counts twice. Of the others only one can be on the way.
std::int64_t Elements::reach() {
    std::int64_t sum = elements_.front().length + imageReach_, longestAlone = 0;
    for (const auto& [name, named] : named_)
        for (const Index element : named.elements)
            elements_[element].isEntered |= !named.references.empty();
    for (Element& element : elements_)
        element.isEntered |= elements_[element.parent].isEntered;

    for (const auto& [name, named] : named_) {
        std::int64_t length = 0;
        for (const Index element : named.elements)
            length = std::max(length, elements_[element].length);
        for (const Index from : named.references)
            if (elements_[from].isEntered)
                sum += length;
            else
                longestAlone = std::max(longestAlone, length);
    }
    for (const Index element : drawnByProperty_)
        sum += elements_[element].length;
    return sum + longestAlone;
}

std::optional<std::int64_t> reachAt(int depth, std::span<const std::byte> document) {
    Elements elements(depth);
    internal::XMLParsing parsing(elements);
    parsing.admitOtherLetters();
    try {
        if (!parsing.parse(document))
            return elements.reach();
    } catch (const Hidden&) {
    }
    return std::nullopt;
}

} // namespace

std::optional<std::int64_t> svgReach(std::span<const std::byte> document) {
    return reachAt(0, document);
}

} // namespace zorvan
