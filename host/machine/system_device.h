// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// What the system knows a function as: a network interface, a disk, an NVMe or InfiniBand device.
/// What is not known is empty.
struct SystemDevice {
  std::string kind;             ///< "network", "block", "nvme", "drm", "infiniband" or "scsi"
  std::string name;             ///< "eth0"
  std::string hardwareAddress;  ///< of a network interface: "52:54:00:12:34:56"
  std::string model;            ///< of an NVMe device, as are the next two
  std::string serialNumber;
  std::string firmware;  ///< of an NVMe or InfiniBand device
};

}  // namespace pciinfo
