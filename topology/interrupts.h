// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

#include "topology/config_space.h"

namespace topology {

/// Message-signaled interrupts (PCI Local Bus 3.0, 6.8).
struct MessageInterrupts {
  bool enabled = false;
  std::uint16_t vectors = 0;         ///< that the function can have
  std::uint16_t enabledVectors = 0;  ///< 0 when they are not enabled
};

/// How a function interrupts.
struct Interrupts {
  std::uint8_t pin = 0;            ///< 0: none, 1 to 4: A to D (6.2.4)
  bool pinDisabled = false;        ///< by the command register
  bool capabilitiesKnown = false;  ///< false for users without privileges
  std::optional<MessageInterrupts> msi;
  std::optional<MessageInterrupts> msix;

  /// "MSI-X", "MSI", "INTx" or "none"; empty where the capabilities are not known.
  const char* GetMode() const noexcept;
};

/// Decodes header and capabilities; 256 bytes are enough.
Interrupts DecodeInterrupts(const ConfigSpace& config);

}  // namespace topology
