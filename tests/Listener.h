#pragma once

#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <memory>
#include <string_view>
#include <utility>

/// Is told of the notifications of that name on the default centre, from that sender or, for null,
/// from any, while it lives.
class Listener {
    using Center = zorvan::NSNotificationCenter;

public:
    Listener(std::string_view name, std::shared_ptr<Center::Sender> sender, Center::Handler told)
        : observer_(Center::defaultCenter()->addObserver(
              zorvan::NSNotificationName(name), std::move(sender), nullptr, std::move(told))) {}
    ~Listener() { Center::defaultCenter()->removeObserver(observer_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    std::shared_ptr<zorvan::NotificationObserver> observer_;
};
