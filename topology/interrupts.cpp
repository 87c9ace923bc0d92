// SPDX-License-Identifier: Apache-2.0
#include "topology/interrupts.h"

#include <linux/pci_regs.h>

namespace topology {
namespace {

constexpr std::uint8_t kLastPin = 4;

/// Both counts of the MSI capability are powers of two (6.8.1.3).
std::optional<MessageInterrupts> DecodeMsi(const ConfigSpace& config, std::size_t at) {
  const auto flags = config.Word(at + PCI_MSI_FLAGS);
  if (!flags) return std::nullopt;
  MessageInterrupts msi;
  msi.enabled = (*flags & PCI_MSI_FLAGS_ENABLE) != 0;
  msi.vectors = static_cast<std::uint16_t>(1U << ((*flags & PCI_MSI_FLAGS_QMASK) >> 1));
  if (msi.enabled) {
    msi.enabledVectors = static_cast<std::uint16_t>(1U << ((*flags & PCI_MSI_FLAGS_QSIZE) >> 4));
  }
  return msi;
}

/// The size of the table is written less one (6.8.2.3). Enabled is the whole table, as its vectors
/// are masked one by one in memory of the function.
std::optional<MessageInterrupts> DecodeMsix(const ConfigSpace& config, std::size_t at) {
  const auto flags = config.Word(at + PCI_MSIX_FLAGS);
  if (!flags) return std::nullopt;
  MessageInterrupts msix;
  msix.enabled = (*flags & PCI_MSIX_FLAGS_ENABLE) != 0;
  msix.vectors = static_cast<std::uint16_t>((*flags & PCI_MSIX_FLAGS_QSIZE) + 1);
  if (msix.enabled) msix.enabledVectors = msix.vectors;
  return msix;
}

}  // namespace

const char* Interrupts::GetMode() const noexcept {
  if (!capabilitiesKnown) return "";
  if (msix && msix->enabled) return "MSI-X";
  if (msi && msi->enabled) return "MSI";
  return pin != 0 && !pinDisabled ? "INTx" : "none";
}

Interrupts DecodeInterrupts(const ConfigSpace& config) {
  Interrupts interrupts;
  const std::uint8_t pin = config.Byte(PCI_INTERRUPT_PIN).value_or(0);
  interrupts.pin = pin <= kLastPin ? pin : std::uint8_t{0};
  interrupts.pinDisabled = (config.Word(PCI_COMMAND).value_or(0) & PCI_COMMAND_INTX_DISABLE) != 0;
  interrupts.capabilitiesKnown = config.HoldsCapabilities();
  const std::vector<Capability> capabilities = config.GetCapabilities();
  if (const auto at = FindCapability(capabilities, PCI_CAP_ID_MSI)) {
    interrupts.msi = DecodeMsi(config, *at);
  }
  if (const auto at = FindCapability(capabilities, PCI_CAP_ID_MSIX)) {
    interrupts.msix = DecodeMsix(config, *at);
  }
  return interrupts;
}

}  // namespace topology
