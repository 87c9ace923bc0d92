// SPDX-License-Identifier: Apache-2.0
#include "topology/extended_facts.h"

#include <linux/pci_regs.h>

#include <array>
#include <cstdio>

namespace topology {
namespace {

// PCI Express 5.0, 7.9.3; pci_regs.h names no offsets.
constexpr std::size_t kSerialLow = 4;
constexpr std::size_t kSerialHigh = 8;

std::optional<std::uint64_t> DecodeSerialNumber(const ConfigSpace& config, std::size_t at) {
  const auto low = config.Dword(at + kSerialLow);
  const auto high = config.Dword(at + kSerialHigh);
  if (!low || !high) return std::nullopt;
  return std::uint64_t{*high} << 32 | *low;
}

std::optional<std::uint8_t> DecodeNextFunction(const ConfigSpace& config, std::size_t at) {
  const auto capability = config.Word(at + PCI_ARI_CAP);
  if (!capability) return std::nullopt;
  return static_cast<std::uint8_t>(PCI_ARI_CAP_NFN(*capability));
}

void DecodeCapability(const ConfigSpace& config, const Capability& capability,
                      ExtendedFacts& facts) {
  switch (capability.id) {
    case PCI_EXT_CAP_ID_DSN:
      facts.serialNumber = DecodeSerialNumber(config, capability.offset);
      break;
    case PCI_EXT_CAP_ID_ARI:
      facts.nextFunction = DecodeNextFunction(config, capability.offset);
      break;
    case PCI_EXT_CAP_ID_SRIOV:
      facts.virtualFunctions = DecodeVirtualFunctions(config, capability.offset);
      break;
    case PCI_EXT_CAP_ID_ERR:
      facts.errors = DecodeErrorStatus(config, capability.offset);
      break;
    case PCI_EXT_CAP_ID_REBAR:
      facts.resizable = DecodeResizableRegions(config, capability.offset);
      break;
    default:
      break;
  }
}

}  // namespace

ExtendedFacts DecodeExtended(const ConfigSpace& config) {
  ExtendedFacts facts;
  facts.known = config.GetSize() > kConventionalSize;
  for (const Capability& capability : config.GetExtendedCapabilities()) {
    DecodeCapability(config, capability, facts);
  }
  return facts;
}

std::string SerialText(std::uint64_t number) {
  std::string text;
  for (int shift = 56; shift >= 0; shift -= 8) {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x",
                  static_cast<unsigned>(number >> shift & 0xFF));
    text += (text.empty() ? "" : "-") + std::string(digits.data());
  }
  return text;
}

}  // namespace topology
