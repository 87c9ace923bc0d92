// SPDX-License-Identifier: Apache-2.0
#include "host/model/bridge_buses.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using Header = std::array<std::uint8_t, 64>;

Header Bridge(std::uint8_t type, std::uint8_t secondary, std::uint8_t subordinate) {
  Header header{};
  header[0x0E] = type;
  header[0x19] = secondary;
  header[0x1A] = subordinate;
  return header;
}

std::string Text(const Header& header) { return {header.begin(), header.end()}; }

constexpr PciAddress kAddress{2, 0x1C, 3};

TEST(BridgeBuses, AreReadFromTheHeaderOfBridges) {
  const auto buses = ParseBridgeBuses(kAddress, Bridge(0x81, 3, 9));
  ASSERT_TRUE(buses.has_value());
  EXPECT_EQ(buses->secondary, 3U);
  EXPECT_EQ(buses->subordinate, 9U);
  EXPECT_TRUE(ParseBridgeBuses(kAddress, Bridge(2, 3, 3)).has_value());
}

TEST(BridgeBuses, OtherFunctionsHaveNone) {
  EXPECT_FALSE(ParseBridgeBuses(kAddress, Bridge(0, 3, 9)).has_value());
  EXPECT_FALSE(ParseBridgeBuses(kAddress, Bridge(0x7F, 3, 9)).has_value());
}

TEST(BridgeBuses, MustBeHigherThanTheBridgesOwnBus) {
  EXPECT_FALSE(ParseBridgeBuses(kAddress, Bridge(1, 0, 0)).has_value());
  EXPECT_FALSE(ParseBridgeBuses(kAddress, Bridge(1, 2, 9)).has_value());
  EXPECT_FALSE(ParseBridgeBuses(kAddress, Bridge(1, 5, 4)).has_value());
}

TEST(BridgeBuses, AShortHeaderHasNone) {
  const Header header = Bridge(1, 3, 9);
  EXPECT_FALSE(ParseBridgeBuses(kAddress, std::span(header).first(0x1A)).has_value());
  EXPECT_TRUE(ParseBridgeBuses(kAddress, std::span(header).first(0x1B)).has_value());
  EXPECT_FALSE(ParseBridgeBuses(kAddress, {}).has_value());
}

TEST(BridgeBuses, ComeFromProcOrElseFromSys) {
  const vtq::TemporaryDirectory root;
  const std::string sys = root.GetPath() + "/sys/bus/pci/devices/0000:02:1c.3";
  EXPECT_FALSE(ReadBridgeBuses(kAddress, root.GetPath()).has_value());
  std::filesystem::create_directories(sys);
  root.Write("sys/bus/pci/devices/0000:02:1c.3/config", Text(Bridge(1, 7, 7)));
  EXPECT_EQ(ReadBridgeBuses(kAddress, root.GetPath())->secondary, 7U);
  std::filesystem::create_directories(root.GetPath() + "/proc/bus/pci/02");
  root.Write("proc/bus/pci/02/1c.3", Text(Bridge(1, 4, 6)));
  EXPECT_EQ(ReadBridgeBuses(kAddress, root.GetPath())->secondary, 4U);
}

}  // namespace
}  // namespace pciinfo
