#include <zorvan/platform/avfoundation/internal/BufferedBytes.h>
#include <zorvan/platform/avfoundation/internal/sampleCounts.h>
#include <zorvan/platform/foundation/internal/byteNumbers.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include <zlib.h>

namespace zorvan::avfoundation {
namespace {

using Bytes = std::array<char, 16>;

std::uint32_t number(const Bytes& bytes, std::size_t offset) {
    const auto four = std::as_bytes(std::span(bytes)).subspan(offset, 4);
    return static_cast<std::uint32_t>(internal::numberOf(four, std::endian::big));
}

constexpr bool isOneOf(std::string_view type, std::string_view types) {
    for (; !types.empty(); types.remove_prefix(4))
        if (types.starts_with(type))
            return true;
    return false;
}

/// Tables that begin with the count of their entries, and the others that matter.
constexpr std::string_view timesAndPlaces = "sttscttsstscstcoco64stssstps";
constexpr std::string_view otherTables = "stszstz2trunelsthdlrkeyssgpdiinfiloc";

/// FFmpeg asks for memory for all the entries that a table states. In a movie that is cut short,
/// not all of them are there; more than this of them are in no movie.
constexpr std::uint32_t mostNotThere = 1 << 22;

/// What the tables of a track count; real numbers, since their products go beyond integers.
struct Track {
    double samples = 0, chunks = 0, mostOfChunk = 0, edits = 0;
    bool isSound = false, hasUnitTimes = false, isOtherwise = false;

    /// How many entries FFmpeg makes of it: for each edit one for each sample. Sound whose samples
    /// last one unit of time each it takes in pieces of chunks instead, of 160 samples or more.
    double entries() const {
        const bool isInPieces = isSound && hasUnitTimes && !isOtherwise;
        const double pieces = chunks * (mostOfChunk / 160 + 1);
        return (pieces + (isInPieces ? 0 : samples)) * std::max(edits, 1.0);
    }
};

/// Walks over the boxes as FFmpeg does, and adds up the entries that it makes.
class EntryCount {
public:
    EntryCount(int file, std::int64_t size) : file_(file, size) {}

    bool fits() {
        walk(0, file_.size(), 0);
        return isWithin();
    }

private:
    bool isWithin() const { return count_ <= static_cast<double>(file_.size()); }
    void refuse() { count_ = std::numeric_limits<double>::infinity(); }

    void walk(std::int64_t at, std::int64_t end, int depth) {
        constexpr int mostDepth = 12; // FFmpeg opens no movie that is deeper
        if (depth > mostDepth)
            return refuse();
        while (end - at >= 8 && isWithin()) {
            const Bytes start = source_->at(at);
            const bool isLong = number(start, 0) == 1;
            const std::uint64_t head = isLong ? 16 : 8, rest = static_cast<std::uint64_t>(end - at);
            std::uint64_t length = isLong
                                       ? std::uint64_t{number(start, 8)} << 32 | number(start, 12)
                                       : number(start, 0);
            const std::string_view type(start.data() + 4, 4);
            const bool isCut = length > rest;
            if (isCut && depth == 0 && type != "mdat" && length - rest > mostNotThere)
                return refuse();
            if (length == 0 || isCut)
                length = rest; // which FFmpeg bears
            if (length < head)
                return;
            const std::int64_t next = at + static_cast<std::int64_t>(length);
            look(type, at + static_cast<std::int64_t>(head), next, depth + 1);
            at = next;
        }
    }

    /// `at` is where the content of the box begins.
    void look(std::string_view box, std::int64_t at, std::int64_t end, int depth) {
        if (isOneOf(box, "mdiaminfstbledtsudtadinftrefwavesinfschiilstmvexmooftraf"))
            walk(at, end, depth);
        else if (box == "moov" || (isOneOf(box, "freehoov") && isHead(at)))
            walkHead(at, end, depth);
        else if (box == "cmov")
            unfold(at, end, depth);
        else if (box == "trak")
            walkTrack(at, end, depth);
        else if (box == "meta")
            walkMetadata(at, end, depth);
        else if (box == "stsd")
            walkFormats(at, depth);
        else if (box == "mdat")
            track_.isOtherwise = true; // FFmpeg reads no further in the box around it
        else if (isOneOf(box, timesAndPlaces))
            addTable(box, at);
        else if (isOneOf(box, otherTables))
            addOther(box, at, end);
    }

    /// FFmpeg also takes the head of a movie from where one was given up.
    bool isHead(std::int64_t at) {
        const Bytes start = source_->at(at);
        return isOneOf({start.data() + 4, 4}, "mvhdcmov");
    }

    void walkHead(std::int64_t at, std::int64_t end, int depth) {
        if (isInTrack_)
            return refuse();
        walk(at, end, depth);
    }

    void walkTrack(std::int64_t at, std::int64_t end, int depth) {
        if (std::exchange(isInTrack_, true))
            return refuse();
        track_ = {};
        walk(at, end, depth);
        count_ += track_.entries();
        isInTrack_ = false;
    }

    /// There may be fields before the first box, which FFmpeg looks for.
    void walkMetadata(std::int64_t at, std::int64_t end, int depth) {
        for (; end - at > 8; at += 4)
            if (std::string_view(source_->at(at).data(), 4) == "hdlr")
                return walk(at - 4, end, depth);
    }

    /// Behind the fields of each format are boxes. As it is not known here whether they are those
    /// of sound, in one of its versions, of video, or of neither, all are tried.
    void walkFormats(std::int64_t at, int depth) {
        constexpr std::int64_t most = 0x7FFFE; // beyond, FFmpeg may lose its place
        if (std::exchange(isInFormats_, true))
            return refuse();
        const Track before = track_;
        const std::uint32_t count = number(source_->at(at), 4);
        std::int64_t format = at + 8;
        for (std::uint32_t i = 0; i < count && rest(format) >= 16 && isWithin(); ++i, ++count_) {
            const std::int64_t size = number(source_->at(format), 0);
            if (size < 8 || size > most)
                return refuse();
            const std::int64_t next = format + std::min(size, rest(format));
            for (const int fields : {0, 20, 36, 56, 70, 70 + paletteSize(format + 16 + 70)})
                walk(format + 16 + fields, next, depth);
            format = next;
        }
        track_.isSound = before.isSound;
        track_.hasUnitTimes = before.hasUnitTimes;
        isInFormats_ = false;
    }

    int paletteSize(std::int64_t at) {
        const Bytes palette = source_->at(at);
        const std::uint32_t first = number(palette, 0), last = number(palette, 4) & 0xFFFF;
        const bool isWithColours = first <= last && last <= 255;
        return 8 + (isWithColours ? 8 * static_cast<int>(last - first + 1) : 0);
    }

    void addTable(std::string_view box, std::int64_t at) {
        const Bytes table = source_->at(at);
        // FFmpeg reads on beyond the box, up to the end of the file.
        const std::int64_t stated = number(table, 4), count = std::min(stated, rest(at) / 4);
        if (stated > count && stated > mostNotThere)
            return refuse();
        count_ += static_cast<double>(count);
        if (box == "stts" && count == 1 && number(table, 12) == 1)
            track_.hasUnitTimes = true;
        else if (box == "stts" || box == "ctts")
            track_.isOtherwise = true;
        else if (box == "stco" || box == "co64")
            track_.chunks += static_cast<double>(count);
        else if (box == "stsc" && isWithin())
            for (std::int64_t i = 0; i < count; ++i)
                track_.mostOfChunk =
                    std::max<double>(track_.mostOfChunk, number(source_->at(at + 8 + 12 * i), 4));
    }

    void addOther(std::string_view box, std::int64_t at, std::int64_t end) {
        const Bytes table = source_->at(at);
        if (box == "trun")
            count_ += number(table, 4);
        else if (box == "elst")
            track_.edits += static_cast<double>((end - at - 8) / (table[0] == 1 ? 20 : 12));
        else if (box == "hdlr")
            addHandler({table.data() + 8, 4});
        else if (isOneOf(box, "keyssgpdiinfiloc"))
            checkUnlisted(box, at);
        else
            addSamples(table, box == "stz2", rest(at));
    }

    void addSamples(const Bytes& table, bool isCompact, std::int64_t rest) {
        const bool isListed = isCompact || number(table, 4) == 0;
        const double count = number(table, 8), bits = isCompact ? table[7] : 32;
        // FFmpeg takes no list that goes beyond the end of the file.
        if (!isListed || count * bits / 8 <= static_cast<double>(rest))
            track_.samples += count;
        else if (count > mostNotThere)
            refuse();
    }

    /// Counts of what takes no entries of the index, but memory as well.
    static int countOffset(std::string_view box, int version) {
        if (box == "sgpd")
            return 8 + 4 * std::min(version, 2);
        return box == "iloc" ? 6 : 4;
    }
    void checkUnlisted(std::string_view box, std::int64_t at) {
        const int version = static_cast<std::uint8_t>(source_->at(at)[0]);
        const bool isShort = (box == "iinf" && version == 0) || (box == "iloc" && version < 2);
        const Bytes count = source_->at(at + countOffset(box, version));
        if (!isShort && number(count, 0) > mostNotThere)
            refuse();
    }

    void addHandler(std::string_view handler) {
        track_.isSound |= handler == "soun";
        track_.isOtherwise |= isOneOf(handler, "videsubpclcp");
    }

    /// The head of a movie that zlib has folded: once a file, and at most 64 MB.
    void unfold(std::int64_t at, std::int64_t end, int depth) {
        constexpr std::int64_t most = 64 << 20, mostOfByte = 1032, head = 24;
        const std::int64_t foldedSize = end - at - head;
        const std::int64_t size = number(source_->at(at + head - 4), 0);
        if (std::exchange(isUnfolded_, true) || isInTrack_ || foldedSize < 0 || foldedSize > most ||
            size > std::min(most, foldedSize * mostOfByte))
            return refuse();
        std::string folded(static_cast<std::size_t>(foldedSize), '\0');
        std::string bytes(static_cast<std::size_t>(size), '\0');
        source_->copy(at + head, folded.data(), folded.size());
        uLongf length = bytes.size();
        if (uncompress(reinterpret_cast<Bytef*>(bytes.data()), &length,
                       reinterpret_cast<const Bytef*>(folded.data()), folded.size()) != Z_OK)
            return refuse();
        bytes.resize(length);
        BufferedBytes unfolded(std::move(bytes));
        BufferedBytes* const outer = std::exchange(source_, &unfolded);
        walk(0, unfolded.size(), depth);
        source_ = outer;
    }

    std::int64_t rest(std::int64_t at) const {
        return std::max<std::int64_t>(source_->size() - at, 0);
    }

    BufferedBytes file_;
    BufferedBytes* source_ = &file_;
    Track track_;
    bool isInTrack_ = false, isInFormats_ = false, isUnfolded_ = false;
    double count_ = 0;
};

} // namespace

bool samplesFit(int file, std::int64_t size) { return EntryCount(file, size).fits(); }

} // namespace zorvan::avfoundation
