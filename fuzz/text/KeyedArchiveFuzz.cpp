#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>

#include <zorvan/platform/propertylist/internal/Codecs.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

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
    PropertyList::Array references() {
        PropertyList::Array result;
        for (unsigned count = next() % 8; count > 0; --count)
            result.push_back(reference(next()));
        return result;
    }
    PropertyList object() {
        switch (next() % 6) {
        case 0:
            return PropertyList::Dictionary{{"$class", reference(next())},
                                            {"name", reference(next())},
                                            {"children", reference(next())},
                                            {"links", reference(next())}};
        case 1:
            return PropertyList::Dictionary{{"$class", reference(next())},
                                            {"NS.objects", references()}};
        case 2:
            return PropertyList::Dictionary{{"$class", reference(next())},
                                            {"NS.keys", references()},
                                            {"NS.objects", references()}};
        case 3:
            return PropertyList::Dictionary{{"$class", reference(next())},
                                            {"NS.relative", reference(next())}};
        case 4:
            return "x:" + std::string(next() % 8, 'y');
        default: {
            constexpr const char* names[] = {"Node", "NSArray", "NSDictionary", "NSURL"};
            return PropertyList::Dictionary{{"$classname", names[next() % 4]}};
        }
        }
    }

    std::span<const std::byte> bytes_;
};

void checkAll(std::span<const std::byte> archive) {
    check<std::shared_ptr<Node>>(archive);
    check<PropertyList>(archive);
    check<std::map<std::string, std::optional<URL>>>(archive);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(input, size));
    checkAll(bytes);
    checkAll(Objects(bytes).archive());
    return 0;
}
