#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// File names are bytes that anybody may have chosen. These functions make them fit to be shown.

/// Everything that is no printable character becomes visible: "\n", "\x1B", "\xFF" for a byte that
/// is no UTF-8, "\u202E" for a sign that would turn the text around. A backslash stays as it is.
std::string forDisplay(std::string_view bytes);

/// How many columns of a terminal a text takes that has gone through `forDisplay`.
std::size_t displayWidth(std::string_view text);

/// Takes "…" in the middle of a text that is wider than `width` columns; the end of a file name is
/// worth as much as its beginning.
std::string shortened(std::string_view text, std::size_t width);

/// Fills up with spaces to `width` columns.
std::string padded(std::string text, std::size_t width);

/// Whether `a` comes before `b` for people: numbers by value, letters without regard to their case,
/// a folder's content right after its name.
bool comesBefore(std::string_view a, std::string_view b);
