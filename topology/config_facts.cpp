// SPDX-License-Identifier: Apache-2.0
#include "topology/config_facts.h"

#include <linux/pci_regs.h>

#include <array>
#include <utility>

namespace topology {
namespace {

// Not in older versions of pci_regs.h.
constexpr std::uint16_t kPciePortTypeShift = 4;

Link DecodeLink(std::uint32_t bits) {
  return {static_cast<std::uint8_t>(bits & PCI_EXP_LNKCAP_SLS),
          static_cast<std::uint8_t>((bits & PCI_EXP_LNKCAP_MLW) >> 4)};
}

/// Control bits of equipment that the slot may not have.
void DecodeSlotControl(std::uint32_t capabilities, std::uint16_t control, PortSlot& slot) {
  // The bit turns the power off.
  if ((capabilities & PCI_EXP_SLTCAP_PCP) != 0) {
    slot.powerOn = (control & PCI_EXP_SLTCTL_PCC) == 0;
  }
  if ((capabilities & PCI_EXP_SLTCAP_AIP) != 0) {
    slot.attentionIndicator = static_cast<Indicator>((control & PCI_EXP_SLTCTL_AIC) >> 6);
  }
  if ((capabilities & PCI_EXP_SLTCAP_PIP) != 0) {
    slot.powerIndicator = static_cast<Indicator>((control & PCI_EXP_SLTCTL_PIC) >> 8);
  }
}

PortSlot DecodePortSlot(const ConfigSpace& config, std::size_t at) {
  const std::uint32_t capabilities = config.Dword(at + PCI_EXP_SLTCAP).value_or(0);
  const std::uint16_t status = config.Word(at + PCI_EXP_SLTSTA).value_or(0);
  PortSlot slot;
  DecodeSlotControl(capabilities, config.Word(at + PCI_EXP_SLTCTL).value_or(0), slot);
  slot.physicalNumber = static_cast<std::uint16_t>((capabilities & PCI_EXP_SLTCAP_PSN) >> 19);
  slot.hotPlug = (capabilities & PCI_EXP_SLTCAP_HPC) != 0;
  slot.surprise = (capabilities & PCI_EXP_SLTCAP_HPS) != 0;
  slot.cardPresent = (status & PCI_EXP_SLTSTA_PDS) != 0;
  if ((capabilities & PCI_EXP_SLTCAP_MRLSP) != 0) {
    slot.latchOpen = (status & PCI_EXP_SLTSTA_MRLSS) != 0;
  }
  slot.powerFault = slot.powerOn && (status & PCI_EXP_SLTSTA_PFD) != 0;
  return slot;
}

std::optional<Express> DecodeExpress(const ConfigSpace& config, std::size_t at) {
  const auto flags = config.Word(at + PCI_EXP_FLAGS);
  if (!flags) return std::nullopt;
  Express express;
  express.portType = static_cast<std::uint8_t>((*flags & PCI_EXP_FLAGS_TYPE) >> kPciePortTypeShift);
  if (express.HasLink()) {
    const std::uint16_t status = config.Word(at + PCI_EXP_LNKSTA).value_or(0);
    express.most = DecodeLink(config.Dword(at + PCI_EXP_LNKCAP).value_or(0));
    express.now = DecodeLink(status);
    express.linkActive = (status & PCI_EXP_LNKSTA_DLLLA) != 0;
  }
  // The second control register came with the second version of the capability.
  if (express.LeadsToLink() && (*flags & PCI_EXP_FLAGS_VERS) >= 2) {
    const std::uint16_t control = config.Word(at + PCI_EXP_DEVCTL2).value_or(0);
    express.forwardsRoutingIds = (control & PCI_EXP_DEVCTL2_ARI) != 0;
  }
  if (express.LeadsToLink() && (*flags & PCI_EXP_FLAGS_SLOT) != 0) {
    express.slot = DecodePortSlot(config, at);
  }
  return express;
}

void DecodeBridge(const ConfigSpace& config, ConfigFacts& facts) {
  const auto primary = config.Byte(PCI_PRIMARY_BUS);
  const auto secondary = config.Byte(PCI_SECONDARY_BUS);
  const auto subordinate = config.Byte(PCI_SUBORDINATE_BUS);
  if (primary && secondary && subordinate) facts.bridge = {*primary, *secondary, *subordinate};
}

/// Normal functions hold the subsystem in the header, bridges in a capability (PCI-to-PCI Bridge
/// 1.2, 3.2.5.13), CardBus bridges at places of their own.
void DecodeSubsystem(const ConfigSpace& config, const std::vector<Capability>& capabilities,
                     ConfigFacts& facts) {
  std::optional<std::size_t> at;
  if (facts.headerType == PCI_HEADER_TYPE_NORMAL) at = PCI_SUBSYSTEM_VENDOR_ID;
  if (facts.headerType == PCI_HEADER_TYPE_CARDBUS) {
    facts.subsystemDevice = config.Word(PCI_CB_SUBSYSTEM_ID);
    facts.subsystemVendor = config.Word(PCI_CB_SUBSYSTEM_VENDOR_ID);
  } else if (const auto capability = FindCapability(capabilities, PCI_CAP_ID_SSVID)) {
    at = *capability + PCI_SSVID_VENDOR_ID;
  }
  if (!at) return;
  facts.subsystemVendor = config.Word(*at);
  facts.subsystemDevice = config.Word(*at + 2);
}

}  // namespace

ConfigFacts DecodeConfig(const ConfigSpace& config) {
  ConfigFacts facts;
  facts.vendor = config.Word(PCI_VENDOR_ID).value_or(0xFFFF);
  facts.device = config.Word(PCI_DEVICE_ID).value_or(0xFFFF);
  facts.revision = config.Byte(PCI_REVISION_ID).value_or(0);
  facts.classCode = config.Dword(PCI_CLASS_REVISION).value_or(0) >> 8;
  const std::uint8_t header = config.Byte(PCI_HEADER_TYPE).value_or(0);
  facts.headerType = header & PCI_HEADER_TYPE_MASK;
  facts.multiFunction = (header & ~PCI_HEADER_TYPE_MASK) != 0;
  if (facts.headerType == PCI_HEADER_TYPE_BRIDGE || facts.headerType == PCI_HEADER_TYPE_CARDBUS) {
    DecodeBridge(config, facts);
  }
  const std::vector<Capability> capabilities = config.GetCapabilities();
  DecodeSubsystem(config, capabilities, facts);
  facts.isRead = config.GetSize() != 0;
  facts.interrupts = DecodeInterrupts(config);
  facts.capabilitiesKnown = config.HoldsCapabilities();
  if (!facts.capabilitiesKnown) return facts;
  if (const auto at = FindCapability(capabilities, PCI_CAP_ID_EXP)) {
    facts.express = DecodeExpress(config, *at);
  }
  facts.holdsVitalProductData = FindCapability(capabilities, PCI_CAP_ID_VPD).has_value();
  return facts;
}

std::string SpeedText(std::uint8_t speed) {
  constexpr std::array<const char*, 7> kTexts{"",          "2.5 GT/s",  "5.0 GT/s", "8.0 GT/s",
                                              "16.0 GT/s", "32.0 GT/s", "64.0 GT/s"};
  return speed < kTexts.size() ? kTexts[speed] : "";
}

std::uint32_t TransferRate(std::uint8_t speed) {
  constexpr std::array<std::uint32_t, 7> kRates{0, 2500, 5000, 8000, 16000, 32000, 64000};
  return speed < kRates.size() ? kRates[speed] : 0;
}

std::string PortTypeText(std::uint8_t portType) {
  switch (static_cast<PortType>(portType)) {
    case PortType::kEndpoint:
      return "endpoint";
    case PortType::kLegacyEndpoint:
      return "legacy endpoint";
    case PortType::kRootPort:
      return "root port";
    case PortType::kUpstreamPort:
      return "switch upstream port";
    case PortType::kDownstreamPort:
      return "switch downstream port";
    case PortType::kExpressToPciBridge:
      return "PCI Express to PCI bridge";
    case PortType::kPciToExpressBridge:
      return "PCI to PCI Express bridge";
    case PortType::kIntegratedEndpoint:
      return "root complex integrated endpoint";
    case PortType::kEventCollector:
      return "root complex event collector";
  }
  return "";
}

}  // namespace topology
