// What becomes of regions that the published properties have no room for: 32 bits for memory, 16
// for I/O. The plug-in takes a number that is too large for the largest one, which reads as an I/O
// address, for its lowest bit is set.

#include <fmt/format.h>

#include "host/check/checks.h"

namespace pciinfo {
namespace {

constexpr std::uint64_t kMost32 = 0xFFFFFFFF;
constexpr std::uint64_t kMost16 = 0xFFFF;
constexpr std::uint64_t kIoFlag = 1;
constexpr std::uint64_t kIoMask = ~std::uint64_t{3};
constexpr std::uint64_t kMemoryMask = ~std::uint64_t{15};

struct Region {
  std::size_t number;
  std::uint64_t base;  ///< with its flag bits
  std::uint64_t size;
  bool isIo;  ///< as the kernel knows it from elsewhere
};

/// What is the matter with a region; empty when nothing is.
using Judge = std::string (*)(const Region& region);

std::vector<Doubt> JudgeRegions(const CheckFacts& facts, Judge judge) {
  const PublishedIndex published(facts);
  std::vector<Doubt> doubts;
  for (const ListedFunction& line : ListOf(facts)) {
    const PublishedFunction* device = published.Find(line.address);
    // No region of a bridge is published.
    if (device == nullptr || device->function.kind != "device") continue;
    const auto known = facts.functions.find({0, line.address});
    for (std::size_t i = 0; i < kRegions; ++i) {
      if (line.bases[i] == 0) continue;
      const bool isIo = known != facts.functions.end() && known->second.isIo[i];
      const std::string detail = judge({i, line.bases[i], line.sizes[i], isIo});
      if (detail.empty()) continue;
      doubts.push_back({FormatAddress(line.address), device->function.path, detail});
    }
  }
  return doubts;
}

std::string JudgeAddress(const Region& region) {
  if (region.base <= kMost32) return "";
  return fmt::format("region {} at {:#x}", region.number, region.base & kMemoryMask);
}

std::string JudgeSize(const Region& region) {
  if (region.size <= kMost32) return "";
  return fmt::format("region {} of {:#x} bytes", region.number, region.size);
}

std::string JudgeIo(const Region& region) {
  if (region.base > kMost32 || (region.base & kIoFlag) == 0) return "";
  const std::uint64_t address = region.base & kIoMask;
  if (address <= kMost16 && region.size <= kMost16) return "";
  return fmt::format("region {} at {:#x} of {:#x} bytes", region.number, address, region.size);
}

std::string JudgeSpace(const Region& region) {
  if (!region.isIo || (region.base & kIoFlag) != 0) return "";
  return fmt::format("region {} at {:#x}", region.number, region.base & kIoMask);
}

template <Judge judge>
std::vector<Doubt> Judged(const CheckFacts& facts) {
  return JudgeRegions(facts, judge);
}

const std::vector<Check> kRegionChecks = {
    {"region-address-wide", Severity::kError,
     "Memory regions above 4 GiB do not fit into \"MEMAddress\"; they are published as the "
     "\"IOAddress\" 65532, and their sizes as \"IOLength\".",
     "Take addresses and sizes from /sys/bus/pci/devices/*/resource.", &Judged<&JudgeAddress>},
    {"region-size-wide", Severity::kError,
     "Sizes of 4 GiB and more do not fit into 32 bits; they are published as \"MEMLength\" "
     "4294967295, or as \"IOLength\" 65535 where the region lies above 4 GiB too.",
     "Take sizes from /sys/bus/pci/devices/*/resource.", &Judged<&JudgeSize>},
    {"io-region-wide", Severity::kError,
     "I/O addresses or sizes of 64 KiB and more do not fit into 16 bits; their low 16 bits are "
     "published.",
     "Take addresses and sizes from /sys/bus/pci/devices/*/resource.", &Judged<&JudgeIo>},
    {"io-region-as-memory", Severity::kWarning,
     "The kernel's list does not mark these I/O regions as such; they are published as memory.",
     "Take the kind of the region from /sys/bus/pci/devices/*/resource.", &Judged<&JudgeSpace>},
};

}  // namespace

const std::vector<Check>& RegionChecks() { return kRegionChecks; }

}  // namespace pciinfo
