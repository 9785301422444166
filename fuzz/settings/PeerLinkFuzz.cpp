// What another process sends over the link between two, however it arrives: the messages that come
// out are the same, and none is larger than it may be.

#include <zorvan/platform/messagebus/internal/PeerLink.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <sys/socket.h>

using namespace zorvan;
using namespace zorvan::internal;

namespace {

std::vector<Data> received(std::span<const std::uint8_t> bytes, std::size_t atOnce) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        std::abort();
    const FileDescriptor sender(ends[0]);
    IncomingLink link{FileDescriptor(ends[1])};
    std::vector<Data> messages;
    const auto receive = [&](std::span<const std::byte> message) {
        if (message.size() > maxWireSize)
            std::abort();
        (void)decodeNotification(message);
        messages.emplace_back(message.begin(), message.end());
    };
    for (bool isOpen = true; isOpen && !bytes.empty();) {
        const auto part = bytes.first(std::min(atOnce, bytes.size()));
        bytes = bytes.subspan(part.size());
        if (::send(sender.get(), part.data(), part.size(), MSG_NOSIGNAL) < 0)
            std::abort();
        isOpen = link.receive(receive);
    }
    return messages;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(data, size);
    if (received(bytes, 1 << 15) != received(bytes, size > 0 ? 1 + data[0] % 16 : 1))
        std::abort();
    return 0;
}
