// SPDX-License-Identifier: Apache-2.0

// A virtual function as the kernel shows it: its configuration space holds no identifiers.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/topology/config_bytes.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;

class VirtualFunctionTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& content) {
    const fs::path file = device_ / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }
  json Read() const {
    const RunResult run =
        RunProcess({PCIINFO_PROGRAM, "--root", root_.GetPath(), "instances", "VTQ_PCIFunction",
                    "--only-plugin", TOPOLOGY_PLUGIN, "--format", "json"});
    EXPECT_EQ(run.status, 0) << run.err;
    return json::parse(run.out).at("instances").at(0).at("properties");
  }

  vtq::TemporaryDirectory root_;
  fs::path device_ = fs::path(root_.GetPath()) / "sys/bus/pci/devices/0000:07:00.1";
};

TEST_F(VirtualFunctionTest, HasTheIdentifiersThatTheKernelKnows) {
  Put("config", topology::Bytes(256).Put(0, 0xFFFFFFFF, 4).Put(0x0A, 0x0108, 2).Text());
  Put("vendor", "0x1b36\n");
  Put("device", "0x0010\n");
  const json told = Read();
  EXPECT_EQ(told.at("VendorID"), 0x1B36);
  EXPECT_EQ(told.at("DeviceID"), 0x0010);
  EXPECT_EQ(told.at("BaseClass"), 1);
}

TEST_F(VirtualFunctionTest, HasNoneWhereTheKernelTellsNone) {
  Put("config", topology::Bytes(256).Put(0, 0xFFFFFFFF, 4).Text());
  Put("vendor", "not a number\n");
  EXPECT_EQ(Read().at("VendorID"), 0xFFFF);
}

TEST_F(VirtualFunctionTest, KeepsTheIdentifiersThatItsSpaceHolds) {
  Put("config", topology::Bytes(256).Put(0, 0x10D38086, 4).Text());
  Put("vendor", "0x1b36\n");
  EXPECT_EQ(Read().at("VendorID"), 0x8086);
}

}  // namespace
