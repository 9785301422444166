#pragma once

#include <zorvan/platform/textservices/Range.h>
#include <zorvan/platform/textservices/TextAttributes.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

/// Text whose parts carry attributes: a value, equal to another when text and attributes are.
///
/// Lengths and ranges count UTF-16 units, which is how the text is kept: bytes that are not UTF-8
/// become U+FFFD on the way in, lone surrogates on the way out. A range that reaches outside the
/// text stops the program with "Range is out of bounds" and both.
class NSAttributedString {
public:
    /// A stretch of text with the same attributes.
    struct Run {
        NSRange range;                  ///< In UTF-16 units.
        AttributeDictionary attributes; ///< Of every unit in it.

        friend bool operator==(const Run&, const Run&) = default;
    };

    /// No text.
    NSAttributedString() noexcept;
    /// The text, all of it with those attributes.
    /// @{
    explicit NSAttributedString(std::string_view text, AttributeDictionary attributes = {});
    explicit NSAttributedString(std::u16string text, AttributeDictionary attributes = {});
    /// @}
    /// A text of its own.
    /// @{
    NSAttributedString(const NSAttributedString& other);
    NSAttributedString(NSAttributedString&& other) noexcept;
    NSAttributedString& operator=(const NSAttributedString& other);
    NSAttributedString& operator=(NSAttributedString&& other) noexcept;
    /// @}
    ~NSAttributedString();

    /// How many UTF-16 units there are.
    std::size_t length() const noexcept { return text_.size(); }
    /// The text as it is kept.
    /// @{
    const std::u16string& utf16() const& noexcept { return text_; }
    std::u16string utf16() && noexcept { return std::move(text_); }
    /// @}

    /// The text alone.
    std::string string() const;

    /// The runs, first to last; they cover the text, none is empty, neighbours differ.
    /// @{
    const std::vector<Run>& runs() const& noexcept { return runs_; }
    std::vector<Run> runs() && noexcept;
    /// @}

    /// The run that holds the unit at `location`, which must lie inside the text.
    /// @{
    const Run& runAt(std::size_t location) const&;
    Run runAt(std::size_t location) &&;
    /// @}

    /// The text in the range with its attributes.
    NSAttributedString attributedSubstring(NSRange range) const;

    friend bool operator==(const NSAttributedString&, const NSAttributedString&) = default;

protected:
    /// For text that can be edited.
    /// @{
    void replace(NSRange range, const NSAttributedString& replacement);
    template <class Edit>
    void editAttributes(NSRange range, Edit edit);
    /// @}

private:
    struct RunIndexes {
        std::size_t first, end;
    };

    void require(NSRange range) const;
    RunIndexes runsTouching(NSRange range) const;
    void makeRoomFor(std::size_t count);
    std::vector<Run>::iterator putRuns(RunIndexes old, std::vector<Run> runs) noexcept;

    friend class NSMutableAttributedString;

    std::u16string text_;
    std::vector<Run> runs_;
};

/// Attributed text that can be edited in place. An edit that finds no memory throws
/// `std::bad_alloc` and changes nothing.
class NSMutableAttributedString : public NSAttributedString {
public:
    /// As there.
    using NSAttributedString::NSAttributedString;
    /// A copy that can be edited.
    explicit NSMutableAttributedString(const NSAttributedString& text) : NSAttributedString(text) {}

    /// With its own attributes.
    void append(const NSAttributedString& text);

    /// The new text takes the attributes of the first unit replaced; where the range is empty,
    /// those of the unit before it, or else of the one after it.
    void replaceCharacters(NSRange range, std::string_view text);
    /// The new text keeps its own attributes.
    void replaceCharacters(NSRange range, const NSAttributedString& text);

    /// Adds the attribute, over one of the same name.
    void addAttribute(std::string_view name, const AttributeValue& value, NSRange range);
    /// Adds each attribute, over any of the same name.
    void addAttributes(const AttributeDictionary& attributes, NSRange range);
    /// What has no such attribute is passed over.
    void removeAttribute(std::string_view name, NSRange range);
    /// Replaces all attributes.
    void setAttributes(const AttributeDictionary& attributes, NSRange range);
};

} // namespace zorvan
