// SPDX-License-Identifier: Apache-2.0

// The checks of regions that do not fit into the published properties: 32 bits for memory, 16 for
// I/O. The plug-in replaces a base address that is too large by the largest 32-bit number,
// whose lowest bit marks the region as I/O.

#include <fmt/format.h>

#include "host/check/class_checks.h"
#include "host/check/facts_index.h"

namespace pciinfo {
namespace {

constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr std::uint64_t kMax16 = 0xFFFF;
constexpr std::uint64_t kIoFlag = 1;
constexpr std::uint64_t kIoMask = ~std::uint64_t{3};
constexpr std::uint64_t kMemoryMask = ~std::uint64_t{15};

struct PublishedRegion {
  std::size_t number;
  std::uint64_t base;  ///< with its flag bits
  std::uint64_t size;
  bool isIo;  ///< according to sysfs
};

/// Describes the problem of a region; empty if it has none.
using RegionTest = std::string (*)(const PublishedRegion& region);

std::vector<AffectedObject> TestRegions(const ClassFacts& facts, RegionTest test) {
  const PublishedIndex published(facts);
  std::vector<AffectedObject> objects;
  for (const ListedFunction& line : ListOf(facts)) {
    const PublishedFunction* device = published.Find(line.address);
    // Regions of bridges are not published.
    if (device == nullptr || device->function.kind != "device") continue;
    const auto known = facts.functions.find({0, line.address});
    for (std::size_t i = 0; i < kRegions; ++i) {
      if (line.bases[i] == 0) continue;
      const bool isIo = known != facts.functions.end() && known->second.isIo[i];
      const std::string detail = test({i, line.bases[i], line.sizes[i], isIo});
      if (detail.empty()) continue;
      objects.push_back({FormatAddress(line.address), device->function.path, detail});
    }
  }
  return objects;
}

std::string WideAddress(const PublishedRegion& region) {
  if (region.base <= kMax32) return "";
  return fmt::format("region {} at {:#x}", region.number, region.base & kMemoryMask);
}

std::string WideSize(const PublishedRegion& region) {
  if (region.size <= kMax32) return "";
  return fmt::format("region {} of {:#x} bytes", region.number, region.size);
}

std::string WideIo(const PublishedRegion& region) {
  if (region.base > kMax32 || (region.base & kIoFlag) == 0) return "";
  const std::uint64_t address = region.base & kIoMask;
  if (address <= kMax16 && region.size <= kMax16) return "";
  return fmt::format("region {} at {:#x} of {:#x} bytes", region.number, address, region.size);
}

std::string UnmarkedIo(const PublishedRegion& region) {
  if (!region.isIo || (region.base & kIoFlag) != 0) return "";
  return fmt::format("region {} at {:#x}", region.number, region.base & kIoMask);
}

template <RegionTest test>
std::vector<AffectedObject> RegionsThatFail(const ClassFacts& facts) {
  return TestRegions(facts, test);
}

const std::vector<ClassCheck> kRegionClassChecks = {
    {"region-address-wide", Severity::kNote,
     "Memory regions above 4 GiB do not fit into \"MEMAddress\"; they are published as "
     "\"IOAddress\" 65532, and their sizes as \"IOLength\".",
     "Take addresses and sizes from /sys/bus/pci/devices/*/resource.",
     &RegionsThatFail<&WideAddress>},
    {"region-size-wide", Severity::kNote,
     "Sizes of 4 GiB and more do not fit into 32 bits; they are published as \"MEMLength\" "
     "4294967295, or as \"IOLength\" 65535 if the region is also above 4 GiB.",
     "Take sizes from /sys/bus/pci/devices/*/resource.", &RegionsThatFail<&WideSize>},
    {"io-region-wide", Severity::kNote,
     "I/O addresses or sizes of 64 KiB and more do not fit into 16 bits; their low 16 bits are "
     "published.",
     "Take addresses and sizes from /sys/bus/pci/devices/*/resource.", &RegionsThatFail<&WideIo>},
    {"io-region-as-memory", Severity::kNote,
     "The kernel's list does not mark these regions as I/O; they are published as memory.",
     "Take the type of the region from /sys/bus/pci/devices/*/resource.",
     &RegionsThatFail<&UnmarkedIo>},
};

}  // namespace

const std::vector<ClassCheck>& RegionClassChecks() { return kRegionClassChecks; }

}  // namespace pciinfo
