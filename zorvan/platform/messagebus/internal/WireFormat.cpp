#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <zorvan/platform/foundation/internal/ValueBytes.h>

#include <cstdint>
#include <stdexcept>
#include <string_view>

// A message is a version byte, the name, then the object and the user information, each led by a
// byte that says whether it is there.

namespace zorvan::internal {

namespace {

constexpr std::uint8_t version = 2; // 1 had values of its own

constexpr ValueBounds bounds{
    .size = maxWireSize, .depth = maxWireDepth, .values = maxWireValues, .isUTF8 = true};

[[noreturn]] void refuse(ValueRefusal refusal) {
    switch (refusal) {
    case ValueRefusal::notUTF8:
        throw std::invalid_argument("A notification between processes holds text not in UTF-8.");
    case ValueRefusal::depth:
        throw std::length_error("A notification between processes is nested too deep.");
    case ValueRefusal::values:
        throw std::length_error("A notification between processes holds too many values.");
    case ValueRefusal::size:
        break;
    }
    throw std::length_error("A notification between processes is too large.");
}

bool isName(std::string_view text) {
    return !text.empty() && text.find('\0') == std::string_view::npos;
}

bool readFlag(ValueReader& reader) {
    const std::uint8_t flag = reader.readByte();
    if (flag > 1)
        throw ValueDamage();
    return flag == 1;
}

WireNotification read(ValueReader& reader) {
    WireNotification notification;
    if (reader.readByte() != version)
        throw ValueDamage();
    notification.name = reader.readText();
    if (readFlag(reader))
        notification.object = reader.readText();
    if (readFlag(reader))
        notification.userInfo = reader.readDictionary();
    if (!isName(notification.name) || !reader.isAtEnd())
        throw ValueDamage();
    return notification;
}

} // namespace

Data encode(const WireNotification& notification) {
    if (!isName(notification.name))
        throw std::invalid_argument("A notification name is empty or holds a NUL.");
    try {
        ValueWriter writer(bounds);
        writer.writeByte(version);
        writer.writeText(notification.name);
        writer.writeByte(notification.object.has_value());
        if (notification.object)
            writer.writeText(*notification.object);
        writer.writeByte(notification.userInfo.has_value());
        if (notification.userInfo)
            writer.write(*notification.userInfo);
        return writer.take();
    } catch (const ValueRefusal& refusal) {
        refuse(refusal);
    }
}

std::optional<WireNotification> decodeNotification(std::span<const std::byte> bytes) {
    try {
        ValueReader reader(bytes, bounds);
        return read(reader);
    } catch (const ValueDamage&) {
        return std::nullopt;
    }
}

} // namespace zorvan::internal
