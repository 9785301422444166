#pragma once

#include <mutex>

namespace zorvan::internal {

/// What has to be whole, and nobody's, in a process that was forked.
///
/// All of them are held together while the process forks: who uses one may wait for another, so
/// none is kept while another is waited for. Made before `main`, by `Joined`, and never destroyed.
class ForkParticipant {
public:
    ForkParticipant(const ForkParticipant&) = delete;
    ForkParticipant& operator=(const ForkParticipant&) = delete;

    /// Takes it along for as long as that lives, which is as long as the library is loaded.
    class Joined {
    public:
        explicit Joined(ForkParticipant& participant) noexcept;
        ~Joined();
        Joined(const Joined&) = delete;
        Joined& operator=(const Joined&) = delete;

    private:
        ForkParticipant& participant_;
    };

protected:
    constexpr ForkParticipant() = default;
    ~ForkParticipant() = default;

private:
    // By the thread that forks, in this order:
    /// Takes what is kept while something else is waited for; false, at once, when it is in use.
    virtual bool tryToHold() { return true; }
    /// Another was in use; all are tried again a moment later.
    virtual void letGo() {}
    /// All are held.
    virtual void prepare() {}
    /// All are prepared. Takes what is kept for moments alone.
    virtual void lock() {}
    /// Gives back what was taken.
    virtual void end(bool isChild) = 0;

    struct Fork;
    ForkParticipant* next_ = nullptr;
};

/// A mutex under which nothing is waited for, and that is nobody's in a process that was forked.
class BriefMutex final : public ForkParticipant {
public:
    constexpr BriefMutex() = default;

    void lock() override { mutex_.lock(); }
    void unlock() { mutex_.unlock(); }

private:
    void end(bool) override { unlock(); }

    std::mutex mutex_;
};

} // namespace zorvan::internal
