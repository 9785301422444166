#include <zorvan/platform/messagebus/internal/PeerLink.h>

#include <zorvan/platform/foundation/internal/byteNumbers.h>
#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <sys/socket.h>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr std::size_t headerSize = 4;
constexpr std::size_t maxQueued = 16 << 20;
constexpr std::size_t readSize = 64 << 10;

} // namespace

std::shared_ptr<const Data> framed(const Data& message) {
    Data frame(headerSize + message.size());
    putNumber(std::span(frame).first(headerSize), message.size(), std::endian::little);
    std::ranges::copy(message, frame.begin() + headerSize);
    return std::make_shared<const Data>(std::move(frame));
}

void OutgoingLink::add(std::shared_ptr<const Data> frame) {
    if (queued_ + frame->size() > maxQueued)
        return;
    queued_ += frame->size();
    frames_.push_back(std::move(frame));
}

bool OutgoingLink::flush() {
    while (!frames_.empty()) {
        const auto rest = std::span(*frames_.front()).subspan(written_);
        const ssize_t sent = uninterrupted([&] {
            return ::send(descriptor(), rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        });
        if (sent < 0)
            return errno == EAGAIN || errno == EWOULDBLOCK;
        written_ += static_cast<std::size_t>(sent);
        if (written_ == frames_.front()->size()) {
            queued_ -= written_;
            written_ = 0;
            frames_.pop_front();
        }
    }
    return true;
}

bool IncomingLink::receive(const Transport::Receive& receive) {
    std::array<std::byte, readSize> chunk;
    const ssize_t got = ::recv(descriptor(), chunk.data(), chunk.size(), MSG_DONTWAIT);
    if (got < 0)
        return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
    const auto keep = [&] { buffer_.insert(buffer_.end(), chunk.begin(), chunk.begin() + got); };
    return got > 0 && unlessOutOfMemory(keep) && passOn(receive);
}

bool IncomingLink::passOn(const Transport::Receive& receive) {
    std::span<const std::byte> rest = buffer_;
    while (rest.size() >= headerSize) {
        const std::size_t size = numberOf(rest.first(headerSize), std::endian::little);
        if (size > maxWireSize)
            return false;
        if (rest.size() - headerSize < size)
            break;
        receive(rest.subspan(headerSize, size));
        rest = rest.subspan(headerSize + size);
    }
    buffer_.erase(buffer_.begin(), buffer_.end() - static_cast<std::ptrdiff_t>(rest.size()));
    return true;
}

} // namespace zorvan::internal
