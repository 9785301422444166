#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
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
class Document {
public:
    void begin(std::string_view name) {
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

    void end(std::string_view name) {
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

    void characters(std::string_view text) {
        if (!leaf_.empty())
            text_ += text;
        else if (!internal::withoutSpace(text).empty())
            throw Refusal("there is text where none belongs");
    }

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

/// Keeps exceptions out of the parser, which is not written in C++: they are thrown when it is
/// done.
class Parser {
public:
    Parser() : parser_(XML_ParserCreate(nullptr)) {
        if (!parser_)
            throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(
            parser_.get(),
            [](void* self, const XML_Char* name, const XML_Char**) {
                static_cast<Parser*>(self)->guard([&](Document& d) { d.begin(name); });
            },
            [](void* self, const XML_Char* name) {
                static_cast<Parser*>(self)->guard([&](Document& d) { d.end(name); });
            });
        XML_SetCharacterDataHandler(
            parser_.get(), [](void* self, const XML_Char* text, int length) {
                static_cast<Parser*>(self)->guard([&](Document& d) {
                    d.characters(std::string_view(text, static_cast<std::size_t>(length)));
                });
            });
        XML_SetEntityDeclHandler(
            parser_.get(), [](void* self, const XML_Char*, int, const XML_Char*, int,
                              const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
                static_cast<Parser*>(self)->guard(
                    [](Document&) { throw Refusal("it has entities of its own"); });
            });
        XML_SetAttlistDeclHandler(parser_.get(), [](void* self, const XML_Char*, const XML_Char*,
                                                    const XML_Char*, const XML_Char*, int) {
            static_cast<Parser*>(self)->guard(
                [](Document&) { throw Refusal("it has attributes of its own"); });
        });
    }

    PropertyList parse(std::span<const std::byte> bytes) {
        constexpr std::size_t step = 1 << 20;
        for (std::size_t at = 0; at < bytes.size() || at == 0; at += step) {
            const std::span<const std::byte> part =
                bytes.subspan(at, std::min(step, bytes.size() - at));
            const XML_Status status =
                XML_Parse(parser_.get(), reinterpret_cast<const char*>(part.data()),
                          static_cast<int>(part.size()), at + part.size() == bytes.size());
            if (failure_)
                std::rethrow_exception(failure_);
            if (status != XML_STATUS_OK)
                throw Refusal(XML_ErrorString(XML_GetErrorCode(parser_.get())));
        }
        return document_.result();
    }

private:
    template <class Step>
    void guard(Step step) {
        if (failure_)
            return;
        try {
            step(document_);
        } catch (...) {
            failure_ = std::current_exception();
            XML_StopParser(parser_.get(), XML_FALSE);
        }
    }

    std::unique_ptr<XML_ParserStruct, Release<XML_ParserFree>> parser_;
    Document document_;
    std::exception_ptr failure_;
};

} // namespace

PropertyList readXML(std::span<const std::byte> bytes) { return Parser().parse(bytes); }

} // namespace zorvan::propertylist
