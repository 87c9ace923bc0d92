// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/console/output.h"
#include "host/report/reported_machine.h"

namespace pciinfo {

// A page of several machines is put together from parts. Each machine writes its part in a process
// of its own; a part is markup already, and only the process that made it can have written it.

/// Writes the part of a machine: a row of the index, a form feed, which no text on a page can
/// contain, and the machine itself. `place` is its place among the machines.
void WriteMachinePart(Output& output, const ReportedMachine& machine, const std::string& origin,
                      std::size_t place);

/// A machine of a page of several.
struct MachineOnPage {
  std::string origin;               ///< "server.tar.zst"
  std::optional<std::string> part;  ///< what WriteMachinePart wrote; empty if it could not be read
};

/// Writes a page of several machines: an index with a line for each, and each machine.
/// `differences` are the lines of `pciinfo diff` for two machines.
void WriteMachinesPage(Output& output, const std::vector<MachineOnPage>& machines,
                       const std::optional<std::string>& differences);

}  // namespace pciinfo
