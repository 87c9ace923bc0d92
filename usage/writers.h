// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "usage/usage.h"

namespace pciinfo {

/// The content of a manual page that is not in the definitions of the options.
struct ManualText {
  std::string version;
  std::string date;      ///< 2026-11-21
  std::string sections;  ///< in the man macros; the end of the page
};

/// Returns the manual page of section 1, in the man macros.
std::string ManualPage(const Usage& usage, const ManualText& text);

// Shell completions: commands, options, choices, classes and files.

std::string BashCompletion(const Usage& usage);
std::string FishCompletion(const Usage& usage);
std::string ZshCompletion(const Usage& usage);

}  // namespace pciinfo
