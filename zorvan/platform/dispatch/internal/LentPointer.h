#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

namespace zorvan::internal {

/// A place that keeps an object and lends it: many threads may borrow it at once, each by one
/// atomic step and without a lock, while another one puts the next object there.
///
/// Loans are counted here, beside the address in one word, and given back to the object itself, by
/// `giveBack`, which may outlive this place. `drop` tells the object how often it was lent: it goes
/// when all of that has come back.
template <class Object>
class LentPointer {
    struct Drop {
        void operator()(Object* object) const noexcept { object->drop(lent); }
        std::int64_t lent = 0;
    };

public:
    /// What was kept before, dropped at the end.
    using Former = std::unique_ptr<Object, Drop>;

    LentPointer() = default;
    LentPointer(const LentPointer&) = delete;
    LentPointer& operator=(const LentPointer&) = delete;
    ~LentPointer() { clear(); }

    /// Null when there is none, and when it was lent so often that another one is due.
    Object* borrow() noexcept {
        std::uint64_t word = word_.load(std::memory_order_relaxed);
        while (word != 0 && word / oneLoan < mostLoans)
            if (word_.compare_exchange_weak(word, word + oneLoan, std::memory_order_acquire,
                                            std::memory_order_relaxed))
                return object(word);
        return nullptr;
    }

    /// Keeps that object, lent once, instead.
    Former putLent(Object* next) noexcept {
        const auto address = reinterpret_cast<std::uintptr_t>(next);
        if (address < oneLoan)
            return exchange(address + oneLoan);
        return Former(next, Drop{1}); // an address that leaves no room for the count
    }

    void clear() noexcept {
        if (word_.load(std::memory_order_relaxed) != 0)
            exchange(0);
    }

private:
    static constexpr std::uint64_t oneLoan = std::uint64_t{1} << 48;
    static constexpr std::uint64_t mostLoans = 1 << 15;

    static Object* object(std::uint64_t word) noexcept {
        return reinterpret_cast<Object*>(static_cast<std::uintptr_t>(word % oneLoan));
    }
    Former exchange(std::uint64_t next) noexcept {
        const std::uint64_t before = word_.exchange(next, std::memory_order_acq_rel);
        kept_.store(object(next), std::memory_order_relaxed);
        return Former(object(before), Drop{static_cast<std::int64_t>(before / oneLoan)});
    }

    std::atomic<std::uint64_t> word_ = 0;
    // The bare address, for tools that look for leaks: they do not see it beside the count.
    std::atomic<Object*> kept_ = nullptr;
};

} // namespace zorvan::internal
