#include <zorvan/platform/foundation/internal/XMLParsing.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan::propertylist {

namespace {

template <class Value>
PropertyList readable(std::optional<Value> value, const char* refusal) {
    if (!value)
        throw Refusal(refusal);
    return std::move(*value);
}

/// The value that a leaf element stands for.
PropertyList leafValue(std::string_view name, std::string text) {
    if (name == "string")
        return text;
    if (name == "data")
        return readable(decodeBase64(text), "data is not in base 64");
    const std::string_view content = internal::withoutSpace(text);
    if (name == "integer")
        return readable(decodeInteger(content), "an integer cannot be read");
    if (name == "real")
        return readable(decodeReal(content), "a real cannot be read");
    if (name == "date")
        return readable(decodeDate(content), "a date cannot be read");
    if (!content.empty())
        throw Refusal("there is text where none belongs");
    return name == "true";
}

bool isLeaf(std::string_view name) {
    constexpr std::string_view names[] = {"string", "data", "integer", "real",
                                          "date",   "true", "false"};
    return std::ranges::find(names, name) != std::end(names);
}

/// Follows the elements of a document.
class Document final : public internal::XMLFollower {
public:
    void begin(std::string_view name, Attributes) override {
        if (!inPlist_) {
            if (name != "plist")
                throw Refusal("it is no property list");
            inPlist_ = true;
            return;
        }
        if (!leaf_.empty())
            throw Refusal("there is an element within a value");
        if (isLeaf(name) || name == "key") {
            beginLeaf(name);
            return;
        }
        if (name != "array" && name != "dict")
            throw Refusal("there is an unknown element");
        requirePlace();
        if (open_.size() + 1 > maximumDepth)
            throw Refusal("the list is too deep");
        open_.push_back({name == "dict", {}, {}, {}});
    }

    void end(std::string_view name) override {
        if (!leaf_.empty()) {
            endLeaf();
            return;
        }
        if (name == "plist") // the last element, so that nothing is open any more
            return;
        Container done = std::move(open_.back());
        open_.pop_back();
        if (done.key)
            throw Refusal("a key has no value");
        if (done.isDictionary)
            place(std::move(done.dictionary));
        else
            place(std::move(done.array));
    }

    void characters(std::string_view text) override {
        if (!leaf_.empty())
            text_ += text;
        else if (!internal::withoutSpace(text).empty())
            throw Refusal("there is text where none belongs");
    }

    void declareEntity(std::string_view, bool) override {
        throw Refusal("it has entities of its own");
    }
    void declareAttribute() override { throw Refusal("it has attributes of its own"); }
    void missEntity() override { throw Refusal("it has an unknown entity"); }

    PropertyList result() {
        if (!root_)
            throw Refusal("it is empty");
        return std::move(*root_);
    }

private:
    struct Container {
        bool isDictionary;
        PropertyList::Array array;
        PropertyList::Dictionary dictionary;
        std::optional<std::string> key;
    };

    void beginLeaf(std::string_view name) {
        if (name == "key") {
            if (open_.empty() || !open_.back().isDictionary || open_.back().key)
                throw Refusal("a key stands where none belongs");
        } else {
            requirePlace();
        }
        leaf_ = name;
        text_.clear();
    }

    void endLeaf() {
        if (leaf_ == "key")
            open_.back().key = std::move(text_);
        else
            place(leafValue(leaf_, std::move(text_)));
        leaf_.clear();
        text_ = {};
    }

    /// Stops at a value that has nowhere to go.
    void requirePlace() const {
        if (open_.empty() ? root_.has_value() : open_.back().isDictionary && !open_.back().key)
            throw Refusal(open_.empty() ? "there is more than one value" : "a value has no key");
    }

    void place(PropertyList value) {
        if (open_.empty()) {
            root_ = std::move(value);
            return;
        }
        Container& container = open_.back();
        if (container.isDictionary) {
            container.dictionary.insert_or_assign(std::move(*container.key), std::move(value));
            container.key.reset();
        } else {
            container.array.push_back(std::move(value));
        }
    }

    bool inPlist_ = false;
    std::optional<PropertyList> root_;
    std::vector<Container> open_;
    std::string leaf_; // the name of the leaf element that is open
    std::string text_;
};

} // namespace

PropertyList readXML(std::span<const std::byte> bytes) {
    Document document;
    if (const char* const problem = internal::XMLParsing(document).parse(bytes))
        throw Refusal(problem);
    return document.result();
}

} // namespace zorvan::propertylist
