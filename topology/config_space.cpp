// SPDX-License-Identifier: Apache-2.0
#include "topology/config_space.h"

#include <linux/pci_regs.h>

#include <bitset>

namespace topology {
namespace {

constexpr std::size_t kHeaderSize = 0x40;

}  // namespace

std::optional<std::uint8_t> ConfigSpace::Byte(std::size_t offset) const noexcept {
  if (offset >= bytes_.size()) return std::nullopt;
  return static_cast<std::uint8_t>(At(offset));
}

std::optional<std::uint16_t> ConfigSpace::Word(std::size_t offset) const noexcept {
  if (bytes_.size() < 2 || offset > bytes_.size() - 2) return std::nullopt;
  return static_cast<std::uint16_t>(At(offset) | At(offset + 1) << 8);
}

std::optional<std::uint32_t> ConfigSpace::Dword(std::size_t offset) const noexcept {
  if (bytes_.size() < 4 || offset > bytes_.size() - 4) return std::nullopt;
  return At(offset) | At(offset + 1) << 8 | At(offset + 2) << 16 | At(offset + 3) << 24;
}

std::vector<Capability> ConfigSpace::GetCapabilities() const {
  std::vector<Capability> found;
  if ((Word(PCI_STATUS).value_or(0) & PCI_STATUS_CAP_LIST) == 0) return found;
  const bool isCardBus =
      (Byte(PCI_HEADER_TYPE).value_or(0) & PCI_HEADER_TYPE_MASK) == PCI_HEADER_TYPE_CARDBUS;
  std::size_t offset = Byte(isCardBus ? PCI_CB_CAPABILITY_LIST : PCI_CAPABILITY_LIST).value_or(0);
  std::bitset<kConventionalSize> seen;
  // The two low bits of a pointer are reserved.
  for (offset &= 0xFC; offset >= kHeaderSize && !seen[offset];) {
    seen[offset] = true;
    const auto id = Byte(offset + PCI_CAP_LIST_ID);
    const auto next = Byte(offset + PCI_CAP_LIST_NEXT);
    // A function that does not answer any more reads as ones.
    if (!id || !next || *id == 0xFF) break;
    found.push_back({*id, static_cast<std::uint16_t>(offset)});
    offset = *next & 0xFC;
  }
  return found;
}

std::vector<Capability> ConfigSpace::GetExtendedCapabilities() const {
  std::vector<Capability> found;
  std::bitset<kExtendedSize> seen;
  for (std::size_t offset = kConventionalSize; offset >= kConventionalSize && !seen[offset];) {
    seen[offset] = true;
    const auto header = Dword(offset);
    if (!header || *header == 0 || *header == 0xFFFFFFFF) break;
    found.push_back(
        {static_cast<std::uint16_t>(PCI_EXT_CAP_ID(*header)), static_cast<std::uint16_t>(offset)});
    offset = PCI_EXT_CAP_NEXT(*header);
  }
  return found;
}

std::optional<std::uint16_t> FindCapability(const std::vector<Capability>& list, std::uint16_t id) {
  for (const Capability& capability : list) {
    if (capability.id == id) return capability.offset;
  }
  return std::nullopt;
}

}  // namespace topology
