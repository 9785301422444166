#pragma once

#include <string>
#include <string_view>

namespace zorvan::internal {

/// The words of a keyed archive.

inline constexpr const char* archiverName = "NSKeyedArchiver";
inline constexpr int archiveVersion = 100000;
inline constexpr const char* archiveNull = "$null"; // the object of number 0

inline constexpr const char* classKey = "$class";         // of an object: its class
inline constexpr const char* classNameKey = "$classname"; // of a class
inline constexpr const char* classesKey = "$classes";     // of a class: its name and its bases'
inline constexpr const char* keysKey = "NS.keys";
inline constexpr const char* contentsKey = "NS.objects";
inline constexpr const char* urlBaseKey = "NS.base";
inline constexpr const char* urlKey = "NS.relative";

inline constexpr std::string_view baseClass = "NSObject";
inline constexpr std::string_view arrayClass = "NSArray";
inline constexpr std::string_view dictionaryClass = "NSDictionary";
inline constexpr std::string_view urlClass = "NSURL";

/// The key of a field. What begins with "$" is the archive's own; a field's gets one more.
inline std::string archivedKey(std::string_view key) {
    return (key.starts_with('$') ? "$" : "") + std::string(key);
}

} // namespace zorvan::internal
