// SPDX-License-Identifier: Apache-2.0
#include "host/check/class_facts_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/fixed_repository.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

/// A root directory that a test fills.
class CheckReader : public testing::Test {
 protected:
  void Write(const std::string& path, const std::string& content) const {
    const fs::path file = root_.GetPath() + "/" + path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }

  ClassFacts Read() const {
    ClassFacts facts;
    ReadKernelFacts(root_.GetPath(), facts);
    return facts;
  }

  vtq::TemporaryDirectory root_;
};

std::string Configuration(std::size_t size) {
  return std::string("\x86\x80\x33\x15", 4) + std::string(size - 4, '\0');
}

TEST_F(CheckReader, AnEmptyRootHasNoBus) {
  const ClassFacts facts = Read();
  EXPECT_FALSE(facts.hasPciBus);
  EXPECT_FALSE(facts.hasSysfs);
  EXPECT_FALSE(facts.list.has_value());
  EXPECT_TRUE(facts.functions.empty());
}

TEST_F(CheckReader, ReadsAllColumnsOfTheList) {
  Write("proc/bus/pci/devices",
        "0318\t80861533\t1f\t  39f00000000c\t       1\t0\t0\t0\t0\t0\t  1000000000\t100\t0\t0\t0\t0"
        "\t0\tdriver\n"
        "0000\t00001234\t0\n"
        "\n"
        "no line\n"
        "0008\t80861901\tb\n");
  const ClassFacts facts = Read();
  ASSERT_TRUE(facts.list.has_value());
  ASSERT_EQ(facts.list->size(), 2U);
  const ListedFunction& first = facts.list->front();
  EXPECT_EQ(first.address, (PciAddress{3, 3, 0}));
  EXPECT_EQ(first.ids, (VendorAndDevice{0x8086, 0x1533}));
  EXPECT_EQ(first.bases[0], 0x39f00000000cU);
  EXPECT_EQ(first.bases[1], 1U);
  EXPECT_EQ(first.sizes[0], 0x1000000000U);
  EXPECT_EQ(first.sizes[1], 0x100U);
  EXPECT_EQ((*facts.list)[1].address, (PciAddress{0, 1, 0}));
}

TEST_F(CheckReader, ReadsTheSizeOfConfigurations) {
  Write("proc/bus/pci/devices",
        "0300\t80861533\t0\n0301\t80861533\t0\n0302\t80861533\t0\n0303\t80861533\t0\n");
  Write("proc/bus/pci/03/00.0", Configuration(64));
  Write("proc/bus/pci/03/00.1", Configuration(256));
  Write("proc/bus/pci/03/00.2", Configuration(63));
  const ClassFacts facts = Read();
  ASSERT_EQ(facts.configurations.size(), 2U);
  EXPECT_EQ(facts.configurations.at({3, 0, 0}).ids, (VendorAndDevice{0x8086, 0x1533}));
  EXPECT_TRUE(facts.configurations.at({3, 0, 0}).isHeaderOnly);
  EXPECT_FALSE(facts.configurations.at({3, 0, 1}).isHeaderOnly);
  EXPECT_TRUE(facts.hasPciBus);
  EXPECT_FALSE(facts.hasSysfs);
}

TEST_F(CheckReader, ReadsTheDomainsOfFunctions) {
  Write("proc/bus/pci/10000:00/04.0", "");
  Write("proc/bus/pci/00/1f.3", "");
  Write("proc/bus/pci/00/nonsense", "");
  Write("sys/bus/pci/devices/0001:ff:1f.7/vendor", "0x8086\n");
  Write("sys/bus/pci/devices/0001:ff:1f.7/device", "0x1533\n");
  Write("sys/bus/pci/devices/0001:ff:1f.7/resource",
        "0x0000000000001000 0x000000000000103f 0x0000000000040101\n"
        "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
  Write("sys/bus/pci/devices/0001:ff:20.0/vendor", "0x8086\n");
  const ClassFacts facts = Read();
  ASSERT_EQ(facts.functions.size(), 3U);
  EXPECT_TRUE(facts.functions.contains({0x10000, {0, 4, 0}}));
  EXPECT_FALSE(facts.functions.at({0, {0, 0x1F, 3}}).ids.has_value());
  const KernelFunction& inSysfs = facts.functions.at({1, {0xFF, 0x1F, 7}});
  EXPECT_EQ(inSysfs.ids, (VendorAndDevice{0x8086, 0x1533}));
  EXPECT_TRUE(inSysfs.isIo[0]);
  EXPECT_FALSE(inSysfs.isIo[1]);
  EXPECT_TRUE(facts.hasSysfs);
}

TEST(CheckFactsOfARepository, ContainItsFunctions) {
  const ClassFacts facts = ReadClassFacts(*MakeFixedRepository(), true);
  EXPECT_TRUE(facts.isCapture);
  ASSERT_EQ(facts.published.size(), 5U);
  EXPECT_EQ(facts.published[0].slotNumber, 1U);
  EXPECT_FALSE(facts.published[4].slotNumber.has_value());
  EXPECT_EQ(facts.slots.slots.size(), 3U);
}

TEST(FullAddressText, ShowsOtherDomains) {
  EXPECT_EQ(FormatFullAddress({0, {0, 0x1F, 3}}), "00:1f.3");
  EXPECT_EQ(FormatFullAddress({1, {0, 0x1F, 3}}), "0001:00:1f.3");
  EXPECT_EQ(FormatFullAddress({0x10000, {0, 4, 0}}), "10000:00:04.0");
}

}  // namespace
}  // namespace pciinfo
