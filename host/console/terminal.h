// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace pciinfo {

/// What the views may use where they are shown: width, colours, characters, pager. Made once, at
/// the start.
struct Terminal {
  std::optional<std::size_t> width;  ///< in columns; no value: lines are not cut
  bool colour = false;
  bool unicode = false;              ///< whether non-ASCII characters may be used to draw
  std::optional<std::string> pager;  ///< the command that shows long output
};

/// What the user asked for on the command line.
struct TerminalWishes {
  std::string color = "auto";  ///< or "always" or "never"
  bool pager = true;
};

/// The value of an environment variable; null when it is not set.
using Environment = std::function<const char*(const char* name)>;

/// What is known of standard output.
struct OutputFacts {
  bool isTerminal = false;
  std::size_t columns = 0;  ///< reported by the terminal; 0 if it reports none
};

/// Decides what the views may use. Only a terminal has a width and a pager. With colour "auto",
/// only a terminal has colours, unless NO_COLOR is set or TERM is "dumb". The locale decides about
/// Unicode.
Terminal MakeTerminal(const OutputFacts& facts, const Environment& environment,
                      const TerminalWishes& wishes);

/// MakeTerminal for the standard output and the environment of this process.
Terminal StandardTerminal(const TerminalWishes& wishes);

enum class Colour { kNone, kBold, kFaint, kGreen, kYellow, kCyan };

/// Returns `text` in a colour if the terminal shows colours, else `text` itself.
std::string Coloured(std::string_view text, Colour colour, const Terminal& terminal);

}  // namespace pciinfo
