// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pciinfo {

/// Returns `bytes` as UTF-8 (see ToUtf8) that is safe to show on a terminal: a tab becomes a space,
/// any other unsafe character (see IsUnsafe) '?'.
std::string Printable(std::string_view bytes);

/// Number of columns that a printable UTF-8 text takes on a terminal: a combining mark takes none,
/// an East Asian wide character two.
std::size_t DisplayWidth(std::string_view utf8);

/// Returns `utf8` padded with spaces at its end to `width` columns.
std::string PadRight(std::string utf8, std::size_t width);

/// Returns `utf8` if it fits into `width` columns, else its beginning and "..." within `width`
/// columns.
std::string Cut(std::string_view utf8, std::size_t width);

/// Cuts text to a width and marks the cut with an ellipsis in the middle, so that its beginning and
/// its end stay.
std::string CutMiddle(std::string_view utf8, std::size_t width);

/// Returns `text` without trailing spaces.
std::string TrimEnd(std::string_view text);

}  // namespace pciinfo
