// What another process sends over the link between two, however it arrives: the messages that come
// out are the same, and none is larger than it may be.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/messagebus/internal/PeerLink.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <sys/socket.h>

using namespace zorvan;
using namespace zorvan::internal;

namespace {

std::vector<Data> received(std::span<const std::uint8_t> bytes, std::size_t atOnce) {
    int ends[2];
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0);
    const FileDescriptor sender(ends[0]);
    IncomingLink link{FileDescriptor(ends[1])};
    std::vector<Data> messages;
    const auto receive = [&](std::span<const std::byte> message) {
        require(message.size() <= maxWireSize);
        (void)decodeNotification(message);
        messages.emplace_back(message.begin(), message.end());
    };
    for (bool isOpen = true; isOpen && !bytes.empty();) {
        const auto part = bytes.first(std::min(atOnce, bytes.size()));
        bytes = bytes.subspan(part.size());
        require(::send(sender.get(), part.data(), part.size(), MSG_NOSIGNAL) >= 0);
        isOpen = link.receive(receive);
    }
    return messages;
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const std::size_t atOnce = input.empty() ? 1 : 1 + input[0] % 16;
    require(received(input, 1 << 15) == received(input, atOnce));
}
