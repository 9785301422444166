#pragma once

#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/observation/ValueRequest.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorvan {

/// Where a ValueLoader is with its value.
enum class ValueLoaderState { isNotLoaded, isLoading, isLoaded };

namespace internal {

/// A completion that can be called without asking whether there is one, and so without a
/// `std::function` around it: nothing that can be null.
template <class Callable>
concept CertainlyCallable =
    std::is_class_v<Callable> && !std::constructible_from<Callable, std::nullptr_t> &&
    std::constructible_from<std::function<void()>, Callable>;

} // namespace internal

/// Loads one value at most once, on an operation queue, for any number of requesters.
///
/// Requests are made, and completed, on the main thread, which must run the main queue. The work is
/// skipped when every request has been cancelled before it starts; a later request then starts it
/// afresh. Once loaded, the value stays, and so does its absence when the work produced none. A
/// loader that works keeps itself alive.
template <class Value>
class ValueLoader : public std::enable_shared_from_this<ValueLoader<Value>> {
public:
    /// For short.
    /// @{
    using State = ValueLoaderState;
    using Request = ValueRequest<Value>;
    /// @}
    using Requests = std::unordered_map<std::int64_t, std::shared_ptr<Request>>; ///< By key.
    /// The work; absent when there is no value.
    using LoadBlock = std::function<std::optional<Value>()>;

    /// The work must not throw: what it cannot load is absent.
    static std::shared_ptr<ValueLoader> create(std::shared_ptr<NSOperationQueue> queue,
                                               LoadBlock loadBlock) {
        return std::shared_ptr<ValueLoader>(
            new ValueLoader(std::move(queue), std::move(loadBlock)));
    }

    /// From any thread, as `value`.
    State state() const noexcept { return state_.load(std::memory_order_acquire); }

    /// The loaded value, which stays for the life of the loader; absent until it is loaded, and
    /// when there was none to load.
    const std::optional<Value>& value() const noexcept {
        if (state() == State::isLoaded)
            return value_;
        static const std::optional<Value> none;
        return none;
    }

    /// The one that the work runs on.
    const std::shared_ptr<NSOperationQueue>& operationQueue() const noexcept {
        return operationQueue_;
    }

    /// The key that the next request receives, from 0; 0 again after a load. On the main thread.
    std::int64_t requestsCount() const noexcept { return requestsCount_; }
    /// The pending requests. On the main thread.
    const Requests& requests() const noexcept { return requests_; }

    /// Asks for the value: `completion` is called once, on the main thread, when it is there,
    /// unless the returned request is cancelled; dropping that does not cancel it. When it is there
    /// already, calls `completion` at once, on the calling thread, and returns null.
    ///
    /// While the value is not loaded, stops the program when called off the main thread.
    /// @{
    std::shared_ptr<Request> request(std::function<void()> completion = {}) {
        if (state() != State::isLoaded)
            return pend(std::move(completion));
        if (completion)
            completion();
        return nullptr;
    }
    template <internal::CertainlyCallable Completion>
    std::shared_ptr<Request> request(Completion completion) {
        if (state() != State::isLoaded)
            return pend(std::move(completion));
        static_cast<void>(completion());
        return nullptr;
    }
    /// @}

private:
    friend Request;

    ValueLoader(std::shared_ptr<NSOperationQueue> queue, LoadBlock loadBlock)
        : operationQueue_(std::move(queue)), loadBlock_(std::move(loadBlock)) {}

    std::shared_ptr<Request> pend(std::function<void()> completion) {
        internal::requireMainThreadForRequest();
        const auto request = std::shared_ptr<Request>(
            new Request(this->weak_from_this(), requestsCount_, std::move(completion)));
        requests_[requestsCount_] = request;
        if (state() != State::isLoading)
            startLoading();
        ++requestsCount_;
        return request;
    }

    /// Without memory, or a thread, the request that asks for it is none.
    void startLoading() {
        try {
            operationQueue_->addOperation([self = this->shared_from_this()] { self->load(); });
        } catch (...) {
            requests_.erase(requestsCount_);
            throw;
        }
        // The operation looks at it on the main thread, and so later.
        state_.store(State::isLoading, std::memory_order_release);
    }

    /// On the operation queue.
    void load() {
        if (!safeSyncInMain([this] { return isStillWanted(); }))
            return;
        std::optional<Value> loaded = loadBlock_();
        safeSyncInMain([&] { finish(std::move(loaded)); });
    }

    bool isStillWanted() {
        if (requests_.empty())
            state_.store(State::isNotLoaded, std::memory_order_release);
        return !requests_.empty();
    }

    void finish(std::optional<Value> loaded) {
        value_ = std::move(loaded);
        state_.store(State::isLoaded, std::memory_order_release);
        // A completion may run the main queue, and so a cancellation, which changes the map.
        std::vector<std::shared_ptr<Request>> pending;
        for (const auto& [key, request] : requests_)
            pending.push_back(request);
        for (const auto& request : pending)
            request->complete();
        requestsCount_ = 0;
        requests_.clear();
    }

    /// On the main thread.
    void forget(std::int64_t key) { requests_.erase(key); }

    const std::shared_ptr<NSOperationQueue> operationQueue_;
    std::atomic<State> state_ = State::isNotLoaded;
    std::optional<Value> value_; // written once, before the state says so
    const LoadBlock loadBlock_;
    std::int64_t requestsCount_ = 0;
    Requests requests_;
};

} // namespace zorvan
