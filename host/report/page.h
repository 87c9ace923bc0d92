// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/console/output.h"
#include "host/report/reported_machine.h"

namespace pciinfo {

/// Writes a machine as one page of HTML that loads nothing: the drawing, what `check` finds,
/// what is in doubt, and tables of the slots and functions. Its script adds a search and details of
/// what is selected; the page can be read without it. No text of the machine can become markup or
/// script, and the page's Content-Security-Policy admits no other script than its own. `origin`
/// says where the data is from.
void WritePage(Output& output, const ReportedMachine& machine, const std::string& origin);

}  // namespace pciinfo
