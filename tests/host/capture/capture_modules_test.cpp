// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_modules.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

TEST(FittingAliases, AreTheLinesForFunctionsOfThisMachine) {
  const std::string mine = "alias pci:v00008086d00001533sv*sd*bc*sc*i* igb\n";
  const std::string others = "alias pci:v00008086d00001521sv*sd*bc*sc*i* igb\n";
  const std::string disks = "alias pci:v*d*sv*sd*bc01sc08i02* nvme\n";
  const std::string usb = "alias usb:v1D6Bp0002d*dc*dsc*dp*ic*isc*ip*in* hub\n";
  const std::string text = "# Aliases\n" + others + mine + usb + disks;
  const std::string card = "pci:v00008086d00001533sv00008086sd00000002bc02sc00i00";
  const std::string disk = "pci:v0000144Dd0000A80Asv0000144Dsd0000A801bc01sc08i02";
  EXPECT_EQ(FittingAliases(text, {card}), mine);
  EXPECT_EQ(FittingAliases(text, {card, disk}), mine + disks);
  EXPECT_EQ(FittingAliases(text, {}), "");
  EXPECT_EQ(FittingAliases(text, {""}), "") << "a function without the file";
}

TEST(FittingAliases, LinesThatEndTooEarlyAreHarmless) {
  EXPECT_EQ(FittingAliases("alias pci:v", {"pci:v00008086"}), "");
  EXPECT_EQ(FittingAliases("alias pci:v0000", {"pci:v00008086"}), "");
  EXPECT_EQ(FittingAliases("", {""}), "");
}

}  // namespace
}  // namespace pciinfo
