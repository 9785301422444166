#pragma once

#include <string>
#include <string_view>

struct AVFormatContext;

namespace zorvan::avfoundation {

/// Of the date that a container states for itself, and of any date in a container that has but one
/// place for it.
inline constexpr std::string_view containerDateIdentifier = "common/creationDate";

/// How the names that FFmpeg gives to metadata are told as identifiers, by the container they came
/// from. FFmpeg does not tell all places apart: what it calls "location" in an ISO file is taken
/// for user data, "date" there for the text of a media library.
class MetadataNames {
public:
    explicit MetadataNames(const AVFormatContext& input);

    std::string identifier(std::string_view name) const;
    /// Whether it tells of the format of the file rather than of what is in it.
    static bool isOfFileFormat(std::string_view name) noexcept;

private:
    enum class Family { quickTime, iso, other };

    Family family_ = Family::other;
    std::string_view container_;
};

} // namespace zorvan::avfoundation
