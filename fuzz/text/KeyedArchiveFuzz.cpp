#include <fuzz/Fuzzing.h>
#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

using namespace zorvan;

namespace {

struct Node {
    static constexpr std::string_view archivedClassName = "Node";
    std::string name;
    std::vector<std::shared_ptr<Node>> children;
    std::map<std::int64_t, URL> links;

    void encode(NSKeyedArchiver& coder) const {
        coder.encode(name, "name");
        coder.encode(children, "children");
        coder.encode(links, "links");
    }
    static Node decode(const NSKeyedUnarchiver& coder) {
        return {coder.decode<std::string>("name"),
                coder.decode<std::vector<std::shared_ptr<Node>>>("children"),
                coder.decode<std::map<std::int64_t, URL>>("links")};
    }
};

/// What can be read can be archived and read again.
template <class T>
void check(std::span<const std::byte> archive) {
    std::optional<T> value;
    try {
        value = NSKeyedUnarchiver::unarchivedObject<T>(archive);
    } catch (const ArchiveError&) {
        return;
    }
    NSKeyedUnarchiver::unarchivedObject<T>(NSKeyedArchiver::archivedData(*value));
}

/// A list of objects from bytes, since an archive is hardly found by chance: each byte is a
/// reference, a text, a class or the beginning of a container.
class Objects {
public:
    explicit Objects(std::span<const std::byte> bytes) : bytes_(bytes) {}

    Data archive() {
        PropertyList::Array objects{"$null"};
        while (!bytes_.empty() && objects.size() < 250)
            objects.push_back(object());
        return propertylist::writeBinary(
            PropertyList::Dictionary{{"$archiver", "NSKeyedArchiver"},
                                     {"$version", 100000},
                                     {"$top", PropertyList::Dictionary{{"root", reference(1)}}},
                                     {"$objects", std::move(objects)}},
            propertylist::Identifiers::admitted);
    }

private:
    unsigned next() {
        if (bytes_.empty())
            return 0;
        const unsigned value = std::to_integer<unsigned>(bytes_.front());
        bytes_ = bytes_.subspan(1);
        return value;
    }
    static PropertyList reference(unsigned number) {
        return PropertyList::Dictionary{{"CF$UID", static_cast<std::int64_t>(number)}};
    }
    /// Mostly a container, with the fields that the bits of a byte name.
    PropertyList object() {
        constexpr const char* classes[] = {"Node", "NSArray", "NSDictionary", "NSURL"};
        constexpr const char* fields[] = {"name", "children", "links", "NS.relative"};
        const unsigned kind = next();
        if (kind % 4 == 0)
            return "x:" + std::string(kind / 32, 'y');
        if (kind % 4 == 1)
            return PropertyList::Dictionary{{"$classname", classes[kind / 64]}};
        PropertyList::Dictionary container{{"$class", reference(next())}};
        for (unsigned i = 0; i < 4; ++i)
            if (kind >> (2 + i) & 1)
                container.emplace(fields[i], reference(next()));
        for (const char* key : {"NS.keys", "NS.objects"}) {
            PropertyList::Array references;
            for (unsigned count = next() % 8; count > 0; --count)
                references.push_back(reference(next()));
            container.emplace(key, std::move(references));
        }
        return container;
    }

    std::span<const std::byte> bytes_;
};

void checkAll(std::span<const std::byte> archive) {
    check<std::shared_ptr<Node>>(archive);
    check<PropertyList>(archive);
    check<std::map<std::string, std::optional<URL>>>(archive);
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const auto bytes = std::as_bytes(input);
    checkAll(bytes);
    checkAll(Objects(bytes).archive());
}
