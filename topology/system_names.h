// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace topology {

struct NetworkInterface {
  std::string name;
  std::string address;  ///< of the link layer, "52:54:00:12:34:56"; empty: unknown
};

struct NvmeController {
  std::string name;
  std::string model;         ///< empty: unknown
  std::string serialNumber;  ///< empty: unknown
  std::string firmware;      ///< revision; empty: unknown
};

struct InfinibandDevice {
  std::string name;
  std::string firmware;  ///< version; empty: unknown
};

/// The names under which the system knows a function. Each list is in the order of its names.
struct SystemNames {
  std::vector<NetworkInterface> networkInterfaces;
  std::vector<std::string> blockDevices;
  std::vector<NvmeController> nvmeControllers;
  std::vector<std::string> drmDevices;
  std::vector<InfinibandDevice> infinibandDevices;
  std::vector<std::string> scsiHosts;
};

/// What a directory below a function's directory in /sys means.
enum class DirectoryMeaning {
  kNothing,
  kNetwork,     ///< holds a directory for each network interface
  kBlock,       ///< ... for each block device
  kNvme,        ///< ... for each NVMe controller
  kDrm,         ///< ... for each DRM device
  kInfiniband,  ///< ... for each InfiniBand device
  kScsiHost,    ///< is a SCSI host, with devices below it
  kDevice,      ///< may have one of the others below it
};

/// Tells it by the name of the directory: "net", "host3", "target3:0:0", "3:0:0:0", "virtio1", ...
DirectoryMeaning MeaningOf(std::string_view name);

/// The block device of a namespace that a directory of an NVMe controller is named after: the same
/// name, but "nvme0n1" for "nvme0c1n1", which is one of the paths to it. Empty for other names.
std::string NvmeBlockDevice(std::string_view name);

}  // namespace topology
