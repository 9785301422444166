#include <zorvan/settings/JSON.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <locale.h>
#include <string_view>

namespace zorvan {

namespace {

using Library = nlohmann::json;

/// Builds our value as the text is read, and ends the reading when it is too deep.
class Builder : public nlohmann::json_sax<Library> {
public:
    JSON take() { return std::move(root_); }
    const std::string& problem() const { return problem_; }

    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(std::int64_t{value}); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr std::uint64_t limit = std::uint64_t{1} << 63;
        return value < limit ? add(static_cast<std::int64_t>(value)) : add(std::uint64_t{value});
    }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JSON::Object()); }
    bool key(string_t& name) override {
        names_.back() = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(JSON::Array()); }
    bool end_array() override { return close(); }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        problem_ = "the text is no JSON";
        return false;
    }

private:
    JSON* place(JSON value) {
        if (open_.empty())
            return &(root_ = std::move(value));
        if (auto* array = open_.back()->as<JSON::Array>())
            return &array->emplace_back(std::move(value));
        auto& object = *open_.back()->as<JSON::Object>();
        return &object.insert_or_assign(std::move(names_.back()), std::move(value)).first->second;
    }

    bool add(JSON value) {
        place(std::move(value));
        return true;
    }

    bool open(JSON container) {
        if (open_.size() == JSON::maximumDepth) {
            problem_ = "the text is too deep";
            return false;
        }
        open_.push_back(place(std::move(container)));
        names_.emplace_back();
        return true;
    }

    bool close() {
        open_.pop_back();
        names_.pop_back();
        return true;
    }

    JSON root_;
    std::vector<JSON*> open_; // a container does not move while one within it is open
    std::vector<std::string> names_;
    std::string problem_;
};

/// While it lives, this thread reads reals with a point, wherever the user lives: the library asks
/// for the locale's first byte of a point, of which some have more.
class PlainNumbers {
public:
    PlainNumbers() noexcept : before_(::uselocale(plain())) {}
    ~PlainNumbers() { ::uselocale(before_); }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    static locale_t plain() noexcept {
        static const locale_t locale = ::newlocale(LC_NUMERIC_MASK, "C", nullptr);
        return locale;
    }

    const locale_t before_;
};

/// A value that stands in `depth` others.
Library converted(const JSON& value, std::size_t depth) {
    if (depth == JSON::maximumDepth && (value.as<JSON::Array>() || value.as<JSON::Object>()))
        throw JSONError("the value is too deep");
    if (const auto* truth = value.as<bool>())
        return *truth;
    if (const auto* integer = value.as<std::int64_t>())
        return *integer;
    if (const auto* integer = value.as<std::uint64_t>())
        return *integer;
    if (const auto* text = value.as<std::string>())
        return *text;
    if (const auto* real = value.as<double>()) {
        if (!std::isfinite(*real))
            throw JSONError("a number is not finite");
        return *real;
    }
    if (const auto* array = value.as<JSON::Array>()) {
        Library result = Library::array();
        for (const JSON& item : *array)
            result.push_back(converted(item, depth + 1));
        return result;
    }
    if (const auto* object = value.as<JSON::Object>()) {
        Library result = Library::object();
        for (const auto& [name, item] : *object)
            result.emplace(name, converted(item, depth + 1));
        return result;
    }
    return nullptr;
}

} // namespace

JSON JSON::parse(std::span<const std::byte> text) {
    const std::string_view characters(reinterpret_cast<const char*>(text.data()), text.size());
    // The library takes it for the end.
    if (characters.find('\0') != characters.npos)
        throw JSONError("the text is no JSON");
    const PlainNumbers plain;
    Builder builder;
    if (!Library::sax_parse(characters.begin(), characters.end(), &builder))
        throw JSONError(builder.problem());
    return builder.take();
}

Data JSON::text() const {
    try {
        const std::string text = converted(*this, 0).dump();
        const auto bytes = std::as_bytes(std::span(text));
        return {bytes.begin(), bytes.end()};
    } catch (const Library::exception&) {
        throw JSONError("a text is not UTF-8");
    }
}

} // namespace zorvan
