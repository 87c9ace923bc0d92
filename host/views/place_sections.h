// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/columns.h"
#include "host/machine/cards.h"

namespace pciinfo {

/// Adds rows for a card: its text stands in the first, behind its address, and further addresses in
/// further rows. `row` has the other cells of the first.
void AddCard(std::vector<Row>& rows, Row row, std::size_t addressCell, const Card& card);

/// Writes parts of a view under titles, with an empty line between them. Parts without content are
/// left out.
class PlaceSections final {
 public:
  /// All of them must outlive it.
  PlaceSections(Output& output, const MachineModel& machine, const Terminal& terminal);

  /// An empty title is left out.
  void WriteTable(const std::string& title, const std::vector<Column>& columns,
                  const std::vector<Row>& rows);
  /// Writes cards with their addresses. Bridges and parts of the chip set are left out.
  void WriteCards(const std::string& title, FunctionList functions);
  /// Writes what sits in one of several slots.
  void WriteShared();
  /// Writes the cards of which the place is unknown, by the reason.
  void WriteUnknown();
  void WriteSentences(const std::string& title, const std::vector<std::string>& sentences);

 private:
  void WriteTitle(const std::string& title);

  Output& output_;
  const MachineModel& machine_;
  const Terminal& terminal_;
  bool isStarted_ = false;
};

}  // namespace pciinfo
