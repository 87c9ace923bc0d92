// SPDX-License-Identifier: Apache-2.0
#include "topology/system_names.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/runtime/temporary_directory.h"
#include "topology/system_names_reader.h"

namespace topology {
namespace {

using Texts = std::vector<std::string>;

TEST(SystemNames, AreBelowDirectoriesOfKnownNames) {
  EXPECT_EQ(MeaningOf("net"), DirectoryMeaning::kNetwork);
  EXPECT_EQ(MeaningOf("host12"), DirectoryMeaning::kScsiHost);
  for (const char* name : {"virtio0", "ata1", "target3:0:0", "3:0:0:0", "port-0:1", "mmc0"}) {
    EXPECT_EQ(MeaningOf(name), DirectoryMeaning::kDevice) << name;
  }
  for (const char* name : {"", "power", "host", "hostess", "0000:01:00.0", "0000:00:1c.0:pcie001",
                           "subsystem", "net0", "3:0:0", "1-2"}) {
    EXPECT_EQ(MeaningOf(name), DirectoryMeaning::kNothing) << name;
  }
}

TEST(SystemNames, OfAPathToANamespaceAreThoseOfTheNamespace) {
  EXPECT_EQ(NvmeBlockDevice("nvme0n1"), "nvme0n1");
  EXPECT_EQ(NvmeBlockDevice("nvme10c3n12"), "nvme10n12");
  for (const char* name :
       {"", "nvme", "nvme0", "nvme0n", "nvme0c1", "nvme0n1p1", "ng0n1", "model"}) {
    EXPECT_EQ(NvmeBlockDevice(name), "") << name;
  }
}

/// A function's directory as the kernel shows it.
class FunctionDirectory {
 public:
  void Put(const std::string& path, const std::string& content) {
    const std::filesystem::path file = root_ / "function/" + path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
  }
  void Link(const std::string& path, const std::string& target) {
    std::filesystem::create_symlink(target, root_ / "function/" + path);
  }
  SystemNames Read() const {
    const Directory device(root_ / "function");
    return ReadSystemNames(device, device.Names());
  }

 private:
  vtq::TemporaryDirectory root_;
};

TEST(SystemNames, OfNetworkInterfacesHaveAddresses) {
  FunctionDirectory function;
  function.Put("net/eth1/address", "52:54:00:12:34:56\n");
  function.Put("virtio0/net/eth0/address", "52:54:00:aa:bb:cc\n");
  const SystemNames names = function.Read();
  ASSERT_EQ(names.networkInterfaces.size(), 2U);
  EXPECT_EQ(names.networkInterfaces[0].name, "eth1");
  EXPECT_EQ(names.networkInterfaces[0].address, "52:54:00:12:34:56");
  EXPECT_EQ(names.networkInterfaces[1].name, "eth0");
}

TEST(SystemNames, OfNvmeControllersComeWithTheirModel) {
  FunctionDirectory function;
  function.Put("nvme/nvme0/model", "Fast disk 990                  \n");
  function.Put("nvme/nvme0/serial", "S1234              \n");
  function.Put("nvme/nvme0/firmware_rev", "1B2Q\n");
  function.Put("nvme/nvme0/nvme0c0n1/size", "1\n");
  function.Put("nvme/nvme0/hwmon1/name", "nvme\n");
  const SystemNames names = function.Read();
  ASSERT_EQ(names.nvmeControllers.size(), 1U);
  EXPECT_EQ(names.nvmeControllers[0].model, "Fast disk 990");
  EXPECT_EQ(names.nvmeControllers[0].serialNumber, "S1234");
  EXPECT_EQ(names.nvmeControllers[0].firmware, "1B2Q");
  EXPECT_EQ(names.blockDevices, (Texts{"nvme0n1"}));
}

TEST(SystemNames, OfDisksAreFoundBelowTheirHosts) {
  FunctionDirectory function;
  function.Put("ata1/host0/target0:0:0/0:0:0:0/block/sda/size", "1\n");
  function.Put("host7/port-7:0/end_device-7:0/target7:0:0/7:0:0:0/block/sdb/size", "1\n");
  function.Put("virtio3/block/vda/size", "1\n");
  function.Put("drm/card1/dev", "226:1\n");
  function.Put("drm/renderD128/dev", "226:128\n");
  function.Put("infiniband/mlx5_0/fw_ver", "16.35.2000\n");
  const SystemNames names = function.Read();
  EXPECT_EQ(names.blockDevices, (Texts{"sda", "sdb", "vda"}));
  EXPECT_EQ(names.scsiHosts, (Texts{"host0", "host7"}));
  EXPECT_EQ(names.drmDevices, (Texts{"card1", "renderD128"}));
  ASSERT_EQ(names.infinibandDevices.size(), 1U);
  EXPECT_EQ(names.infinibandDevices[0].firmware, "16.35.2000");
}

TEST(SystemNames, AreNotLookedForBehindLinks) {
  FunctionDirectory function;
  function.Put("ata1/name", "");
  function.Link("ata1/host0", "..");
  function.Link("net", "ata1");
  const SystemNames names = function.Read();
  EXPECT_TRUE(names.scsiHosts.empty());
  EXPECT_TRUE(names.networkInterfaces.empty());
}

TEST(SystemNames, AreNotLookedForWithoutEnd) {
  FunctionDirectory function;
  std::string path;
  for (int level = 0; level < 40; ++level) path += "host" + std::to_string(level) + "/";
  function.Put(path + "name", "");
  EXPECT_EQ(function.Read().scsiHosts.size(), 17U);
}

}  // namespace
}  // namespace topology
