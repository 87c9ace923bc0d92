#pragma once

#include <string>

#include "usage/usage.h"

namespace pciinfo {

/// What a manual page says beside the definitions of the options.
struct ManualText {
  std::string version;
  std::string date;      ///< 2026-11-21
  std::string sections;  ///< in the man macros; stands at the end
};

/// The manual page of section 1, in the man macros.
std::string ManualPage(const Usage& usage, const ManualText& text);

// Completions of the shells: commands, options, choices, classes, and files where files are meant.

std::string BashCompletion(const Usage& usage);
std::string FishCompletion(const Usage& usage);
std::string ZshCompletion(const Usage& usage);

}  // namespace pciinfo
