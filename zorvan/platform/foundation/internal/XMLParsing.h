#pragma once

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/ascii.h>

#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <span>
#include <string_view>

namespace zorvan::internal {

/// Follows a document from its start to its end. What it throws ends the reading.
class XMLFollower {
public:
    /// Names and values in turn, up to a null.
    using Attributes = const char* const*;

    virtual void begin(std::string_view name, Attributes attributes) = 0;
    virtual void end(std::string_view name) = 0;
    /// A part of a text.
    virtual void characters(std::string_view text) = 0;
    /// The document declares an entity, which stands elsewhere when its text is empty; one for
    /// declarations is not followed.
    virtual void declareEntity(std::string_view text, bool isForDeclarations) = 0;
    /// The document declares an attribute, which elements then have without it.
    virtual void declareAttribute() = 0;
    /// The text has an entity that is not known, as it may when declarations stand elsewhere.
    virtual void missEntity() = 0;
    /// An instruction for who reads the document.
    virtual void instruct(std::string_view /*target*/, std::string_view /*text*/) {}

protected:
    ~XMLFollower() = default;
};

/// Has a follower read one document. Keeps exceptions out of the parser, which is not written in
/// C++: they are thrown when it is done.
class XMLParsing {
public:
    explicit XMLParsing(XMLFollower& follower) : follower_(follower) {
        if (!parser_)
            throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(
            parser_.get(),
            [](void* self, const char* name, const char** attributes) {
                guard(self, [&](XMLFollower& to) { to.begin(name, attributes); });
            },
            [](void* self, const char* name) {
                guard(self, [&](XMLFollower& to) { to.end(name); });
            });
        XML_SetCharacterDataHandler(parser_.get(), [](void* self, const char* text, int length) {
            const std::string_view part(text, static_cast<std::size_t>(length));
            guard(self, [&](XMLFollower& to) { to.characters(part); });
        });
        XML_SetProcessingInstructionHandler(
            parser_.get(), [](void* self, const char* target, const char* text) {
                guard(self, [&](XMLFollower& to) { to.instruct(target, text); });
            });
        XML_SetEntityDeclHandler(parser_.get(), [](void* self, const char*, int isParameter,
                                                   const char* value, int length, const char*,
                                                   const char*, const char*, const char*) {
            const std::string_view text(value, static_cast<std::size_t>(value ? length : 0));
            guard(self, [&](XMLFollower& to) { to.declareEntity(text, isParameter != 0); });
        });
        XML_SetAttlistDeclHandler(
            parser_.get(), [](void* self, const char*, const char*, const char*, const char*, int) {
                guard(self, [](XMLFollower& to) { to.declareAttribute(); });
            });
        XML_SetSkippedEntityHandler(parser_.get(), [](void* self, const char*, int) {
            guard(self, [](XMLFollower& to) { to.missEntity(); });
        });
    }

    /// Lets documents in 8-bit encodings pass whose letters beyond ASCII the parser does not know:
    /// the follower is told others in their place.
    void admitOtherLetters() {
        XML_SetUnknownEncodingHandler(
            parser_.get(),
            [](void*, const char* name, XML_Encoding* encoding) {
                constexpr std::string_view families[] = {"windows-125", "cp125", "iso-8859-",
                                                         "koi8-"};
                const auto isOf = [name](std::string_view family) {
                    const std::string_view start = std::string_view(name).substr(0, family.size());
                    return std::ranges::equal(start, family, {}, lowered);
                };
                if (std::ranges::none_of(families, isOf))
                    return static_cast<int>(XML_STATUS_ERROR);
                std::iota(std::begin(encoding->map), std::end(encoding->map), 0);
                encoding->convert = nullptr;
                encoding->release = nullptr;
                return static_cast<int>(XML_STATUS_OK);
            },
            nullptr);
    }

    /// Null for a document that is well-formed, else what is wrong.
    const char* parse(std::span<const std::byte> bytes) {
        // In one part if it may be, as the parser begins a token anew with each.
        constexpr std::size_t step = std::numeric_limits<int>::max();
        for (std::size_t at = 0; at < bytes.size() || at == 0; at += step) {
            const auto part = bytes.subspan(at, std::min(step, bytes.size() - at));
            const XML_Status status =
                XML_Parse(parser_.get(), reinterpret_cast<const char*>(part.data()),
                          static_cast<int>(part.size()), at + part.size() == bytes.size());
            if (failure_)
                std::rethrow_exception(failure_);
            if (status != XML_STATUS_OK)
                return XML_ErrorString(XML_GetErrorCode(parser_.get()));
        }
        return nullptr;
    }

private:
    template <class Step>
    static void guard(void* object, const Step& step) {
        XMLParsing& self = *static_cast<XMLParsing*>(object);
        if (self.failure_)
            return;
        try {
            step(self.follower_);
        } catch (...) {
            self.failure_ = std::current_exception();
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    XMLFollower& follower_;
    std::unique_ptr<XML_ParserStruct, Release<XML_ParserFree>> parser_{XML_ParserCreate(nullptr)};
    std::exception_ptr failure_;
};

} // namespace zorvan::internal
