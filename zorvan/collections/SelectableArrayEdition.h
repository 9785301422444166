#pragma once

#include <zorvan/collections/IndexSet.h>
#include <zorvan/platform/dispatch/Notification.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <concepts>
#include <cstdint>
#include <utility>
#include <variant>

namespace zorvan {

/// One change of a `SelectableArray`, told so that a view can follow it.
class SelectableArrayEdition {
public:
    /// `count` new elements now stand at positions `at` ..< `at + count`.
    struct Insert {
        std::int64_t count; ///< How many.
        std::int64_t at;    ///< Where the first of them stands.
        friend bool operator==(const Insert&, const Insert&) = default;
    };
    /// The element at `at` was replaced in place.
    struct Replace {
        std::int64_t at; ///< Before and after the change.
        friend bool operator==(const Replace&, const Replace&) = default;
    };
    /// The elements at these positions, counted before the change, were removed.
    struct Remove {
        IndexSet at; ///< In the list as it was.
        friend bool operator==(const Remove&, const Remove&) = default;
    };
    /// The elements at `from` were moved before the one at `to`; positions before the change.
    struct Move {
        IndexSet from;   ///< In the list as it was.
        std::int64_t to; ///< In the list as it was; its count for the end.
        friend bool operator==(const Move&, const Move&) = default;
    };
    /// Only the selection changed, to this one.
    struct Select {
        IndexSet selection; ///< After the change.
        friend bool operator==(const Select&, const Select&) = default;
    };
    /// Anything may have changed: reload everything and apply this selection.
    struct Reload {
        IndexSet selection; ///< After the change.
        friend bool operator==(const Reload&, const Reload&) = default;
    };
    /// One of the cases, with its payload.
    using Variant = std::variant<Insert, Replace, Remove, Move, Select, Reload>;

    /// The key of an edition in a notification's user information.
    static constexpr NameLiteral editionKey = "Edition";

    /// An edition of that case.
    template <class Case>
    requires std::constructible_from<Variant, Case> SelectableArrayEdition(Case value)
        : value_(std::move(value)) {}

    /// What a notification of this edition carries.
    Notification::UserInfo userInfo() const { return {{editionKey, *this}}; }
    /// The edition that a notification carries, else null. It lives in the notification.
    static const SelectableArrayEdition* edition(const Notification& note) noexcept {
        return note.value<SelectableArrayEdition>(editionKey);
    }

    /// The case with its payload.
    const Variant& value() const noexcept { return value_; }
    /// The payload when the edition is of that case, else null.
    template <class Case>
    const Case* as() const noexcept {
        return std::get_if<Case>(&value_);
    }

    friend bool operator==(const SelectableArrayEdition&, const SelectableArrayEdition&) = default;

private:
    Variant value_;
};

} // namespace zorvan
