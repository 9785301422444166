#pragma once

#include <zorvan/platform/foundation/RawRepresentable.h>
#include <zorvan/settings/JSONCoding.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

/// With raw texts, a "b", and raw numbers from 0.
enum class Letter { a, b };

/// With raw numbers 5 and 6, so that nothing stands for 0.
struct Level {
    struct RawValue {
        std::int64_t rawValue;
    };
    static std::optional<Level> make(RawValue argument) {
        const bool isOne = argument.rawValue == 5 || argument.rawValue == 6;
        return isOne ? std::optional(Level{argument.rawValue}) : std::nullopt;
    }
    std::int64_t rawValue() const { return raw; }
    friend bool operator==(const Level&, const Level&) = default;
    std::int64_t raw = 5;
};

struct Window {
    std::string title;
    double width = 0;
    std::optional<std::int64_t> tag;
    std::vector<Letter> letters;
    std::map<std::string, bool> marks;

    friend bool operator==(const Window&, const Window&) = default;

    static constexpr auto jsonFields = std::tuple(
        zorvan::JSONField("title", &Window::title), zorvan::JSONField("width", &Window::width),
        zorvan::JSONField("tag", &Window::tag), zorvan::JSONField("letters", &Window::letters),
        zorvan::JSONField("marks", &Window::marks));
};

template <>
struct zorvan::RawRepresentation<Letter> {
    static std::string_view rawValue(Letter letter) { return letter == Letter::a ? "a" : "b"; }
    static std::optional<Letter> make(std::string_view raw) {
        return raw == "a"   ? std::optional(Letter::a)
               : raw == "b" ? std::optional(Letter::b)
                            : std::nullopt;
    }
};
