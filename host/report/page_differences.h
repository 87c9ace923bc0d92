// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/report/markup.h"

namespace pciinfo {

/// Writes the section of what differs between two machines, made of the lines of `pciinfo diff`:
/// the sign at the beginning of a line ("+", "-", "~") becomes a word and a colour, indented lines
/// belong to the line above them.
void WriteDifferences(Markup& markup, const std::string& lines);

}  // namespace pciinfo
