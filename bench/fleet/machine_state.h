// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "bench/fleet/catalogue.h"

namespace bench {

/// Which fleet is made.
struct FleetPlan {
  std::uint64_t seed = 1;
  std::size_t functions = 200;    ///< of each machine
  unsigned week = 0;              ///< how long after the first collection
  unsigned changedPerMille = 30;  ///< of the machines in a week
};

/// A card in a slot or a drive in a bay.
struct InstalledCard {
  std::size_t model = 0;  ///< its place in CardModels()
  unsigned firmware = 0;  ///< grows with each update
  std::uint64_t serial = 0;
  bool isNarrow = false;  ///< its link has half of its lanes
  bool hasDriver = true;
  unsigned errors = 0;  ///< corrected ones

  friend bool operator==(const InstalledCard&, const InstalledCard&) = default;
};

/// The fewest and the most functions that each machine can have.
inline constexpr std::size_t kFewestFunctions = 160;
inline constexpr std::size_t kMostFunctions = 2000;
/// Host bridges and the chip set.
inline constexpr std::size_t kBoardFunctions = 6;

/// What is in one machine of the fleet.
struct MachineState {
  std::size_t number = 0;
  std::size_t kind = 0;                              ///< its place in MachineKinds()
  unsigned bios = 0;                                 ///< grows with each update
  bool isReadable = true;                            ///< everything could be collected
  std::vector<std::optional<InstalledCard>> places;  ///< the slots, then the bays
  std::size_t processorDevices = 0;                  ///< functions of the processors themselves

  const MachineKind& Kind() const { return MachineKinds()[kind]; }
  /// The functions outside the processors.
  std::size_t OtherFunctions() const;

  friend bool operator==(const MachineState&, const MachineState&) = default;
};

/// Returns the state of a machine in the week of the plan. Throws std::invalid_argument for a
/// number of functions that is not possible.
MachineState StateOf(const FleetPlan& plan, std::size_t number);

}  // namespace bench
