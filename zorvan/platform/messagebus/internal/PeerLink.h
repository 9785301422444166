#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/messagebus/internal/Transport.h>

#include <cstddef>
#include <deque>
#include <memory>

namespace zorvan::internal {

/// Messages travel over a stream as their length, four bytes from the lowest up, and themselves.
std::shared_ptr<const Data> framed(const Data& message);

/// A connection that messages go out by.
class OutgoingLink {
public:
    explicit OutgoingLink(FileDescriptor socket) : socket_(std::move(socket)) {}

    int descriptor() const noexcept { return socket_.get(); }
    bool hasMore() const noexcept { return !frames_.empty(); }

    /// Left out when the other process has fallen too far behind.
    void add(std::shared_ptr<const Data> frame);

    /// Writes what goes without waiting; false when the connection has ended.
    bool flush();

private:
    FileDescriptor socket_;
    std::deque<std::shared_ptr<const Data>> frames_;
    std::size_t written_ = 0; // of the first frame
    std::size_t queued_ = 0;  // bytes in all frames
};

/// A connection that messages come in by.
class IncomingLink {
public:
    explicit IncomingLink(FileDescriptor socket) : socket_(std::move(socket)) {}

    int descriptor() const noexcept { return socket_.get(); }

    /// Reads what is there, up to a limit, and passes on each message that is complete; false when
    /// the connection has ended or carries something else.
    bool receive(const Transport::Receive& receive);

private:
    bool passOn(const Transport::Receive& receive);

    FileDescriptor socket_;
    Data buffer_;
};

} // namespace zorvan::internal
