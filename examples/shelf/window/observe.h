#pragma once

#include <zorvan/observation/NoteSubscriber.h>

#include <memory>
#include <string_view>
#include <utility>

/// Calls `handle` with the observer and the notification for as long as the observer lives.
template <class Observer, class Handler>
void observe(std::string_view name, const std::shared_ptr<const void>& of,
             const std::shared_ptr<Observer>& observer, Handler handle) {
    using namespace zorvan;
    const auto subscriber = NoteSubscriber::create(NSNotificationCenter::defaultCenter());
    subscriber->setName(NSNotificationName(name));
    subscriber->setObject(of);
    subscriber->subscribe(observer, std::move(handle));
}
