// SPDX-License-Identifier: Apache-2.0
#include "topology/module_aliases.h"

#include <gtest/gtest.h>

namespace topology {
namespace {

using Texts = std::vector<std::string>;

const ModuleAliases kModules(
    "# Aliases extracted from modules themselves.\n"
    "alias pci:v00008086d00001533sv*sd*bc*sc*i* igb\n"
    "alias pci:v00008086d00001533sv*sd*bc*sc*i* other_net\n"
    "alias pci:v00008086d*sv*sd*bc0Csc05i* smbus\n"
    "alias pci:v*d*sv*sd*bc01sc08i02* nvme\n"
    "alias pci:v*d*sv*sd*bc02sc*i* smbus\n"
    "alias pci:v000010DEd*sv*sd*bc03sc00i00* nouveau\n"
    "alias pci:v00001AF4d00001000sv0000103Csd00000001bc*sc*i* special\n"
    "alias usb:v1D6Bp0002d*dc*dsc*dp*ic*isc*ip*in* hub\n"
    "alias pci:broken nothing\n"
    "alias pci:v00008086d00001533sv*sd*bc*sc*i*\n");

Texts ModulesOf(const char* alias) { return kModules.FindModules(ParsePciAlias(alias).value()); }

TEST(ModuleAliases, MatchVendorAndDevice) {
  EXPECT_EQ(ModulesOf("pci:v00008086d00001533sv00008086sd00000002bc02sc00i00"),
            (Texts{"igb", "other_net", "smbus"}))
      << "sorted; the last one by its class";
}

TEST(ModuleAliases, MatchAClassOfOneVendorOrOfAll) {
  EXPECT_EQ(ModulesOf("pci:v00008086d0000FFFFsv00000000sd00000000bc0Csc05i00"), (Texts{"smbus"}));
  EXPECT_EQ(ModulesOf("pci:v0000144Dd0000A80Asv0000144Dsd0000A801bc01sc08i02"), (Texts{"nvme"}));
  EXPECT_EQ(ModulesOf("pci:v000010DEd00002231sv000010DEsd0000147Ebc03sc00i00"), (Texts{"nouveau"}));
  EXPECT_TRUE(ModulesOf("pci:v000010DEd00002231sv000010DEsd0000147Ebc03sc02i00").empty());
}

TEST(ModuleAliases, MatchTheSubsystem) {
  EXPECT_EQ(ModulesOf("pci:v00001AF4d00001000sv0000103Csd00000001bc00sc00i00"), (Texts{"special"}));
  EXPECT_TRUE(ModulesOf("pci:v00001AF4d00001000sv0000103Csd00000002bc00sc00i00").empty());
}

TEST(ModuleAliases, OfOtherFormsAreNone) {
  for (const char* text : {"", "pci:", "pci:v8086d1533sv*sd*bc*sc*i*", "usb:v1D6Bp0002",
                           "pci:v00008086d00001533sv*sd*bc*sc*", "pci:v*d*sv*sd*bc*sc*i**x",
                           "pci:v0000808Gd*sv*sd*bc*sc*i*", "pci:v00008086"}) {
    EXPECT_FALSE(ParsePciAlias(text)) << text;
  }
  EXPECT_TRUE(ParsePciAlias("pci:v*d*sv*sd*bc03sc00i00*"));
}

TEST(ModuleAliases, AreMadeOfAFunctionAsTheKernelDoes) {
  ConfigFacts config;
  config.vendor = 0x144D;
  config.device = 0xA80A;
  config.subsystemVendor = 0x144D;
  config.subsystemDevice = 0xA801;
  config.classCode = 0x010802;
  EXPECT_EQ(AliasOf(config).numbers,
            ParsePciAlias("pci:v0000144Dd0000A80Asv0000144Dsd0000A801bc01sc08i02")->numbers);
  EXPECT_TRUE(ModuleAliases().FindModules(AliasOf(config)).empty());
}

}  // namespace
}  // namespace topology
