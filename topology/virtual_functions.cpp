// SPDX-License-Identifier: Apache-2.0
#include "topology/virtual_functions.h"

#include <linux/pci_regs.h>

namespace topology {

std::optional<VirtualFunctions> DecodeVirtualFunctions(const ConfigSpace& config, std::size_t at) {
  if (!config.Word(at + PCI_SRIOV_VF_DID)) return std::nullopt;
  const auto word = [&](std::size_t offset) {
    return config.Word(at + offset).value_or(std::uint16_t{0});
  };
  // The number stays written where the functions are not enabled.
  const bool isEnabled = (word(PCI_SRIOV_CTRL) & PCI_SRIOV_CTRL_VFE) != 0;
  return VirtualFunctions{
      word(PCI_SRIOV_TOTAL_VF), isEnabled ? word(PCI_SRIOV_NUM_VF) : std::uint16_t{0},
      word(PCI_SRIOV_VF_OFFSET), word(PCI_SRIOV_VF_STRIDE), word(PCI_SRIOV_VF_DID)};
}

}  // namespace topology
