// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "topology/config_space.h"
#include "topology/interrupts.h"

namespace topology {

/// Port types of the PCI Express capability (PCI Express 5.0, 7.5.3.2).
enum class PortType : std::uint8_t {
  kEndpoint = 0,
  kLegacyEndpoint = 1,
  kRootPort = 4,
  kUpstreamPort = 5,
  kDownstreamPort = 6,
  kExpressToPciBridge = 7,
  kPciToExpressBridge = 8,
  kIntegratedEndpoint = 9,
  kEventCollector = 10,
};

/// Speed as the code of the registers (1 is 2.5 GT/s) and number of lanes; 0 is no link.
struct Link {
  std::uint8_t speed = 0;
  std::uint8_t width = 0;

  bool operator==(const Link&) const = default;
};

/// What an indicator of a slot shows, as the code of the slot control register (7.5.3.10).
enum class Indicator : std::uint8_t { kReserved = 0, kOn = 1, kBlinking = 2, kOff = 3 };

/// The slot registers of a port whose flags say that it leads to a slot (7.5.3.9 to 7.5.3.11). What
/// the slot is not equipped with is not set.
struct PortSlot {
  std::uint16_t physicalNumber = 0;  ///< 0: the firmware gave it none
  bool hotPlug = false;
  bool surprise = false;
  bool cardPresent = false;
  std::optional<bool> powerOn = {};    ///< of slots with a power controller
  std::optional<bool> latchOpen = {};  ///< of slots with a sensor at the manual retention latch
  std::optional<Indicator> attentionIndicator = {};
  std::optional<Indicator> powerIndicator = {};
  bool powerFault = false;  ///< that the power controller has found since somebody cleared it
};

/// The PCI Express capability (7.5.3).
struct Express {
  std::uint8_t portType = 0;  ///< a PortType, or a number that is reserved
  Link now;
  Link most;
  bool linkActive = false;          ///< means something on ports only
  bool forwardsRoutingIds = false;  ///< alternative ones, to the device below a port
  std::optional<PortSlot> slot;     ///< of root ports and downstream ports with the slot bit

  bool Is(PortType type) const noexcept { return portType == static_cast<std::uint8_t>(type); }
  /// What is part of the root complex has no link, whatever its registers hold.
  bool HasLink() const noexcept {
    return !Is(PortType::kIntegratedEndpoint) && !Is(PortType::kEventCollector);
  }
  /// Whether a link below the function leads to one device: a root port or a downstream port.
  bool LeadsToLink() const noexcept {
    return Is(PortType::kRootPort) || Is(PortType::kDownstreamPort);
  }
};

/// The bus numbers of a PCI-to-PCI or CardBus bridge.
struct BridgeBuses {
  std::uint8_t primary = 0;
  std::uint8_t secondary = 0;
  std::uint8_t subordinate = 0;
};

/// What the first 256 bytes of configuration space say, which is enough for the list of functions
/// and for placing them. What was not read is unknown, not absent.
struct ConfigFacts {
  std::uint16_t vendor = 0xFFFF;
  std::uint16_t device = 0xFFFF;
  std::uint32_t classCode = 0;  ///< base class, subclass and programming interface: 0xBBSSPP
  std::uint8_t revision = 0;
  std::uint8_t headerType = 0;  ///< without the multi-function bit
  bool multiFunction = false;
  std::optional<std::uint16_t> subsystemVendor;
  std::optional<std::uint16_t> subsystemDevice;
  std::optional<BridgeBuses> bridge;

  bool isRead = false;             ///< false: not one byte could be read
  bool capabilitiesKnown = false;  ///< false for users without privileges
  std::optional<Express> express;
  bool holdsVitalProductData = false;  ///< has the capability for it
  Interrupts interrupts;

  std::uint8_t BaseClass() const noexcept { return static_cast<std::uint8_t>(classCode >> 16); }
  std::uint16_t Class() const noexcept { return static_cast<std::uint16_t>(classCode >> 8); }
};

/// Decodes the configuration space of one function, or its first 256 bytes.
ConfigFacts DecodeConfig(const ConfigSpace& config);

/// "2.5 GT/s" to "64.0 GT/s" for the speed codes 1 to 6 (7.5.3.18); empty for others.
std::string SpeedText(std::uint8_t speed);

/// Million transfers a second on each lane for the same codes: 2500 to 64000; 0 for others.
std::uint32_t TransferRate(std::uint8_t speed);

/// "root port", "endpoint", ...; empty for reserved numbers.
std::string PortTypeText(std::uint8_t portType);

}  // namespace topology
