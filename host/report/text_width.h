// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pciinfo {

// The drawing is laid out before it is known which fonts its reader has. So texts are measured with
// the widths of DejaVu Sans, one of the widest fonts for screens, and have room in narrower ones.

enum class Face { kSans, kBold, kMono };

struct Font {
  Face face = Face::kSans;
  double size = 13;  ///< in pixels
};

/// Returns the width of a printable text in pixels.
double TextWidth(std::string_view utf8, const Font& font);

/// Whether a text has characters of which no width is known, so that TextWidth only guesses.
bool IsWidthGuessed(std::string_view utf8);

/// Returns `utf8` if it fits into `width` pixels, else its beginning and its end with an ellipsis
/// between them.
std::string ShortenedTo(std::string_view utf8, double width, const Font& font);

/// Breaks a text between words into at most `most` lines of `width` pixels. What does not fit into
/// the last one is shortened in its middle.
std::vector<std::string> BrokenInto(std::size_t most, std::string_view utf8, double width,
                                    const Font& font);

}  // namespace pciinfo
