#include <zorvan/platform/textservices/NSAttributedString.h>

#include <zorvan/platform/foundation/fatalError.h>
#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace zorvan {

namespace {

using Run = NSAttributedString::Run;

/// The first run that ends after `location`.
template <class Runs>
auto runHolding(Runs& runs, std::size_t location) {
    return std::upper_bound(
        runs.begin(), runs.end(), location,
        [](std::size_t place, const Run& run) { return place < run.range.end(); });
}

/// Adds a run behind others, or lengthens the last when it is alike.
template <class Attributes>
void join(std::vector<Run>& runs, NSRange range, Attributes&& attributes) {
    if (range.length == 0)
        return;
    if (!runs.empty() && runs.back().attributes == attributes)
        runs.back().range.length += range.length;
    else
        runs.push_back({range, std::forward<Attributes>(attributes)});
}

} // namespace

NSAttributedString::NSAttributedString(std::string_view text, AttributeDictionary attributes)
    : NSAttributedString(utf16FromUTF8(text), std::move(attributes)) {}

NSAttributedString::NSAttributedString(std::u16string text, AttributeDictionary attributes)
    : text_(std::move(text)) {
    if (!text_.empty())
        runs_.push_back({{0, text_.size()}, std::move(attributes)});
}

// Here rather than in the header: copying a dictionary of variants costs the compiler much.
NSAttributedString::NSAttributedString() noexcept = default;
NSAttributedString::NSAttributedString(const NSAttributedString& other) = default;
NSAttributedString::NSAttributedString(NSAttributedString&& other) noexcept = default;
NSAttributedString& NSAttributedString::operator=(const NSAttributedString& other) = default;
NSAttributedString& NSAttributedString::operator=(NSAttributedString&& other) noexcept = default;
NSAttributedString::~NSAttributedString() = default;

std::string NSAttributedString::string() const { return utf8FromUTF16(text_); }

std::vector<Run> NSAttributedString::runs() && noexcept { return std::move(runs_); }

const Run& NSAttributedString::runAt(std::size_t location) const& {
    require({location, 1});
    return *runHolding(runs_, location);
}

Run NSAttributedString::runAt(std::size_t location) && { return runAt(location); }

NSAttributedString NSAttributedString::attributedSubstring(NSRange range) const {
    require(range);
    NSAttributedString part;
    part.text_ = text_.substr(range.location, range.length);
    for (auto run = runHolding(runs_, range.location);
         run != runs_.end() && run->range.location < range.end(); ++run) {
        const std::size_t start = std::max(run->range.location, range.location);
        const std::size_t end = std::min(run->range.end(), range.end());
        part.runs_.push_back({{start - range.location, end - start}, run->attributes});
    }
    return part;
}

void NSAttributedString::require(NSRange range) const {
    if (range.location > text_.size() || range.length > text_.size() - range.location)
        fatalError("Range is out of bounds: " + std::to_string(range.length) + " from " +
                   std::to_string(range.location) + " on in a text of " +
                   std::to_string(text_.size()));
}

/// The indexes of the runs that overlap a range or end where it begins, or the other way round.
NSAttributedString::RunIndexes NSAttributedString::runsTouching(NSRange range) const {
    const auto indexOf = [&](auto run) { return static_cast<std::size_t>(run - runs_.begin()); };
    return {range.location == 0 ? 0 : indexOf(runHolding(runs_, range.location - 1)),
            range.end() == length() ? runs_.size() : indexOf(runHolding(runs_, range.end())) + 1};
}

/// Grows as vectors do, so that a text built piece by piece takes linear time.
void NSAttributedString::makeRoomFor(std::size_t count) {
    if (count > runs_.capacity())
        runs_.reserve(std::max(count, 2 * runs_.size()));
}

/// Puts other runs in the place of some, and gives where they end. There must be room.
std::vector<Run>::iterator NSAttributedString::putRuns(RunIndexes old,
                                                       std::vector<Run> runs) noexcept {
    const auto at = [](auto& all, std::size_t index) {
        return all.begin() + static_cast<std::ptrdiff_t>(index);
    };
    const std::size_t count = std::min(old.end - old.first, runs.size());
    const auto place = std::move(runs.begin(), at(runs, count), at(runs_, old.first));
    if (old.end - old.first > count)
        return runs_.erase(place, at(runs_, old.end));
    const auto rest = runs_.insert(place, std::make_move_iterator(at(runs, count)),
                                   std::make_move_iterator(runs.end()));
    return rest + static_cast<std::ptrdiff_t>(runs.size() - count);
}

void NSAttributedString::replace(NSRange range, const NSAttributedString& replacement) {
    require(range);
    const RunIndexes old = runsTouching(range);
    const std::size_t end = range.location + replacement.length();
    std::vector<Run> runs;
    if (range.location > 0) {
        const Run& before = runs_[old.first];
        const std::size_t start = before.range.location;
        join(runs, {start, range.location - start}, before.attributes);
    }
    for (const auto& [part, attributes] : replacement.runs_)
        join(runs, {range.location + part.location, part.length}, attributes);
    if (range.end() < length()) {
        const Run& after = runs_[old.end - 1];
        join(runs, {end, after.range.end() - range.end()}, after.attributes);
    }
    makeRoomFor(runs_.size() + runs.size());
    text_.replace(range.location, range.length, replacement.text_);
    for (auto run = putRuns(old, std::move(runs)); run != runs_.end(); ++run)
        run->range.location += end - range.end();
}

/// The runs are not touched before all are edited: what an edit refers to may be in one.
template <class Edit>
void NSAttributedString::editAttributes(NSRange range, Edit edit) {
    require(range);
    if (range.length == 0)
        return;
    const RunIndexes old = runsTouching(range);
    std::vector<Run> runs;
    for (std::size_t i = old.first; i < old.end; ++i) {
        const auto& [whole, attributes] = runs_[i];
        const std::size_t start = std::clamp(range.location, whole.location, whole.end());
        const std::size_t end = std::clamp(range.end(), whole.location, whole.end());
        join(runs, {whole.location, start - whole.location}, attributes);
        AttributeDictionary edited = attributes;
        edit(edited);
        join(runs, {start, end - start}, std::move(edited));
        join(runs, {end, whole.end() - end}, attributes);
    }
    makeRoomFor(runs_.size() + runs.size());
    putRuns(old, std::move(runs));
}

void NSMutableAttributedString::append(const NSAttributedString& text) {
    replace({length(), 0}, text);
}

void NSMutableAttributedString::replaceCharacters(NSRange range, std::string_view text) {
    require(range);
    AttributeDictionary attributes;
    if (length() > 0) {
        const bool insertsAfterOther = range.length == 0 && range.location > 0;
        attributes = runAt(insertsAfterOther ? range.location - 1 : range.location).attributes;
    }
    replace(range, NSAttributedString(text, std::move(attributes)));
}

void NSMutableAttributedString::replaceCharacters(NSRange range, const NSAttributedString& text) {
    replace(range, text);
}

void NSMutableAttributedString::addAttribute(std::string_view name, const AttributeValue& value,
                                             NSRange range) {
    addAttributes({{std::string(name), value}}, range);
}

void NSMutableAttributedString::addAttributes(const AttributeDictionary& attributes,
                                              NSRange range) {
    editAttributes(range, [&](AttributeDictionary& present) {
        for (const auto& [name, value] : attributes)
            present.insert_or_assign(name, value);
    });
}

void NSMutableAttributedString::removeAttribute(std::string_view name, NSRange range) {
    editAttributes(range, [&](AttributeDictionary& attributes) {
        if (const auto found = attributes.find(name); found != attributes.end())
            attributes.erase(found);
    });
}

void NSMutableAttributedString::setAttributes(const AttributeDictionary& attributes,
                                              NSRange range) {
    editAttributes(range, [&](AttributeDictionary& present) { present = attributes; });
}

} // namespace zorvan
