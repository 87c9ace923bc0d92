// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "topology/config_space.h"

namespace topology {

/// The status registers of advanced error reporting (PCI Express 5.0, 7.8.4): errors that a
/// function has noted and nobody has cleared since.
struct ErrorStatus {
  std::uint32_t uncorrectable = 0;
  std::uint32_t correctable = 0;
};

/// Decodes the capability that begins at `at`; nothing if it does not fit into the bytes.
std::optional<ErrorStatus> DecodeErrorStatus(const ConfigSpace& config, std::size_t at);

/// The names of the set bits, in their order. Names are those of the kernel's error counters;
/// reserved bits are named "bit 3".
std::vector<std::string> UncorrectableNames(std::uint32_t bits);
std::vector<std::string> CorrectableNames(std::uint32_t bits);

}  // namespace topology
