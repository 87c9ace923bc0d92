#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pciinfo {

/// `bytes` as they may be shown on a terminal, in UTF-8 (see ToUtf8): a tab becomes a blank, and
/// every character that prints nothing, or that could steer the terminal, a '?'.
std::string Printable(std::string_view bytes);

/// Columns that a printable UTF-8 text takes on a terminal: combining marks take none, East Asian
/// wide characters two.
std::size_t DisplayWidth(std::string_view utf8);

/// `utf8` with blanks at its end up to `width` columns.
std::string PadRight(std::string utf8, std::size_t width);

/// `utf8` when it fits into `width` columns, else its beginning and "..." in at most that many.
std::string Cut(std::string_view utf8, std::size_t width);

/// `text` without the blanks at its end.
std::string TrimEnd(std::string_view text);

}  // namespace pciinfo
