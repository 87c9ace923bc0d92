// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// Writes the slots, each followed by its functions, and the functions on the board.
void WriteSlotsTable(Output& output, const SlotsModel& model, const Terminal& terminal);

/// Writes the same as JSON, one slot or function per line, without trimming texts. docs/formats.md
/// describes it.
void WriteSlotsJson(Output& output, const SlotsModel& model);

}  // namespace pciinfo
