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

/// Makes a run begin at `location`, and gives its index; at the end of the text, the count of runs.
std::size_t NSAttributedString::splitAt(std::size_t location) {
    const auto run = runHolding(runs_, location);
    const auto index = static_cast<std::size_t>(run - runs_.begin());
    if (run == runs_.end() || run->range.location == location)
        return index;
    Run rest{{location, run->range.end() - location}, run->attributes};
    run->range.length = location - run->range.location;
    runs_.insert(runs_.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(rest));
    return index + 1;
}

/// Joins neighbours that are alike, drops empty runs, and lays the rest end to end.
void NSAttributedString::mergeRuns() {
    std::vector<Run> merged;
    std::size_t location = 0;
    for (Run& run : runs_) {
        if (run.range.length == 0)
            continue;
        if (!merged.empty() && merged.back().attributes == run.attributes)
            merged.back().range.length += run.range.length;
        else
            merged.push_back({{location, run.range.length}, std::move(run.attributes)});
        location += run.range.length;
    }
    runs_ = std::move(merged);
}

/// The same for the runs from one to before another, whose lengths stay, and their neighbours.
void NSAttributedString::mergeRuns(std::size_t first, std::size_t last) {
    auto kept = runs_.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(first, 1) - 1);
    const auto end = runs_.begin() + static_cast<std::ptrdiff_t>(std::min(last + 1, runs_.size()));
    for (auto run = kept + 1; run < end; ++run)
        if (kept->attributes == run->attributes)
            kept->range.length += run->range.length;
        else if (++kept != run)
            *kept = std::move(*run);
    runs_.erase(kept + 1, end);
}

void NSAttributedString::replace(NSRange range, const NSAttributedString& replacement) {
    require(range);
    std::vector<Run> inserted = replacement.runs_; // a copy: the replacement may be this text
    const std::size_t first = splitAt(range.location);
    const std::size_t last = splitAt(range.end());
    text_.replace(range.location, range.length, std::u16string(replacement.text_));
    const auto begin = runs_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto after = runs_.erase(begin, runs_.begin() + static_cast<std::ptrdiff_t>(last));
    runs_.insert(after, std::make_move_iterator(inserted.begin()),
                 std::make_move_iterator(inserted.end()));
    mergeRuns();
}

template <class Edit>
void NSAttributedString::editAttributes(NSRange range, Edit edit) {
    require(range);
    if (range.length == 0)
        return;
    const std::size_t first = splitAt(range.location);
    const std::size_t last = splitAt(range.end());
    for (std::size_t i = first; i < last; ++i)
        edit(runs_[i].attributes);
    mergeRuns(first, last);
}

void NSMutableAttributedString::append(const NSAttributedString& text) {
    // Only the seam can join, so a text built piece by piece takes linear time.
    const std::size_t offset = length();
    const std::vector<Run> added = text.runs_; // a copy: the appended text may be this one
    text_ += std::u16string(text.text_);
    for (const Run& run : added) {
        if (!runs_.empty() && runs_.back().attributes == run.attributes)
            runs_.back().range.length += run.range.length;
        else
            runs_.push_back({{offset + run.range.location, run.range.length}, run.attributes});
    }
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
    // A copy: the dictionary may be that of a run, which moves while runs are split.
    editAttributes(range, [added = attributes](AttributeDictionary& present) {
        for (const auto& [name, value] : added)
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
    editAttributes(range,
                   [wanted = attributes](AttributeDictionary& present) { present = wanted; });
}

} // namespace zorvan
