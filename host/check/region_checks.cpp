// SPDX-License-Identifier: Apache-2.0

// The check of regions that got no address. Neither expansion ROMs, which drivers do not need, nor
// the windows of bridges and the regions of virtual functions, which are assigned when they are
// used, are looked at.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/check/machine_checks.h"
#include "host/machine/cards.h"

namespace pciinfo {
namespace {

bool IsUnassigned(const Region& region, const char* kind) {
  return region.start == 0 && region.size != 0 && region.kind == kind;
}

bool HasMemory(const std::vector<Region>& regions) {
  return std::any_of(regions.begin(), regions.end(), [](const Region& region) {
    return region.kind == "memory" && region.start != 0;
  });
}

/// Functions with memory seldom need I/O, which is scarce: large machines assign it to few.
std::vector<std::string> MissingRegions(const std::vector<Region>& regions) {
  const bool needsIo = !HasMemory(regions);
  std::vector<std::string> missing;
  for (const Region& region : regions) {
    const bool isMissing =
        IsUnassigned(region, "memory") || (needsIo && IsUnassigned(region, "I/O"));
    if (!isMissing) continue;
    missing.push_back(
        fmt::format("{} region {} of {:#x} bytes", region.kind, region.number, region.size));
  }
  return missing;
}

std::vector<AffectedObject> WithoutAddress(const MachineFacts& facts) {
  std::vector<AffectedObject> objects;
  for (std::size_t i = 0; i < facts.functions.size(); ++i) {
    const MachineFunction& function = facts.machine.functions[i];
    if (IsBridgeOrChipset(function) || function.physicalFunction) continue;
    const std::vector<std::string> missing = MissingRegions(facts.functions[i].regions);
    if (missing.empty()) continue;
    objects.push_back(
        ObjectOf(function, facts.machine, fmt::format("{}", fmt::join(missing, ", "))));
  }
  return objects;
}

const std::vector<MachineCheck> kRegionChecks = {
    {"region-unassigned", Severity::kWarning,
     "These regions got no address, so nothing can use them.",
     "Read what the kernel's log says of \"BAR\" at the start. Allow addresses above 4 GiB in the "
     "setup of the firmware, or update the firmware.",
     &WithoutAddress},
};

}  // namespace

const std::vector<MachineCheck>& RegionChecks() { return kRegionChecks; }

}  // namespace pciinfo
