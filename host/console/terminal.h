#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace pciinfo {

/// How the views may look where they are read; made once, at the start.
struct Terminal {
  std::optional<std::size_t> width;  ///< columns of a line; no value: lines are never cut
  bool colour = false;
  bool unicode = false;              ///< lines may be drawn with more than ASCII
  std::optional<std::string> pager;  ///< the command that long output goes through
};

/// What the user wants of it.
struct TerminalWishes {
  std::string color = "auto";  ///< or "always" or "never"
  bool pager = true;
};

/// The value of an environment variable; null when it is not set.
using Environment = std::function<const char*(const char* name)>;

/// What standard output is.
struct OutputFacts {
  bool isTerminal = false;
  std::size_t columns = 0;  ///< as the terminal says it; 0 when it does not
};

/// Decides from the facts. Only a terminal has a width and a pager; without wishes only a terminal
/// has colours, unless NO_COLOR is set or TERM is "dumb". The locale decides about Unicode.
Terminal MakeTerminal(const OutputFacts& facts, const Environment& environment,
                      const TerminalWishes& wishes);

/// The same for this process's standard output and environment.
Terminal StandardTerminal(const TerminalWishes& wishes);

enum class Colour { kNone, kBold, kFaint, kGreen, kYellow, kCyan };

/// `text` in a colour, where the terminal shows any.
std::string Coloured(std::string_view text, Colour colour, const Terminal& terminal);

}  // namespace pciinfo
