// SPDX-License-Identifier: Apache-2.0
#include "host/console/terminal.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>

namespace pciinfo {
namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kLeastWidth = 40;  // in less, columns are cut until nothing can be read

std::string_view ValueOf(const Environment& environment, const char* name) {
  const char* value = environment(name);
  return value == nullptr ? std::string_view() : value;
}

/// The locale for characters: the first variable that is set and not empty, in the C library's
/// order.
std::string_view LocaleOf(const Environment& environment) {
  for (const char* name : {"LC_ALL", "LC_CTYPE"}) {
    const std::string_view value = ValueOf(environment, name);
    if (!value.empty()) return value;
  }
  return ValueOf(environment, "LANG");
}

bool IsUnicode(std::string_view locale) {
  std::string plain;
  for (const char c : locale) {
    if (c != '-') plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return plain.find("utf8") != std::string::npos;
}

/// A terminal that moves no cursor and has no colours, or one of which nothing is known.
bool IsDumb(const Environment& environment) {
  const std::string_view kind = ValueOf(environment, "TERM");
  return kind.empty() || kind == "dumb";
}

bool HasColour(const OutputFacts& facts, const Environment& environment, const std::string& wish) {
  if (wish != "auto") return wish == "always";
  return facts.isTerminal && ValueOf(environment, "NO_COLOR").empty() && !IsDumb(environment);
}

std::size_t WidthOf(const OutputFacts& facts, const Environment& environment) {
  std::size_t width = facts.columns;
  if (width == 0) {
    const std::string_view columns = ValueOf(environment, "COLUMNS");
    std::from_chars(columns.data(), columns.data() + columns.size(), width);
  }
  return std::max(width == 0 ? kUsualWidth : width, kLeastWidth);
}

/// The pager command. An empty command and `cat` mean no pager. Pagers need a cursor to move.
std::optional<std::string> PagerOf(const Environment& environment) {
  if (IsDumb(environment)) return std::nullopt;
  std::string pager = "less";
  for (const char* name : {"PCIINFO_PAGER", "PAGER"}) {
    if (const char* value = environment(name)) {
      pager = value;
      break;
    }
  }
  if (pager.empty() || pager == "cat") return std::nullopt;
  return pager;
}

const char* CodeOf(Colour colour) {
  switch (colour) {
    case Colour::kBold:
      return "1";
    case Colour::kFaint:
      return "2";
    case Colour::kGreen:
      return "32";
    case Colour::kYellow:
      return "33";
    case Colour::kCyan:
      return "36";
    case Colour::kNone:
      break;
  }
  return "0";
}

}  // namespace

Terminal MakeTerminal(const OutputFacts& facts, const Environment& environment,
                      const TerminalWishes& wishes) {
  Terminal terminal;
  terminal.colour = HasColour(facts, environment, wishes.color);
  terminal.unicode = IsUnicode(LocaleOf(environment));
  if (!facts.isTerminal) return terminal;
  terminal.width = WidthOf(facts, environment);
  if (wishes.pager) terminal.pager = PagerOf(environment);
  return terminal;
}

Terminal StandardTerminal(const TerminalWishes& wishes) {
  OutputFacts facts;
  facts.isTerminal = isatty(STDOUT_FILENO) != 0;
  winsize size{};
  if (facts.isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) facts.columns = size.ws_col;
  return MakeTerminal(
      facts, [](const char* name) { return std::getenv(name); }, wishes);
}

std::string Coloured(std::string_view text, Colour colour, const Terminal& terminal) {
  if (!terminal.colour || colour == Colour::kNone || text.empty()) return std::string(text);
  return fmt::format("\x1B[{}m{}\x1B[0m", CodeOf(colour), text);
}

}  // namespace pciinfo
