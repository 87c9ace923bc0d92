// SPDX-License-Identifier: Apache-2.0

// A card in a machine made by hand, with everything that the kernel may show of a function.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using Texts = std::vector<std::string>;

constexpr const char* kAddress = "0000:00:05.0";

json PropertiesIn(const RunResult& run) {
  return json::parse(run.out).at("instances").at(0).at("properties");
}

/// A machine with one function, which has vital product data.
class MadeCard {
 public:
  MadeCard() {
    std::string config(256, '\0');
    config.replace(0x00, 4, std::string("\x86\x80\x33\x15", 4));  // 8086:1533
    config[0x06] = 0x10;                                          // a list of capabilities
    config[0x0A] = 0x00;
    config[0x0B] = 0x02;  // a network controller
    config[0x34] = 0x40;
    config[0x40] = 0x03;  // vital product data
    Put("config", config);
    PutFunction(kAddress, config);
  }

  void AddVirtualFunction() {
    const std::string address = "0000:00:05.1";
    PutFunction(address, std::string(256, '\0'));
    fs::create_symlink(std::string("../") + kAddress,
                       root_ / ("sys/bus/pci/devices/" + address + "/physfn"));
  }

  void Put(const std::string& name, const std::string& content) {
    PutAt(std::string("sys/bus/pci/devices/") + kAddress + "/" + name, content);
  }
  void PutAt(const std::string& path, const std::string& content) {
    const fs::path file = root_ / path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }
  RunResult Run() const { return RunFrom(root_.GetPath()); }
  json Read() const { return ReadFrom(root_.GetPath()); }

  /// What is told of the function in a capture that is made of this machine.
  json ReadCapture(const std::vector<std::string>& options) const {
    const vtq::TemporaryDirectory directory;
    const std::string copy = directory / "copy";
    std::vector<std::string> words{PCIINFO_PROGRAM, "--root", root_.GetPath(), "capture", copy};
    words.insert(words.end(), options.begin(), options.end());
    const RunResult run = RunProcess(words);
    EXPECT_EQ(run.status, 0) << run.err;
    return ReadFrom(copy);
  }

  /// What lspci prints of all capabilities.
  std::string AskLspci() const {
    return RunProcess({"lspci", "-A", "linux-sysfs", "-O",
                       "sysfs.path=" + root_.GetPath() + "/sys/bus/pci", "-vvv"})
        .out;
  }

 private:
  /// The files that lspci does not do without.
  void PutFunction(const std::string& address, const std::string& config) {
    const std::string directory = "sys/bus/pci/devices/" + address + "/";
    PutAt(directory + "config", config);
    PutAt(directory + "vendor", "0x8086\n");
    PutAt(directory + "device", "0x1533\n");
    PutAt(directory + "class", "0x020000\n");
    PutAt(directory + "irq", "17\n");
    PutAt(directory + "resource", "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
  }

  static RunResult RunFrom(const std::string& root) {
    return RunProcess({PCIINFO_PROGRAM, "--root", root, "instances", "VTQ_PCIFunctionDetails",
                       "--only-plugin", TOPOLOGY_PLUGIN, "--format", "json"});
  }
  static json ReadFrom(const std::string& root) {
    const RunResult run = RunFrom(root);
    EXPECT_EQ(run.status, 0) << run.err;
    return PropertiesIn(run);
  }

  vtq::TemporaryDirectory root_;
};

std::string Section(unsigned char tag, const std::string& data) {
  return std::string{static_cast<char>(tag), static_cast<char>(data.size()), '\0'} + data;
}

std::string Field(const std::string& keyword, const std::string& value) {
  return keyword + static_cast<char>(value.size()) + value;
}

/// Vital product data of which the checksum is `error` too large.
std::string MakeVitalProductData(int error) {
  std::string data = Section(0x82, "Two-port adapter") +
                     Section(0x90, Field("PN", "AB-1234") + Field("EC", "A2") + Field("SN", "X99") +
                                       Field("MN", "103C") + Field("RV", std::string(2, '\0')));
  int sum = 0;
  for (const char byte : data) sum += static_cast<unsigned char>(byte);
  data[data.size() - 2] = static_cast<char>(error - sum);
  return data + '\x78';
}

TEST(MadeDetails, VitalProductDataIsWhatLspciTells) {
  for (const bool isRight : {true, false}) {
    MadeCard card;
    card.Put("vpd", MakeVitalProductData(isRight ? 0 : 1));
    const json told = card.Read();
    EXPECT_EQ(told.at("ProductName"), "Two-port adapter");
    EXPECT_EQ(told.at("VitalProductKeywords"), (Texts{"PN", "EC", "SN", "MN"}));
    EXPECT_EQ(told.at("VitalProductChecksumRight"), isRight);
    EXPECT_FALSE(told.contains("VitalProductDataProblem"));
    const std::string listed = card.AskLspci();
    const auto says = [&listed](const std::string& text) {
      return listed.find(text) != std::string::npos;
    };
    EXPECT_TRUE(says("Product Name: Two-port adapter\n"));
    EXPECT_TRUE(says("[PN] Part number: " + told.at("ProductPartNumber").get<std::string>()));
    EXPECT_TRUE(says("[EC] Engineering changes: " +
                     told.at("ProductEngineeringChange").get<std::string>()));
    EXPECT_TRUE(says("[SN] Serial number: " + told.at("ProductSerialNumber").get<std::string>()));
    EXPECT_TRUE(says("[MN] Manufacture ID: " + told.at("ProductManufacture").get<std::string>()));
    EXPECT_TRUE(says(isRight ? "checksum good" : "checksum bad")) << listed;
  }
}

TEST(MadeDetails, VitalProductDataThatIsNotThereIsNotKnown) {
  EXPECT_EQ(MadeCard().Read().at("VitalProductDataUnknownBecause"),
            "the kernel shows no file of it");
  MadeCard cut;
  cut.Put("vpd", MakeVitalProductData(0).substr(0, 34));
  const json told = cut.Read();
  EXPECT_EQ(told.at("ProductPartNumber"), "AB-1234");
  EXPECT_EQ(told.at("VitalProductDataProblem"), "the data ends too early");
}

TEST(MadeDetails, HeaderAloneTellsNoCapabilities) {
  MadeCard card;
  card.Put("config", std::string("\x86\x80\x33\x15", 4) + std::string(60, '\0'));
  const json told = card.Read();
  EXPECT_EQ(told.at("ExtendedUnknownBecause"), "the capabilities could not be read");
  EXPECT_EQ(told.at("VitalProductDataUnknownBecause"), "the capabilities could not be read");
  for (const char* name : {"InterruptMode", "ErrorReporting", "AlternativeRoutingID"}) {
    EXPECT_FALSE(told.contains(name)) << name;
  }
}

TEST(MadeDetails, NamesAndCountersComeFromTheKernelsFiles) {
  MadeCard card;
  card.Put("net/enp0s5/address", "52:54:00:12:34:56\n");
  card.Put("nvme/nvme3/serial", "S99  \n");
  card.Put("nvme/nvme3/nvme3n1/size", "1\n");
  card.Put("aer_dev_correctable", "RxErr 0\nBadTLP 2\nTOTAL_ERR_COR 2\n");
  card.Put("aer_dev_nonfatal", "DLP 0\nTOTAL_ERR_NONFATAL 0\n");
  card.Put("aer_dev_fatal", "DLP 0\nTOTAL_ERR_FATAL 0\n");
  card.Put("firmware_node/path", "\\_SB_.PCI0.NIC0\n");
  card.Put("acpi_index", "3\n");
  const json told = card.Read();
  EXPECT_EQ(told.at("NetworkInterfaces"), (Texts{"enp0s5"}));
  EXPECT_EQ(told.at("NetworkAddresses"), (Texts{"52:54:00:12:34:56"}));
  EXPECT_EQ(told.at("NvmeControllers"), (Texts{"nvme3"}));
  EXPECT_EQ(told.at("NvmeModels"), (Texts{""})) << "the lists keep their order";
  EXPECT_EQ(told.at("NvmeSerialNumbers"), (Texts{"S99"}));
  EXPECT_EQ(told.at("BlockDevices"), (Texts{"nvme3n1"}));
  EXPECT_EQ(told.at("CorrectableErrorCount"), 2);
  EXPECT_EQ(told.at("CorrectableErrorCounters"), (Texts{"BadTLP 2"}));
  EXPECT_EQ(told.at("NonFatalErrorCount"), 0);
  EXPECT_EQ(told.at("FatalErrorCount"), 0);
  EXPECT_EQ(told.at("FirmwarePath"), "\\_SB_.PCI0.NIC0");
  EXPECT_EQ(told.at("FirmwareIndex"), 3);
}

/// Shows the function with all that a capture may hold.
void PutEverything(MadeCard& card) {
  card.Put("vpd", MakeVitalProductData(0) + "behind the end");
  card.Put("power_state", "D0\n");
  card.Put("enable", "2\n");
  card.Put("aer_dev_fatal", "DLP 1\nTOTAL_ERR_FATAL 1\n");
  card.Put("aer_dev_correctable", "RxErr 0\nTOTAL_ERR_COR 0\n");
  card.Put("firmware_node/path", "\\_SB_.PCI0.NIC0\n");
  card.Put("virtio1/net/eth7/address", "52:54:00:12:34:56\n");
  card.Put("virtio2/block/vdc/uevent", "DEVNAME=vdc\n");
  card.Put("nvme/nvme3/uevent", "");
  card.Put("nvme/nvme3/model", "Fast disk\n");
  card.Put("nvme/nvme3/serial", "S99\n");
  card.Put("nvme/nvme3/firmware_rev", "1.0\n");
  card.Put("nvme/nvme3/nvme3c0n1/uevent", "");
  card.Put("ata1/host0/uevent", "");
  card.Put("ata1/host0/target0:0:0/0:0:0:0/block/sda/uevent", "DEVNAME=sda\n");
  card.Put("drm/card0/uevent", "");
  card.Put("infiniband/mlx5_0/fw_ver", "16.35\n");
  card.Put("modalias", "pci:v00008086d00001533sv00000000sd00000000bc02sc00i00\n");
  card.PutAt("sys/bus/pci/modules.alias", "alias pci:v00008086d00001533sv*sd*bc*sc*i* igb\n");
  card.AddVirtualFunction();
}

TEST(MadeDetails, ACaptureTellsTheSame) {
  MadeCard card;
  PutEverything(card);
  const json told = card.Read();
  EXPECT_EQ(told.at("BlockDevices"), (Texts{"sda", "nvme3n1", "vdc"}));
  EXPECT_EQ(told.at("ScsiHosts"), (Texts{"host0"}));
  EXPECT_EQ(card.ReadCapture({}), told);
}

TEST(MadeDetails, ARedactedCaptureTellsAllButWhatIdentifiesTheCard) {
  MadeCard card;
  PutEverything(card);
  json expected = card.Read();
  expected["ProductSerialNumber"] = "XXX";
  expected["VitalProductValues"] = Texts{"AB-1234", "A2", "XXX", "103C"};
  expected["NetworkAddresses"] = Texts{"XX:XX:XX:XX:XX:XX"};
  expected["NvmeSerialNumbers"] = Texts{"XXX"};
  EXPECT_EQ(expected.at("VitalProductChecksumRight"), true);
  EXPECT_EQ(card.ReadCapture({"--redact"}), expected);
}

TEST(MadeDetails, ModulesComeFromTheCaptureOnly) {
  MadeCard card;
  EXPECT_FALSE(card.Read().contains("DriverModules"));
  EXPECT_TRUE(card.Read().contains("DriverModulesUnknownBecause"));
  card.PutAt("sys/bus/pci/modules.alias",
             "alias pci:v00008086d00001533sv*sd*bc*sc*i* igb\n"
             "alias pci:v*d*sv*sd*bc03sc*i* display\n");
  EXPECT_EQ(card.Read().at("DriverModules"), (Texts{"igb"}));
  // The kernel can know better than the registers what a function is.
  card.Put("modalias", "pci:v00008086d0000FFFFsv00000000sd00000000bc03sc00i00\n");
  EXPECT_EQ(card.Read().at("DriverModules"), (Texts{"display"}));
  EXPECT_FALSE(card.Read().contains("DriverModulesUnknownBecause"));
}

TEST(MadeDetails, ModulesThatCannotBeReadAreUnknownAndTheRestIsTold) {
  MadeCard card;
  card.PutAt("sys/bus/pci/modules.alias/entry", "");  // root may read every file, but no directory
  const RunResult run = card.Run();
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("modules.alias cannot be read: Is a directory"), std::string::npos)
      << run.err;
  const json told = PropertiesIn(run);
  EXPECT_EQ(told.at("DriverModulesUnknownBecause"), "/sys/bus/pci/modules.alias could not be read");
  EXPECT_EQ(told.at("InterruptNumber"), 17);
}

TEST(MadeDetails, VirtualFunctionsAreToldByTheirPhysicalOne) {
  MadeCard card;
  EXPECT_FALSE(card.Read().contains("VirtualFunctions"));
  card.AddVirtualFunction();
  EXPECT_EQ(card.Read().at("VirtualFunctions"), (Texts{"0000:00:05.1"}));
}

}  // namespace
