// SPDX-License-Identifier: Apache-2.0
#include "topology/resizable_regions.h"

#include <linux/pci_regs.h>

#include <algorithm>
#include <array>

namespace topology {
namespace {

constexpr std::size_t kEntrySize = 8;
constexpr std::size_t kMostEntries = 6;
// pci_regs.h has the narrower field of the first edition.
constexpr std::uint32_t kSizeMask = 0x3F00;
constexpr unsigned kSmallest = 20;  ///< 1 MiB as a power of two: size code 0
constexpr unsigned kCodes = 44;     ///< 1 MiB to 8 EiB

/// Bit n: the region can have 2 to the power of (20 + n) bytes. The larger sizes stand in the
/// control register.
std::uint64_t SupportedCodes(std::uint32_t capability, std::uint32_t control) {
  return std::uint64_t{capability >> 4} | std::uint64_t{control >> 16} << 28;
}

ResizableRegion DecodeRegion(std::uint32_t capability, std::uint32_t control) {
  ResizableRegion region;
  region.number = static_cast<std::uint8_t>(control & PCI_REBAR_CTRL_BAR_IDX);
  const unsigned code = (control & kSizeMask) >> PCI_REBAR_CTRL_BAR_SHIFT;
  if (code < kCodes) region.size = std::uint64_t{1} << (kSmallest + code);
  const std::uint64_t codes = SupportedCodes(capability, control);
  for (unsigned n = 0; n < kCodes; ++n) {
    if ((codes >> n & 1) != 0) region.sizes.push_back(std::uint64_t{1} << (kSmallest + n));
  }
  return region;
}

}  // namespace

std::vector<ResizableRegion> DecodeResizableRegions(const ConfigSpace& config, std::size_t at) {
  std::vector<ResizableRegion> regions;
  // The number of entries stands in the first one.
  const std::uint32_t first = config.Dword(at + PCI_REBAR_CTRL).value_or(0);
  const std::size_t count = std::min<std::size_t>(
      kMostEntries, (first & PCI_REBAR_CTRL_NBAR_MASK) >> PCI_REBAR_CTRL_NBAR_SHIFT);
  for (std::size_t i = 0; i < count; ++i) {
    const auto capability = config.Dword(at + i * kEntrySize + PCI_REBAR_CAP);
    const auto control = config.Dword(at + i * kEntrySize + PCI_REBAR_CTRL);
    if (!capability || !control) break;
    regions.push_back(DecodeRegion(*capability, *control));
  }
  return regions;
}

std::string SizeText(std::uint64_t bytes) {
  constexpr std::array<const char*, 5> kUnits{" MiB", " GiB", " TiB", " PiB", " EiB"};
  std::size_t unit = 0;
  std::uint64_t number = bytes >> kSmallest;
  for (; number >= 1024 && unit + 1 < kUnits.size(); ++unit) number >>= 10;
  return std::to_string(number) + kUnits[unit];
}

}  // namespace topology
