#include <zorvan/platform/foundation/internal/Wakeup.h>
#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>
#include <zorvan/platform/messagebus/internal/PeerLink.h>
#include <zorvan/platform/messagebus/internal/SocketDirectory.h>
#include <zorvan/platform/messagebus/internal/Transport.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <map>
#include <mutex>
#include <poll.h>
#include <span>
#include <sys/socket.h>
#include <thread>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr std::size_t maxIncoming = 256;

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds rest{1000}; // when the process has no more of something

bool isShort(int error) noexcept {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == ENOBUFS;
}

/// Every process listens in the shared folder and sends each message to all that do, itself
/// included. So nobody is in the middle whose end would cut off the others.
class SocketTransport final : public Transport {
public:
    SocketTransport(SocketDirectory directory, FileDescriptor listener, Receive receive)
        : directory_(std::move(directory)), listener_(std::move(listener)),
          receive_(std::move(receive)) {
        std::thread([this] { run(); }).detach();
    }

    void send(const std::string&, Data message) override {
        const auto frame = framed(message);
        const std::lock_guard lock(mutex_);
        meetPeers();
        for (auto& [name, peer] : peers_)
            peer.add(frame);
        if (flush())
            wakeup_.signal();
    }

private:
    using Peers = std::map<std::string, OutgoingLink>;

    /// Connects to those that are new; under the lock.
    void meetPeers() {
        for (const std::string& name : directory_.names()) {
            if (peers_.contains(name))
                continue;
            if (FileDescriptor socket = directory_.connect(name))
                peers_.emplace(name, OutgoingLink(std::move(socket)));
        }
    }

    /// Also finds out who has ended. True when something is left to write; under the lock.
    bool flush() {
        bool hasMore = false;
        for (auto peer = peers_.begin(); peer != peers_.end();) {
            const bool isAlive = peer->second.flush();
            hasMore = hasMore || (isAlive && peer->second.hasMore());
            peer = isAlive ? std::next(peer) : peers_.erase(peer);
        }
        return hasMore;
    }

    void run() {
        for (;;)
            if (!unlessOutOfMemory([this] { takeTurn(); }))
                std::this_thread::sleep_for(rest);
    }

    void takeTurn() {
        std::vector<pollfd> entries{{wakeup_.descriptor(), POLLIN, 0},
                                    {listener_.get(), POLLIN, 0}};
        const bool isResting = Clock::now() < nextAccept_;
        if (isResting || incoming_.size() >= maxIncoming)
            entries[1].fd = -1;
        for (const IncomingLink& link : incoming_)
            entries.push_back({link.descriptor(), POLLIN, 0});
        const std::size_t known = entries.size();
        addUnfinished(entries);
        ::poll(entries.data(), entries.size(), isResting ? static_cast<int>(rest.count()) : -1);
        wakeup_.clear();
        receiveFrom(std::span(entries).subspan(2, known - 2));
        if (entries[1].revents != 0)
            accept();
        const std::lock_guard lock(mutex_);
        flush();
    }

    void addUnfinished(std::vector<pollfd>& entries) {
        const std::lock_guard lock(mutex_);
        for (const auto& [name, peer] : peers_) {
            if (peer.hasMore())
                entries.push_back({peer.descriptor(), POLLOUT, 0});
        }
    }

    void receiveFrom(std::span<const pollfd> entries) {
        std::size_t i = 0;
        std::erase_if(incoming_, [&](IncomingLink& link) {
            return entries[i++].revents != 0 && !link.receive(receive_);
        });
    }

    void accept() {
        FileDescriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!socket && isShort(errno))
            nextAccept_ = Clock::now() + rest; // else the one who waits keeps us busy
        if (socket && isOwnUsers(socket.get()))
            incoming_.emplace_back(std::move(socket));
    }

    std::mutex mutex_;
    SocketDirectory directory_;
    Peers peers_;
    const FileDescriptor listener_;
    // Of the polling thread:
    std::vector<IncomingLink> incoming_;
    Clock::time_point nextAccept_;
    const Wakeup wakeup_;
    const Receive receive_;
};

} // namespace

std::unique_ptr<Transport> makeSocketTransport(Transport::Receive receive) {
    auto directory = SocketDirectory::open();
    if (!directory)
        return nullptr;
    FileDescriptor listener = directory->listen();
    if (!listener)
        return nullptr;
    return std::make_unique<SocketTransport>(std::move(*directory), std::move(listener),
                                             std::move(receive));
}

} // namespace zorvan::internal
