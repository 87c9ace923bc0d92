// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/report/markup.h"
#include "host/report/reported_machine.h"

namespace pciinfo {

/// Returns the name of the system, else what the firmware says of the machine or of its board, else
/// where the data is from.
std::string TitleOf(const Overview& overview, std::string origin);

/// Writes what is known of the whole machine.
void WriteFactList(Markup& markup, const Overview& overview);

/// Writes the drawing of a machine, the findings, what is in doubt, and the tables. All ids begin
/// with `prefix`.
void WriteMachine(Markup& markup, const ReportedMachine& machine, const std::string& prefix);

}  // namespace pciinfo
