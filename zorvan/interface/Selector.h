#pragma once

#include <zorvan/platform/appkit/ActionSender.h>

#include <concepts>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace zorvan {

/// What an action does, under a name: a member function of its target, or a block that needs none.
///
/// Two selectors are equal when their names are.
class Selector {
public:
    /// A block that is called whatever the target: `Selector("reload", [] { ... })`.
    template <std::invocable Block>
    Selector(std::string name, Block block)
        : Selector(std::move(name), false,
                   [block = std::move(block)](void*, ActionSender*) mutable {
                       block();
                       return true;
                   }) {}
    /// The same, with the sender; not performed for a sender of another class.
    template <class Sender>
    requires std::derived_from<Sender, ActionSender>
    static Selector withSender(std::string name, std::function<void(Sender&)> block) {
        return Selector(std::move(name), false, [block](void*, ActionSender* sender) {
            auto* const known = dynamic_cast<Sender*>(sender);
            if (known)
                block(*known);
            return known != nullptr;
        });
    }
    /// A member function of the target, which must have become a `std::weak_ptr<void>` from a
    /// pointer to that very class: `Selector("save", &Document::save)` for a `Document`.
    template <class Target>
    Selector(std::string name, void (Target::*method)())
        : Selector(std::move(name), true, [method](void* target, ActionSender*) {
              (static_cast<Target*>(target)->*method)();
              return true;
          }) {}
    /// The same, with the sender; not performed for a sender of another class.
    template <class Target, std::derived_from<ActionSender> Sender>
    Selector(std::string name, void (Target::*method)(Sender&))
        : Selector(std::move(name), true, [method](void* target, ActionSender* sender) {
              auto* const known = dynamic_cast<Sender*>(sender);
              if (known)
                  (static_cast<Target*>(target)->*method)(*known);
              return known != nullptr;
          }) {}

    /// What tells actions apart.
    const std::string& name() const noexcept { return name_; }
    /// True for a member function, false for a block.
    bool needsTarget() const noexcept { return needsTarget_; }

    /// False, and nothing done, when the target is null but needed, or the sender of another class.
    bool perform(const std::shared_ptr<void>& with,
                 const std::shared_ptr<ActionSender>& sender) const {
        return (with || !needsTarget_) && function_(with.get(), sender.get());
    }

    /// By name.
    friend bool operator==(const Selector& a, const Selector& b) noexcept {
        return a.name_ == b.name_;
    }

private:
    using Function = std::function<bool(void*, ActionSender*)>;

    Selector(std::string name, bool needsTarget, Function function)
        : name_(std::move(name)), needsTarget_(needsTarget), function_(std::move(function)) {}

    std::string name_;
    bool needsTarget_;
    Function function_;
};

} // namespace zorvan
